// Rays through a level. The ray tracer says only which surface a ray meets. The place on it is computed here from the
// surface itself, since the ray tracer's rounding differs between processors.
#pragma once

#include "mapc/ray_tracer.h"

#include <memory>

struct RaySurfaces {
    std::vector<RayTriangle> solid;
    std::vector<RayTriangle> sky;
    std::vector<RayTriangle> veils;  // surfaces with holes
    std::vector<double> veilCover;   // the part of each veil that is not hole, 0..1
};

enum class Meets { Nothing, Sky, Front, Back };  // Front and Back: a solid surface, met on that side

inline Vec3 FrontOf(const RayTriangle& triangle) {
    return Cross(triangle[1] - triangle[0], triangle[2] - triangle[0]);
}

struct RayHit {
    Meets meets = Meets::Nothing;
    size_t triangle = 0;  // its number in RaySurfaces::solid
    double distance = 0;  // with Front and Back
    double passed = 1;    // the part of the light that the veils on the way let through
};

class RayScene {
public:
    explicit RayScene(RaySurfaces surfaces);  // std::runtime_error when the ray tracer cannot be had
    ~RayScene();
    RayScene(const RayScene&) = delete;
    RayScene& operator=(const RayScene&) = delete;

    RayHit Trace(const Vec3& from, const Vec3& direction) const;  // unit direction
    // The part of the light that gets from one place to the other; 0 with anything solid or the sky between them.
    double Passed(const Vec3& from, const Vec3& to) const;

private:
    RaySurfaces surfaces_;
    std::vector<Plane> solidPlanes_;
    std::unique_ptr<RayTracer> tracer_;
};
