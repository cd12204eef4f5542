#include "mapc/net.h"

#include "mapc/skirts.h"
#include "records/walking_facts.h"

#include <array>

namespace {

// In engine units.
constexpr double MARGIN = 48;  // around the level
constexpr double RIM_HEIGHT = 400;
constexpr double RIM_THICK = 8;

// Seen from above counter-clockwise.
std::array<Vec3, 4> CornersOf(const Box& box, double margin, double height) {
    const Box wide = box.Grown(margin);
    return {Vec3{wide.min.x, wide.min.y, height},
            {wide.max.x, wide.min.y, height},
            {wide.max.x, wide.max.y, height},
            {wide.min.x, wide.max.y, height}};
}

}  // namespace

std::vector<Face> NetBelow(const std::vector<Face>& faces, Brushes& brushes, const Material& clip, double scale) {
    Box box;
    double lowest = std::numeric_limits<double>::max();
    for (const Face& face : faces) {
        box.Add(face.box);
        if (brushes.planes[face.plane].normal.z >= double{LANDING_SLOPE}) lowest = std::min(lowest, face.box.min.z);
    }
    if (lowest > box.max.z) return {};
    const double bottom = lowest - NET_DEPTH / scale;
    const double rim = RIM_HEIGHT / scale;
    const std::array<Vec3, 4> low = CornersOf(box, MARGIN / scale, bottom);
    const std::array<Vec3, 4> high = CornersOf(box, MARGIN / scale + SKIRT_LEAN * rim, bottom + rim);
    std::vector<Face> net{HiddenFace({low.begin(), low.end()}, brushes, clip)};
    const std::array<Vec3, 4> inner = CornersOf(box, (MARGIN - RIM_THICK) / scale, bottom);
    for (size_t i = 0; i < 4; ++i) {
        const size_t next = (i + 1) % 4;
        const Vec3 up{0, 0, rim};
        net.push_back(HiddenFace({inner[next], inner[i], inner[i] + up, inner[next] + up}, brushes, clip));
        net.push_back(HiddenFace({low[next], low[i], high[i], high[next]}, brushes, clip));
    }
    return net;
}
