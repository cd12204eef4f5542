// The world's global tables: geometry, light bytes, level light values. Data only.
#pragma once

#include "records/light_facts.h"
#include "records/table_facts.h"
#include "records/world_records.h"

#include <cstdint>

struct GeometryCounts {
    uint32_t planes, polygons, points, polyVertices;
};

// All arrays lie in the pool and live until the pool is freed at the end of the game.
// N, L, P, F, V, K below are the counts of the world file.
struct WorldGeometryTables {
    BspNode* nodes;                 // N; node 0 is the root
    BspLeaf* leaves;                // L
    PlaneRecord* planes;            // P + 3000
    PolyRecord* polygons;           // F + 3000
    PolyFrame* polyFrames;          // F + 3000, only the first F are computed
    WorldPoint* points;             // V + 9000
    PolyVertex* polyVertices;       // K + 9000
    PolyVertex* alternateVertices;  // K + 9000; with the accelerator, u and v in texel units
    ViewPoint* viewPoints;          // V + 9000
    uint8_t* outcodes;              // V + 9000
    int8_t* pointLight;             // V + 9000, current bytes, valid while the stamp equals FrameCount
    int8_t* pointLightBase;         // V + 9000
    uint16_t* pointLightStamps;     // V + 9000
    uint16_t* characterStamps;      // V + 9000, character points turned into view space
    uint16_t* cornerLightStamps;    // CornerLightStampCount()
    int32_t* renderList;            // 2 L

    uint32_t nodeCount, leafCount;
    GeometryCounts file;  // what the world file brought
    GeometryCounts used;  // next free index of each table
    GeometryCounts
        fixed;  // the static marks: everything loaded for the level; clipping scratch starts here (planes: unused)
};
extern WorldGeometryTables WorldGeometry;

// The box around all corners of the polygons below each node, by node. Written by GenerateNodeRadii; the boxes of the
// file, which decide what is culled, need not hold everything.
struct CornerBox {
    Vec3 low, high;  // low above high: there are no corners
};
extern CornerBox CornerBoxes[BSP_NODES_MAX];

// Whether loaders may append as much, the clipper's scratch left free.
inline bool GeometryHasRoomFor(const GeometryCounts& more) {
    const GeometryCounts& file = WorldGeometry.file;
    const GeometryCounts& used = WorldGeometry.used;
    const auto fits = [](uint32_t usedCount, uint64_t moreCount, uint32_t fileCount, uint32_t spare) {
        return usedCount + moreCount + CLIP_SCRATCH_ENTRIES <= fileCount + uint64_t{spare};
    };
    return fits(used.planes, more.planes, file.planes, SPARE_PLANES) &&
           fits(used.polygons, more.polygons, file.polygons, SPARE_POLYGONS) &&
           fits(used.points, more.points, file.points, SPARE_POINTS) &&
           fits(used.polyVertices, more.polyVertices, file.polyVertices, SPARE_POLY_VERTICES);
}

// An entry a corner light byte; at least as many as a light slot's 16-bit corner numbers can name.
inline uint32_t CornerLightStampCount() {
    const uint32_t polygons = WorldGeometry.file.polygons + SPARE_POLYGONS;
    return CORNER_LIGHT_CORNERS * (polygons > CORNER_NUMBER_POLYGONS ? polygons : CORNER_NUMBER_POLYGONS);
}

extern int8_t CornerLight[CORNER_LIGHT_POLYGONS * 8];  // current, entry = polygon x 8 + corner
extern int8_t CornerLightBase[CORNER_LIGHT_POLYGONS * 8];

constexpr uint32_t INTENSITY_CACHE_SIZE = 65536;    // point indices are 16 bits wide
extern float IntensityCache[INTENSITY_CACHE_SIZE];  // a point's intensity in the frame of its stamp
extern uint16_t IntensityCacheStamps[INTENSITY_CACHE_SIZE];

// Level light values, set by LoadLightMap and changed by the development keys.
extern float LightLevel;
extern float LightContrast;
extern float FadeDistance;     // world units; where the software distance fade and the fog end
extern float FarDistance;      // world units; far limit of the view
extern float FogNearDistance;  // world units; accelerator only
constexpr int32_t INVERTED_LIGHT = 0x2;
extern int32_t LightMode;  // 0..3, INVERTED_LIGHT one of the two bits
extern int16_t PlainBrightening;
extern int16_t BrightColour[3];  // red, green, blue, 0..63
extern int16_t DarkColour[3];

extern float LightScale;  // derived by ApplyLightLevel
extern float LightBias;

// Where the sky lies in WorldGeometry.
struct SkyObjectRange {
    int32_t firstPolygon, firstPoint, polygonCount, pointCount;
};
extern SkyObjectRange SkyObject;
