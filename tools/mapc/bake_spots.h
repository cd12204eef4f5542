// Where light is measured for a point or corner of the world: on spots a little off its surface, which keeps them out
// of the surface's own shadow, and moved toward the middles of the polygons around it, out of its neighbours'.
#pragma once

#include "formats/world_file.h"
#include "mapc/geometry.h"

#include <functional>
#include <vector>

constexpr double SPOT_HEIGHT = 2;  // off the surface
constexpr double SPOT_INSET = 4;   // toward the middle of the polygon

struct Receiver {
    Vec3 position;
    Vec3 outward;                      // unit, off the surface
    std::vector<Vec3> polygonCentres;  // of the polygons around it, at most eight
    double light = 0;                  // that its own material sheds
};

struct Spots {
    std::vector<Vec3> near;  // where the surroundings are looked at; empty: all spots lie inside something
    std::vector<Vec3> all;   // and some farther apart, which soften the edges of shadows
};

// Spots that isBuried lie inside something and see nothing. Where all do, spots closer to the surface are tried.
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
