// The ray tracer with the triangles of a level.
#pragma once

#include "mapc/geometry.h"

#include <embree3/rtcore.h>

#include <array>
#include <vector>

using RayTriangle = std::array<Vec3, 3>;  // (b - a) x (c - a) points to its front

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
    RTCScene Scene() const { return scene_; }

private:
    void Check() const;

    RTCDevice device_;
    RTCScene scene_;
};

RTCRay RayOf(const Vec3& from, const Vec3& direction, float farthest);
