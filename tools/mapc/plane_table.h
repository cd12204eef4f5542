// All planes of a map, each stored once in both directions: plane id ^ 1 is plane id turned round. Planes that differ
// by less than the tolerances share an id, so lying in the same plane is a comparison of numbers.
#pragma once

#include "mapc/geometry.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

class PlaneTable {
public:
    int Find(const Vec3& normal, double dist);  // unit normal; adds the plane when it is new
    int Count() const { return static_cast<int>(planes_.size()); }
    const Plane& operator[](int id) const { return planes_[static_cast<size_t>(id)]; }

private:
    int Search(const Plane& plane, int64_t bucket) const;

    std::vector<Plane> planes_;
    std::unordered_map<int64_t, std::vector<int>> buckets_;  // planes by their rounded distance; only ever looked up
};

inline bool IsAxial(const Plane& plane) {
    return std::abs(plane.normal.x) == 1 || std::abs(plane.normal.y) == 1 || std::abs(plane.normal.z) == 1;
}
