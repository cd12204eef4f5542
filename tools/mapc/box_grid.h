// Finds the boxes near a place without looking at all of them.
#pragma once

#include "mapc/geometry.h"

#include <vector>

class BoxGrid {
public:
    explicit BoxGrid(std::vector<Box> boxes);
    // Numbers of the boxes that touch the given one, ascending.
    void Find(const Box& near, double tolerance, std::vector<int>& found) const;

    // Whether `test` holds for the number of any box that touches the point.
    template <class Test>
    bool AnyAt(const Vec3& p, double tolerance, Test test) const {
        const Box near = Box{p, p}.Grown(tolerance);
        bool any = false;
        ForEachCell(near, [&](const std::vector<int>& cell) {
            for (size_t i = 0; i < cell.size() && !any; ++i)
                any = boxes_[static_cast<size_t>(cell[i])].Touches(near, 0) && test(cell[i]);
        });
        return any;
    }

private:
    template <class Use>
    void ForEachCell(const Box& box, Use use) const {
        for (int y = CellOf(box.min.y, 1); y <= CellOf(box.max.y, 1); ++y) {
            for (int x = CellOf(box.min.x, 0); x <= CellOf(box.max.x, 0); ++x)
                use(contents_[static_cast<size_t>(y * cells_[0] + x)]);
        }
    }
    void SetCellSize(double size);
    size_t CountEntries() const;
    int CellOf(double coordinate, int axis) const;

    std::vector<Box> boxes_;
    Box bounds_;
    double cellSize_ = 256;
    int cells_[2] = {1, 1};
    std::vector<std::vector<int>>
        contents_;  // the boxes in each cell; the cell at x, y has the index y * cells_[0] + x
};
