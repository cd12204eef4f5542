// What recordings hold, frame by frame, and which parts of the game they reach.
#pragma once

#include "session/recording.h"

#include <bitset>
#include <map>
#include <string>
#include <vector>

struct PlayedFrame {
    FrameFields fields;
    uint32_t digest;
    std::optional<uint32_t> pixels;
    std::bitset<256> keys;  // true: the key of this scan code is down

    int32_t Whole(const char* field) const;
    float Real(const char* field, size_t index = 0) const;
};

// Throws std::runtime_error with what is wrong with the file.
std::vector<PlayedFrame> ReadPlay(const std::string& file);

// How often each thing that the recordings are for was reached, by its name: "Run", "Run > Halt", "leap, 4 ticks,
// held", "key F6". Each name that is wanted is there, with 0 when nothing reached it.
using Coverage = std::map<std::string, int>;
Coverage WantedCoverage();
void AddCoverage(Coverage& coverage, const std::vector<PlayedFrame>& play);
