// The light of a finished world by place, for a mesh that is yet to be made from the same map.
#pragma once

#include "mapc/placement.h"
#include "mapc/welding.h"

#include <cstdint>
#include <optional>

class SurfaceLight {
public:
    // light: one byte a point of the world.
    SurfaceLight(const WorldFile& world, const std::vector<int8_t>& light, const Placement& placement);

    // Light byte of the surface at a place, map space, by the way it faces; nothing where it has no point.
    std::optional<double> At(const Vec3& place, const Vec3& outward) const;

private:
    struct LitPoint {
        Vec3 place;
        Vec3 outward;  // engine axes
        double light;
    };

    Placement placement_;
    std::vector<LitPoint> points_;
    PointCells cells_{4};
};
