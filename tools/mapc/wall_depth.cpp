#include "mapc/wall_depth.h"

namespace {

// In engine units.
constexpr double DEPTH_STEP = 8;
constexpr double SAMPLE_STEP = 48;

}  // namespace

WallDepth::WallDepth(const Brushes& brushes, const SealedSpace& space, double scale)
    : space_(space), step_(DEPTH_STEP / scale), solids_(brushes) {}

bool WallDepth::IsOpen(const Vec3& p) const {
    return space_.Reaches(p) && !solids_.Hold(p);
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
