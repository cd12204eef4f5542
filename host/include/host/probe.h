// What the game tells the host at the end of every frame, for traces, digests, scripts and benchmarks. The game knows
// nothing of those.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

struct HostStateSpan {
    const void* data;
    size_t bytes;
};

struct HostFrameReport {
    uint32_t ticks;     // FrameTicks used by this frame
    int32_t level;      // 1..8
    int32_t state;      // of the player
    float position[3];  // of the player
    float velocity[3];
    float heading;
    int32_t contact;
    float slope;
    uint32_t time0;  // animation clock of layer 0
    float camera[3];
    float cameraAngles[3];
    uint32_t polygons;              // SubmitPolygon calls
    uint32_t dropped;               // of the character: polygons and pieces that a table had no room for
    std::span<const float> lights;  // intensities of the lights that animate or move, in the order of their slots
    std::span<const float> shots;   // x, y, z of each that flies; both spans last until HostEndOfFrame returns
    HostStateSpan extra[4];         // further state for the digest: random numbers, light slots, shots
};

// Called right after the picture is presented. True: end the program through the normal way out.
bool HostEndOfFrame(const HostFrameReport& report);
