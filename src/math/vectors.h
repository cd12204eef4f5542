// Rotations, transforms, plane-side tests and the passes over WorldGeometry that need only vectors.
#pragma once

#include "camera/camera_tables.h"
#include "math/vector_operators.h"
#include "records/matrices.h"
#include "records/vec3.h"
#include "world/world_tables.h"

#include <cstdint>

extern Vec3 RotatedVector;        // result of RotateVector and RotateVectorT
extern IntVec3 RotatedIntVector;  // result of RotateIntVector and RotateIntVectorT
extern IntVec3 SideTestPoint;     // read by NodeSideOfPoint; written by its users

// Degrees; Rz(az) Rx(ax) Ry(ay), for column vectors.
void RotationFromAngles(float ax, float ay, float az, Matrix3& out);
void ViewRotationFromAngles(float ax, float ay, float az, Matrix3& out);  // row 1 multiplied by ScreenAspect

void RotateVector(float x, float y, float z, const Matrix3& m);
void RotateVectorT(float x, float y, float z, const Matrix3& m);  // multiplies by the transpose of m
void RotateIntVector(int32_t x, int32_t y, int32_t z, const Matrix3& m);
void RotateIntVectorT(int32_t x, int32_t y, int32_t z, const Matrix3& m);

// The position in the world of one of a polygon's corners; corner counts from 0.
inline const Vec3& CornerPosition(const PolyRecord& polygon, uint32_t corner) {
    return WorldGeometry.points[WorldGeometry.polyVertices[polygon.firstVertex + corner].point].position;
}

// +1: signed distance >= 0 or not a number, otherwise -1.
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
int32_t
NodeSideOfPoint(int32_t node);  // the side of the node's plane on which SideTestPoint lies: +1 or -1, as SideOfPlane
int32_t PolySideOfPoint(int32_t poly, int32_t x, int32_t y, int32_t z);

void ComputePolyPlane(int32_t poly);  // takes the polygon's first three corners; a degenerate triangle stores zeros
// Sets the normal of every point in use. FatalError(1, "Generate Vert Normals - Mem Error").
void GenerateVertexNormals();

void TransformIdentity(Transform& t);
void TransformConcat(const Transform& a, const Transform& b, Transform& out);  // b first; out is neither
void RotateDVector(double v[3], const double r[9]);                            // v := v R
