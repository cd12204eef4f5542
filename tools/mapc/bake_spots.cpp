#include "mapc/bake_spots.h"

namespace {

constexpr double SPREAD_PART = 0.25;  // how far along the way to a polygon's middle the farther spots lie
constexpr double SPREAD_MAX = 48;
constexpr double HEIGHTS[] = {SPOT_HEIGHT, 0.5, 0.125};

Vec3 Toward(const Receiver& receiver, const Vec3& centre, double inset) {
    const Vec3 way = centre - receiver.position;
    const double length = Length(way);
    return length > 0 ? way * (std::min(inset, length / 2) / length) : Vec3{};
}

}  // namespace

Spots SpotsOf(const Receiver& receiver, const std::function<bool(const Vec3&)>& isBuried) {
    Spots spots;
    for (const double height : HEIGHTS) {
        const Vec3 base = receiver.position + receiver.outward * height;
        for (const Vec3& centre : receiver.polygonCentres) {
            const Vec3 spot = base + Toward(receiver, centre, SPOT_INSET * height / SPOT_HEIGHT);
            if (!isBuried(spot)) spots.near.push_back(spot);
        }
        if (!spots.near.empty()) break;
    }
    spots.all = spots.near;
    for (const Vec3& centre : receiver.polygonCentres) {
        const double inset = std::min(SPREAD_PART * Length(centre - receiver.position), SPREAD_MAX);
        const Vec3 spot = receiver.position + receiver.outward * SPOT_HEIGHT + Toward(receiver, centre, inset);
        if (inset > SPOT_INSET && !spots.near.empty() && !isBuried(spot)) spots.all.push_back(spot);
    }
    return spots;
}

std::vector<Vec3> HemisphereDirections(size_t count) {
    // Powers of the inverse of the plastic number, the two-dimensional golden ratio, give an even sequence over a
    // square. Points spread evenly over the disc below the hemisphere are as dense on the hemisphere as light counts
    // there.
    constexpr double STEP_X = 0.7548776662466927;
    constexpr double STEP_Y = 0.5698402909980532;
    std::vector<Vec3> directions;
    for (double i = 1; directions.size() < count; ++i) {
        const double x = (i * STEP_X - std::floor(i * STEP_X)) * 2 - 1;
        const double y = (i * STEP_Y - std::floor(i * STEP_Y)) * 2 - 1;
        const double square = x * x + y * y;
        if (square < 1) directions.push_back({x, y, std::sqrt(1 - square)});
    }
    return directions;
}

SurfaceFrame::SurfaceFrame(const Vec3& normal) : normal_(normal) {
    int axis = 0;
    for (int i = 1; i < 3; ++i) {
        if (std::abs(normal[i]) < std::abs(normal[axis])) axis = i;
    }
    Vec3 least;
    least[axis] = 1;
    const Vec3 across = Cross(normal, least);
    u_ = across * (1 / Length(across));
    v_ = Cross(normal, u_);
}
