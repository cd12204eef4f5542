#include "mapc/solid_brushes.h"

bool SolidBrushes::Hold(const Vec3& p) const {
    return grid_.AnyAt(p, 0, [&](int i) {
        const Brush& brush = brushes_.list[static_cast<size_t>(i)];
        return brush.kind != BrushKind::Cutout && brush.Holds(p, brushes_.planes, 0);
    });
}
