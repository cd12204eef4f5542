#include "mapc/box_grid.h"

namespace {

constexpr double CELL_MIN = 256;
constexpr int CELLS_MAX = 128;          // along one axis
constexpr size_t ENTRIES_PER_BOX = 16;  // average; large boxes get larger cells, so that the grid stays this small

}  // namespace

BoxGrid::BoxGrid(std::vector<Box> boxes) : boxes_(std::move(boxes)) {
    for (const Box& box : boxes_)
        bounds_.Add(box);
    if (boxes_.empty()) bounds_ = {{}, {}};
    const Vec3 size = bounds_.max - bounds_.min;
    SetCellSize(std::max({CELL_MIN, size.x / CELLS_MAX, size.y / CELLS_MAX}));
    while (CountEntries() > ENTRIES_PER_BOX * boxes_.size() + CELLS_MAX * CELLS_MAX)
        SetCellSize(cellSize_ * 2);
    contents_.resize(static_cast<size_t>(cells_[0]) * static_cast<size_t>(cells_[1]));
    for (size_t i = 0; i < boxes_.size(); ++i) {
        for (int y = CellOf(boxes_[i].min.y, 1); y <= CellOf(boxes_[i].max.y, 1); ++y) {
            for (int x = CellOf(boxes_[i].min.x, 0); x <= CellOf(boxes_[i].max.x, 0); ++x) {
                contents_[static_cast<size_t>(y * cells_[0] + x)].push_back(static_cast<int>(i));
            }
        }
    }
}

void BoxGrid::SetCellSize(double size) {
    cellSize_ = size;
    for (int axis = 0; axis < 2; ++axis)
        cells_[axis] = static_cast<int>((bounds_.max[axis] - bounds_.min[axis]) / cellSize_) + 1;
}

// How many entries all cells together would have.
size_t BoxGrid::CountEntries() const {
    size_t count = 0;
    for (const Box& box : boxes_) {
        count += static_cast<size_t>(CellOf(box.max.x, 0) - CellOf(box.min.x, 0) + 1) *
                 static_cast<size_t>(CellOf(box.max.y, 1) - CellOf(box.min.y, 1) + 1);
    }
    return count;
}

int BoxGrid::CellOf(double coordinate, int axis) const {
    const double cell = std::floor((coordinate - bounds_.min[axis]) / cellSize_);
    return static_cast<int>(std::clamp(cell, 0.0, static_cast<double>(cells_[axis] - 1)));
}

void BoxGrid::Find(const Box& near, double tolerance, std::vector<int>& found) const {
    found.clear();
    ForEachCell(near.Grown(tolerance), [&](const std::vector<int>& cell) {
        for (const int i : cell) {
            if (boxes_[static_cast<size_t>(i)].Touches(near, tolerance)) found.push_back(i);
        }
    });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
}
