// The packed records of a world file (.bgm), which are used in memory exactly as they lie in the file:
// little-endian, no alignment gaps. Read fields by value; a reference to a packed field is not allowed.
//
// A polygon is seen from the side on which its plane gives a negative distance: the stored normal points away
// from the viewer, into the solid. Its corners run counter-clockwise as seen from there.
#pragma once

#include "records/table_facts.h"
#include "records/vec3.h"

#include <cstddef>
#include <cstdint>

struct [[gnu::packed]] BspNode {
    int16_t frontChild;  // subtree on the side of distance >= 0; >= 0: node index, < 0: leaf ~frontChild
    int16_t backChild;   // same coding
    uint16_t plane;      // index into the PlaneRecord table
    Vec3 centre;         // centre of the bounding box
    float radius;        // the three radii are computed by GenerateNodeRadii, the file's values are overwritten
    float radiusRoot2;   // radius x 1.414213562
    float radiusAspect;  // radius x 1.414213562 x screen aspect
    Vec3 halfExtents;    // half the sides of the bounding box
};
static_assert(sizeof(BspNode) == NODE_BYTES && offsetof(BspNode, radius) == 18 && offsetof(BspNode, halfExtents) == 30);

struct [[gnu::packed]] BspLeaf {
    uint16_t polygonCount;
    uint16_t frameStamp;  // FrameCount of the last frame in which character polygons were binned here
    uint16_t unused;
    uint16_t firstPolygon;  // the leaf's polygons are consecutive
    Vec3 centre;
    float radius;  // radii as in BspNode
    float radiusRoot2;
    float radiusAspect;
    Vec3 halfExtents;
};
static_assert(sizeof(BspLeaf) == LEAF_BYTES && offsetof(BspLeaf, centre) == 8 && offsetof(BspLeaf, halfExtents) == 32);

struct PlaneRecord {  // signed distance of p = nx p.x + ny p.y + nz p.z + d
    float nx, ny, nz, d;
};
static_assert(sizeof(PlaneRecord) == PLANE_BYTES);

constexpr uint8_t SHADE_CORNER_LIGHT = 0;  // light bytes per polygon corner
constexpr uint8_t SHADE_POINT_LIGHT = 1;   // light bytes per point; only these react to dynamic lights
constexpr uint8_t POLY_WRAPS = 0x80;       // flag: the texture repeats instead of clamping on the accelerator

struct [[gnu::packed]] PolyRecord {
    uint8_t cornerCount;  // 3..12 in files, up to 16 after clipping
    uint8_t texture;      // mapped through TextureRemap when drawn
    uint8_t shading;      // SHADE_CORNER_LIGHT or SHADE_POINT_LIGHT
    uint8_t flags;        // POLY_WRAPS; the other bits are not read
    uint16_t unused;
    uint16_t firstVertex;  // the corners are consecutive PolyVertex records
    uint16_t plane;
};
static_assert(sizeof(PolyRecord) == POLYGON_BYTES && offsetof(PolyRecord, firstVertex) == 6);

struct WorldPoint {
    Vec3 position;
    Vec3 normal;  // average of the plane normals of its polygons, not renormalised; read for character points only
};
static_assert(sizeof(WorldPoint) == POINT_BYTES);

struct PolyVertex {
    uint32_t point;
    float u, v;       // 1/256 texel; texture units of the accelerator after CreateGlideUVs
    float intensity;  // light level x 256, 0..32512; written before each draw
};
static_assert(sizeof(PolyVertex) == CORNER_BYTES);

// Memory only: the rotation of a polygon's plane for the collision slide, from the inverted normal (x, y, z),
// h = sqrt(x2 + z2), l = sqrt(y2 + h2).
struct PolyFrame {
    float pitchCos;  // -h / l
    float yawSin;    // x / h, 0 when h < 0.0001
    float pitchSin;  // y / l
    float yawCos;    // z / h, 1 when h < 0.0001
    float y;         // y: +1 floor, -1 ceiling
};
static_assert(sizeof(PolyFrame) == POLYGON_FRAME_BYTES);

// The camera-space shadow of a WorldPoint. Valid in the frame whose FrameCount its stamp equals.
struct ViewPoint {
    float x, y, z;  // camera space: z away from the eye, y up, y already scaled by the screen aspect
    uint32_t transformStamp;
    uint32_t projectionStamp;
    union {
        struct {
            int32_t x, y;  // software: 16.16 pixels
        } fixed;
        struct {
            float x, y;  // accelerator: pixels
        } pixels;
    } screen;
    float inverseDepth;  // software: 1 / z; accelerator: 1 / (z x DepthScale)
};
static_assert(sizeof(ViewPoint) == VIEW_POINT_BYTES && offsetof(ViewPoint, screen) == 20 &&
              offsetof(ViewPoint, inverseDepth) == 28);

// Outcode bits of a point in camera space.
constexpr uint8_t OUT_RIGHT = 0x01;   // x > z
constexpr uint8_t OUT_LEFT = 0x02;    // x < -z
constexpr uint8_t OUT_TOP = 0x04;     // y > z
constexpr uint8_t OUT_BOTTOM = 0x08;  // y < -z
constexpr uint8_t OUT_SIDES = 0x0F;
constexpr uint8_t OUT_DEPTH =
    0x10;  // world: z > FarDistance; character: z < 0. Kept as it is: only rejects, never clips
