// Sides of the planes in WorldGeometry, and the passes over its polygons that need only vectors.
#pragma once

#include "camera/camera_tables.h"
#include "math/vector_operators.h"
#include "world/world_tables.h"

#include <cstdint>

extern IntVec3 SideTestPoint;  // read by NodeSideOfPoint; written by its users

// The position in the world of one of a polygon's corners; corner counts from 0.
inline const Vec3& CornerPosition(const PolyRecord& polygon, uint32_t corner) {
    return WorldGeometry.points[WorldGeometry.polyVertices[polygon.firstVertex + corner].point].position;
}

// The side of a plane: +1: signed distance >= 0 or not a number, otherwise -1.
inline int32_t SideOfPlane(uint16_t plane, const Vec3& point) {
    const PlaneRecord& p = WorldGeometry.planes[plane];
    return p.nx * point.x + p.ny * point.y + p.nz * point.z + p.d < 0.0f ? -1 : 1;
}
inline int32_t NodeSideOfCamera(int32_t node) {
    return SideOfPlane(WorldGeometry.nodes[node].plane, CameraPos);
}
inline int32_t PolySideOfCamera(int32_t poly) {
    return SideOfPlane(WorldGeometry.polygons[poly].plane, CameraPos);
}
// The same for SideTestPoint and a node's plane, and for a point in whole units and a polygon's plane.
int32_t NodeSideOfPoint(int32_t node);
int32_t PolySideOfPoint(int32_t poly, int32_t x, int32_t y, int32_t z);

void ComputePolyPlane(int32_t poly);  // takes the polygon's first three corners; a degenerate triangle stores zeros
// Sets the normal of every point in use. FatalError(1, "Generate Vert Normals - Mem Error").
void GenerateVertexNormals();
