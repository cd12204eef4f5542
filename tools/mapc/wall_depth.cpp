#include "mapc/wall_depth.h"

namespace {

// In engine units.
constexpr double DEPTH_STEP = 8;
constexpr double SAMPLE_STEP = 48;

std::vector<Box> BoxesOf(const Brushes& brushes) {
    std::vector<Box> boxes;
    for (const Brush& brush : brushes.list)
        boxes.push_back(brush.box);
    return boxes;
}

}  // namespace

WallDepth::WallDepth(const Brushes& brushes, const SealedSpace& space, double scale)
    : brushes_(brushes), space_(space), step_(DEPTH_STEP / scale), grid_(BoxesOf(brushes)) {}

bool WallDepth::IsOpen(const Vec3& p) const {
    if (!space_.Reaches(p)) return false;
    return !grid_.AnyAt(p, 0, [&](int i) {
        const Brush& brush = brushes_.list[static_cast<size_t>(i)];
        return brush.kind != BrushKind::Cutout && brush.Holds(p, brushes_.planes, 0);
    });
}

double WallDepth::At(const Vec3& place, const Vec3& back, double most) const {
    double depth = step_;
    while (depth < most && !IsOpen(place + back * depth))
        depth += step_;
    return std::min(depth, most);
}

std::vector<Vec3> SamplesAlong(const Vec3& from, const Vec3& to, double scale) {
    const Vec3 along = to - from;
    const int steps = 1 + static_cast<int>(Length(along) / (SAMPLE_STEP / scale));
    std::vector<Vec3> samples;
    for (int k = 0; k < steps; ++k)
        samples.push_back(from + along * ((k + 0.5) / steps));
    return samples;
}
