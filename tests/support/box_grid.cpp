#include "support/box_grid.h"

#include <array>
#include <random>

namespace {

using Cell = std::array<int, 3>;

class BoxGrid {
public:
    BoxGrid(TinyWorld& world, int cellsPerSide, float cellSize, uint32_t seed)
        : world_(world), count_(cellsPerSide), size_(cellSize) {
        std::mt19937 random(seed);
        for (int i = 0; i < count_ * count_ * count_; ++i)
            solid_.push_back(random() % 3 == 0);
    }

    int16_t Build(const Cell& low, const Cell& high) {
        size_t axis = 0;
        for (size_t k = 1; k < 3; ++k) {
            if (high[k] - low[k] > high[axis] - low[axis]) axis = k;
        }
        if (high[axis] - low[axis] == 1) return world_.AddLeaf(WallsSeenFrom(low));
        Cell lowEnd = high;
        Cell highStart = low;
        lowEnd[axis] = highStart[axis] = (low[axis] + high[axis]) / 2;
        const int16_t lowSide = Build(low, lowEnd);
        const int16_t highSide = Build(highStart, high);
        const bool pointsUp = lowEnd[axis] % 2 == 0;
        const float sign = pointsUp ? 1.0f : -1.0f;
        float normal[3] = {};
        normal[axis] = sign;
        return world_.AddNode({normal[0], normal[1], normal[2], -sign * At(lowEnd[axis])},
                              pointsUp ? highSide : lowSide, pointsUp ? lowSide : highSide);
    }

private:
    float At(int line) const { return (static_cast<float>(line) - static_cast<float>(count_) / 2) * size_; }

    bool IsSolid(const Cell& cell) const {
        for (const int line : cell) {
            if (line < 0 || line >= count_) return true;
        }
        return solid_[static_cast<size_t>((cell[2] * count_ + cell[1]) * count_ + cell[0])];
    }

    std::vector<Corners> WallsSeenFrom(const Cell& cell) const {
        std::vector<Corners> walls;
        if (IsSolid(cell)) return walls;
        const Vec3 low = {At(cell[0]), At(cell[1]), At(cell[2])};
        const Vec3 high = {At(cell[0] + 1), At(cell[1] + 1), At(cell[2] + 1)};
        const std::vector<Corners> sides = RoomSides(low, high);
        // In the order of RoomSides: the side seen by looking towards -x, +x, -y, +y, -z, +z.
        const Cell steps[6] = {{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}};
        for (size_t side = 0; side < 6; ++side) {
            const Cell& step = steps[side];
            if (IsSolid({cell[0] + step[0], cell[1] + step[1], cell[2] + step[2]})) walls.push_back(sides[side]);
        }
        return walls;
    }

    TinyWorld& world_;
    int count_;
    float size_;
    std::vector<bool> solid_;
};

}  // namespace

void PublishBoxGrid(TinyWorld& world, int cellsPerSide, float cellSize, uint32_t seed) {
    BoxGrid(world, cellsPerSide, cellSize, seed).Build({0, 0, 0}, {cellsPerSide, cellsPerSide, cellsPerSide});
    world.Publish();
}
