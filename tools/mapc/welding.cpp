#include "mapc/welding.h"

uint64_t PointCells::Key(int64_t x, int64_t y, int64_t z) {
    constexpr uint64_t MASK = (uint64_t{1} << 21) - 1;
    return (static_cast<uint64_t>(x) & MASK) | ((static_cast<uint64_t>(y) & MASK) << 21) |
           ((static_cast<uint64_t>(z) & MASK) << 42);
}

int Welder::Find(const Vec3& p) {
    int best = -1;
    double bestDistance = distance_ * distance_;
    cells_.ForEach(Box{p, p}.Grown(distance_), [&](int number) {
        const double distance = LengthSquared(vertices_[static_cast<size_t>(number)] - p);
        if (distance > bestDistance || (distance == bestDistance && best >= 0 && best <= number)) return;
        best = number;
        bestDistance = distance;
    });
    if (best >= 0) return best;
    vertices_.push_back(p);
    cells_.Add(p, static_cast<int>(vertices_.size() - 1));
    return static_cast<int>(vertices_.size() - 1);
}
