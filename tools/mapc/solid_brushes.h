// Where the brushes of a map are solid. Cut-outs are not.
#pragma once

#include "mapc/box_grid.h"
#include "mapc/brush.h"

class SolidBrushes {
public:
    explicit SolidBrushes(const Brushes& brushes) : brushes_(brushes), grid_(BoxesOf(brushes)) {}
    bool Hold(const Vec3& p) const;

private:
    const Brushes& brushes_;
    BoxGrid grid_;
};
