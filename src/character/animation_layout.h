// Where things lie in an animation file, which character/animation.h describes: for its loader and for the pose.
// Offsets and sizes in bytes.
#pragma once

#include <cstdint>

// Offsets from the start of the file.
constexpr uint32_t LENGTH_AT = 4;
constexpr uint32_t TRACK_COUNT_AT = 8;
constexpr uint32_t HIDDEN_BLOCK_AT = 12;
constexpr uint32_t ROTATION_TABLE_AT = 16;
constexpr uint32_t POSITION_TABLE_AT = 20;
constexpr uint32_t COMMANDS_AT = 32;

// Skeleton commands; a number from 0 on is a bone.
constexpr int32_t COMMAND_PUSH = -1;
constexpr int32_t COMMAND_POP = -2;
constexpr int32_t COMMAND_END = -3;
constexpr uint32_t COMMAND_BYTES = 4;

// A table of tracks is an unused word, then the offset of each track.
constexpr uint32_t TABLE_HEADER_BYTES = 4;
constexpr uint32_t TABLE_ENTRY_BYTES = 4;

// A track: its header, the last word of which is the number of keys, then the keys: u32 time, doubles.
struct TrackShape {
    uint32_t headerBytes;
    uint32_t keyBytes;
};
constexpr TrackShape ROTATION_TRACK = {.headerBytes = 32, .keyBytes = 36};
constexpr TrackShape POSITION_TRACK = {.headerBytes = 8, .keyBytes = 28};
constexpr uint32_t KEY_COUNT_BYTES = 4;
constexpr uint32_t KEY_TIME_BYTES = 4;
constexpr uint32_t PIVOT_AT = 4;  // three doubles in the header of a rotation track
