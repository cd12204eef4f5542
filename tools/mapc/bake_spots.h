// Where light is measured for a point or corner of the world: on spots a little off its surface, outside the surface's
// own shadow, and toward the middles of the polygons around it, outside the shadows of its neighbours.
#pragma once

#include "formats/world_file.h"
#include "mapc/geometry.h"

#include <functional>
#include <vector>

constexpr double SPOT_HEIGHT = 2;  // distance of a spot from the surface
constexpr double SPOT_INSET = 4;   // distance by which a spot is moved toward the middle of a polygon

struct Receiver {
    Vec3 position;
    Vec3 outward;                      // unit, off the surface
    std::vector<Vec3> polygonCentres;  // centres of the polygons around it, at most eight
    double light = 0;                  // light byte that its own material sheds
};

struct Spots {
    std::vector<Vec3> near;  // spots from which rays go to the surroundings; empty: all lie inside something
    std::vector<Vec3> all;   // the near ones and some farther apart, which soften the edges of shadows
};

// The spots of a receiver. Those for which isBuried holds lie inside something and are left out; where all do, spots
// closer to the surface are tried.
Spots SpotsOf(const Receiver& receiver, const std::function<bool(const Vec3&)>& isBuried);

// Directions over the hemisphere z > 0, denser toward its pole, so that each stands for the same light on a surface.
// Parts taken at regular steps are spread as evenly as the whole.
std::vector<Vec3> HemisphereDirections(size_t count);

// Turns directions of that hemisphere to lie around a surface's normal.
class SurfaceFrame {
public:
    explicit SurfaceFrame(const Vec3& normal);
    Vec3 Turned(const Vec3& d) const { return u_ * d.x + v_ * d.y + normal_ * d.z; }

private:
    Vec3 u_, v_, normal_;
};
