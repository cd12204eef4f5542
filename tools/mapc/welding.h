// Makes one vertex of points that are nearly the same.
#pragma once

#include "mapc/geometry.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

// Numbered points by cells of space. Only ever looked up, so the order in it does not matter.
class PointCells {
public:
    explicit PointCells(double size) : size_(size) {}

    double Size() const { return size_; }
    void Add(const Vec3& p, int number) { cells_[Key(CellOf(p.x), CellOf(p.y), CellOf(p.z))].push_back(number); }

    // All points in the box, and some around it.
    template <class Use>
    void ForEach(const Box& box, Use use) const {
        for (int64_t z = CellOf(box.min.z); z <= CellOf(box.max.z); ++z) {
            for (int64_t y = CellOf(box.min.y); y <= CellOf(box.max.y); ++y) {
                for (int64_t x = CellOf(box.min.x); x <= CellOf(box.max.x); ++x) {
                    const auto found = cells_.find(Key(x, y, z));
                    if (found == cells_.end()) continue;
                    for (const int number : found->second)
                        use(number);
                }
            }
        }
    }

private:
    // The borders of the cells avoid the whole numbers, where most points lie.
    int64_t CellOf(double coordinate) const { return static_cast<int64_t>(std::floor(coordinate / size_ + 0.3)); }
    static uint64_t Key(int64_t x, int64_t y, int64_t z);

    double size_;
    std::unordered_map<uint64_t, std::vector<int>> cells_;
};

class Welder {
public:
    Welder(std::vector<Vec3>& vertices, double distance) : vertices_(vertices), distance_(distance) {}

    int Find(const Vec3& p);  // the nearest vertex within the distance, or a new one

private:
    std::vector<Vec3>& vertices_;
    double distance_;
    PointCells cells_{4};
};
