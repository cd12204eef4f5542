// The disc in the CD drive: a folder with the files track02, track03 and so on up to track98, each .flac, .ogg or .wav
// (machine/track_reader.h), in any case of letters. Track 1 is the data track, as on any game's disc. The last track
// has no music: a track ends where the next one begins, so there must be one after the highest file.
#pragma once

#include <cstdint>
#include <map>
#include <string>

constexpr uint32_t DISC_FIRST_MUSIC = 2, DISC_LAST_MUSIC = 98;

struct DiscTrack {
    std::string path;
    uint32_t milliseconds;
};

struct Disc {
    std::map<uint32_t, DiscTrack> tracks;  // by number; those that can be played
    uint32_t lastTrack = 0;                // one more than the highest file's number; 0: no disc
};

// What does not belong on the disc or cannot be played is left out; each such file gets a log line.
Disc ReadDisc(const std::string& folder);
