// The lamps of a map: its light entities.
#pragma once

#include "mapc/fault_list.h"
#include "mapc/map_file.h"

enum class LightStyle {
    Steady,
    Ramp,         // rises and falls evenly
    Blink,        // jumps between its two intensities
    Flicker,      // at random, 0.8 to 1.2 of its brightness
    Dynamic,      // lights points at run time: no shadows, whichever way surfaces face
    DynamicRamp,  // a ramp on the character; all points in the radius are one step (64) brighter while it is not out
};

// Times count frames. A cycle begins at the light's lowest.
struct PointLight {
    Vec3 origin;            // map space
    double brightness = 0;  // "light", times the brightness of "_color": light byte at the lamp when it is brightest
    double radius = 0;      // "radius": map units to where it has faded to nothing
    LightStyle style = LightStyle::Steady;  // "style"
    double low = 0;                         // "low": part of the brightness that stays, 0..1
    int rise = 60;                          // "rise": frames from low to bright, of ramps
    int fall = 60;                          // "fall": and back
    int highTime = 30;                      // "high_time": frames that a blinking light is bright
    int lowTime = 30;                       // "low_time": and low
    int start = 0;                          // "start": frames of its cycle that are over when the level begins
    SourceLine line{};
};

// In map order. ContentError for a key out of its range and for one that the light's style has no use for.
std::vector<PointLight> ReadLights(const MapFile& map, FaultList* faults = nullptr);
double MeanOf(const PointLight& light);  // the part of its brightness that it has in the mean of its cycle
