// A level's light: lights.lmp (static light bytes and the level's light settings) and lights.alt (light slots:
// animated lights and the lists of what each of them reaches).
#pragma once

#include "records/light_facts.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// lights.lmp, all integers big-endian: three words of zero, point count, polygon count, the light bytes of the points,
// eight light bytes a polygon, then the settings in the order below.
struct LightMapFile {
    std::vector<int8_t> pointLight;                  // 0..127, one a point of the world
    std::vector<std::array<int8_t, 8>> cornerLight;  // 0..127, of polygons 0..; at most 20000
    int16_t lightLevel = 0;                          // x 100; 100 = a light byte of 0 shows the texture unchanged
    int16_t contrast = 0;                            // x 100; 100 = light bytes count in full
    int32_t fadeDistance = 0;                        // software: full fade to the dark colour
    int32_t farDistance = 0;                         // software: nothing beyond is drawn
    int16_t lightMode = 0;                           // bit 1: inverted
    uint16_t plainBrightening = 0;                   // not 0: every colour brightens by the same fraction
    std::array<int16_t, 3> brightColour{};           // red, green, blue, 0..63
    std::array<int16_t, 3> darkColour{};
};

std::vector<uint8_t> EncodeLightMap(const LightMapFile& lights);
LightMapFile DecodeLightMap(std::vector<uint8_t> content, const std::string& fileName);
LightMapFile ReadLightMapFile(const std::filesystem::path& path);

// One 96-byte record of lights.alt, little-endian; the last 16 bytes are zero.
struct LightSlotRecord {
    int32_t type = LIGHT_FREE;
    int32_t phase = 0;  // 0 or 1
    int32_t pointCount = 0;
    int32_t cornerCount = 0;
    int32_t firstPoint = 0;   // into points
    int32_t firstCorner = 0;  // into corners
    int32_t timer = 0;        // frames
    std::array<float, 3> position{};
    float radius = 0;
    double radiusSquared = 0;
    float intensity = 0;
    float highIntensity = 0;
    float lowIntensity = 0;
    int32_t highTime = 0;  // frames
    int32_t lowTime = 0;
    float stepDown = 0;  // added a frame in phase 1
    float stepUp = 0;    // added a frame in phase 0
};

struct LightContribution {
    uint16_t index = 0;  // a point, or polygon * 8 + corner
    float weight = 0;    // light byte = base + weight * intensity * 64
};

// Big-endian 16-bit slot count, contribution count and zero; the slots; point indices, point weights, corner indices,
// corner weights, each as long as the longer of the two lists.
struct LightSlotFile {
    std::vector<LightSlotRecord> slots;      // at most 150; slot 0 is never handed out to shots
    std::vector<LightContribution> points;   // at most 32767
    std::vector<LightContribution> corners;  // at most 32767
};

std::vector<uint8_t> EncodeLightSlots(const LightSlotFile& lights);  // ContentError beyond the limits above
LightSlotFile DecodeLightSlots(std::vector<uint8_t> content, const std::string& fileName);  // both lists as stored
LightSlotFile ReadLightSlotFile(const std::filesystem::path& path);
