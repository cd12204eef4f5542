// Worlds of a few polygons for tests: fills WorldGeometry with tables of its own, spare room included, and takes them
// away again. Link `test_support`.
#pragma once

#include "world/world_tables.h"

#include <vector>

// A world file that holds what WorldGeometry's file tables hold now, whether valid or not.
std::vector<uint8_t> WorldFileBytes();

using Corners = std::vector<Vec3>;  // counter-clockwise as seen from the visible side

// A square of 2 x halfSize, visible from the side that `towardsViewer` (along one axis) points to.
Corners FacingSquare(const Vec3& centre, const Vec3& towardsViewer, float halfSize);

// The six sides of a box, visible from inside.
std::vector<Corners> RoomSides(const Vec3& lowest, const Vec3& highest);

// A polygon in camera space behind all that WorldGeometry uses, with a point of its own for every corner, outcodes of
// the four sides and plane 0. Returns its number.
struct ViewCorner {
    float x, y, z, u, v, intensity;
};
int32_t AppendPolygon(const std::vector<ViewCorner>& corners, uint8_t texture = 0);

class TinyWorld {
public:
    TinyWorld() = default;
    TinyWorld(const TinyWorld&) = delete;
    TinyWorld& operator=(const TinyWorld&) = delete;
    ~TinyWorld();

    // Both return what a node above them takes as a child. Equal positions share a point.
    int16_t AddLeaf(const std::vector<Corners>& leafPolygons);
    int16_t AddNode(const PlaneRecord& plane, int16_t frontChild, int16_t backChild);

    // The node added last is the root; a world of one leaf gets a node above it whose front child it is. Planes come
    // from the corners, boxes from what lies below; radii, PolyFrames and everything else are 0.
    void Publish();

private:
    uint32_t PointAt(const Vec3& position);
    void AddPolygon(const Corners& corners);
    void PutRootFirst();
    void MakeTables();  // the tables, with spare room

    std::vector<BspNode> nodes;
    std::vector<BspLeaf> leaves;
    std::vector<PlaneRecord> planes;
    std::vector<PolyRecord> polygons;
    std::vector<PolyFrame> polyFrames;
    std::vector<WorldPoint> points;
    std::vector<PolyVertex> polyVertices, alternateVertices;
    std::vector<ViewPoint> viewPoints;
    std::vector<uint8_t> outcodes;
    std::vector<int8_t> pointLight, pointLightBase;
    std::vector<uint16_t> pointLightStamps, characterStamps, cornerLightStamps;
    std::vector<int32_t> renderList;
};
