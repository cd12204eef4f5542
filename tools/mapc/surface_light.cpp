#include "mapc/surface_light.h"

namespace {

constexpr double SAME_PLACE = 0.2;     // engine units; more than welding moves a corner
constexpr double SAME_FACING = 0.999;  // cosine

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

}  // namespace

SurfaceLight::SurfaceLight(const WorldFile& world, const std::vector<int8_t>& light, const Placement& placement)
    : placement_(placement) {
    for (size_t i = 0; i < world.points.size(); ++i) {
        const WorldPoint& point = world.points[i];
        const Vec3 place = placement.ToMap(Widened(point.position));
        cells_.Add(place, static_cast<int>(i));
        points_.push_back({place, -Widened(point.normal), static_cast<double>(light[i])});
    }
}

std::optional<double> SurfaceLight::At(const Vec3& place, const Vec3& outward) const {
    const Vec3 turned = placement_.Turned(outward);
    std::optional<double> light;
    const double reach = SAME_PLACE / placement_.scale;
    double nearest = reach * reach;
    int nearestNumber = -1;
    cells_.ForEach(Box{place, place}.Grown(reach), [&](int number) {
        const LitPoint& point = points_[static_cast<size_t>(number)];
        const double distance = LengthSquared(point.place - place);
        if (distance > nearest || Dot(point.outward, turned) < SAME_FACING) return;
        if (distance == nearest && nearestNumber >= 0 && nearestNumber <= number) return;
        nearest = distance;
        nearestNumber = number;
        light = point.light;
    });
    return light;
}
