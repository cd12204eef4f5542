// What a score plays and when: each note with its place in samples.
#pragma once

#include "musicc/score.h"

#include <cstdint>
#include <vector>

struct Note {
    int64_t start;   // samples from the start of the music
    int64_t length;  // samples for which it is held
    float pitch;
    float fromPitch;   // pitch from which the note glides; its own when no note came right before
    float level;       // its velocity and the section's ramp, as a factor
    float brightness;  // octaves added to the cutoff
    uint32_t seed;     // seed of its noise
};

struct Arrangement {
    int64_t length;                        // samples, after which the music begins again
    std::vector<std::vector<Note>> parts;  // for each instrument its notes in the order of their starts
};

Arrangement Arrange(const Score& score);
