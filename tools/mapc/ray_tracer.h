// The ray tracer with the triangles of a level.
#pragma once

#include "mapc/geometry.h"

#if __has_include(<embree4/rtcore.h>)
#include <embree4/rtcore.h>
#else
#include <embree3/rtcore.h>
#endif

#include <array>
#include <vector>

using RayTriangle = std::array<Vec3, 3>;  // (b - a) x (c - a) points to its front

// Version 3 of the library, and those after it.
#if RTC_VERSION_MAJOR == 3
using RayContext = RTCIntersectContext;
#else
using RayContext = RTCRayQueryContext;
#endif
void InitRayContext(RayContext& context);

class RayTracer {
public:
    RayTracer();  // std::runtime_error when the ray tracer cannot be had; so do the others when it fails
    ~RayTracer();
    RayTracer(const RayTracer&) = delete;
    RayTracer& operator=(const RayTracer&) = delete;

    // passes: called for each of these triangles that a ray meets, with the triangles as user data; they must then stay
    // where they are.
    void Add(unsigned geometry, const std::vector<RayTriangle>& triangles, RTCFilterFunctionN passes = nullptr);
    void Commit();  // after the last Add

    // Both with the context that goes to the functions `passes`. geomID stays RTC_INVALID_GEOMETRY_ID, or tfar becomes
    // negative with something in the way.
    void Intersect(RayContext& context, RTCRayHit& ray) const;
    void FindOccluder(RayContext& context, RTCRay& ray) const;

private:
    void Check() const;

    RTCDevice device_;
    RTCScene scene_;
};

RTCRay RayOf(const Vec3& from, const Vec3& direction, float farthest);
