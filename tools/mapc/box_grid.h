// Finds the boxes near a place without looking at all of them.
#pragma once

#include "mapc/geometry.h"

#include <vector>

class BoxGrid {
public:
    explicit BoxGrid(std::vector<Box> boxes);
    // Numbers of the boxes that touch the given one, ascending.
    void Find(const Box& near, double tolerance, std::vector<int>& found) const;

private:
    int CellOf(double coordinate, int axis) const;

    std::vector<Box> boxes_;
    Box bounds_;
    double cellSize_ = 256;
    int cells_[2] = {1, 1};
    std::vector<std::vector<int>> contents_;  // by y * cells_[0] + x
};
