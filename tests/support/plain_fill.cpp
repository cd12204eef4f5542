#include "support/plain_fill.h"

#include "render/render_tables.h"
#include "render/textures.h"
#include "world/world_tables.h"

#include <cmath>
#include <vector>

namespace {

constexpr int QUANTITIES = 3;  // u, v, light; 8.8 fixed point
constexpr int BLOCK = 16;      // pixels between two divisions by depth
constexpr int64_t WIDEST_SPAN = 1023;

// Quantities divided by depth, and 1 / depth, at a corner or at one end of a row's span.
struct Place {
    int64_t x, y;  // 16.16
    float over[QUANTITIES], inverse;

    int64_t Row() const { return (y + 0xFFFF) >> 16; }
    int64_t Column() const { return (x + 0xFFFF) >> 16; }
};

uint32_t Rounded(float value) {
    const double nearest = std::nearbyint(double{value});
    const bool fits = nearest >= -2147483648.0 && nearest < 2147483648.0;
    return fits ? static_cast<uint32_t>(static_cast<int32_t>(nearest)) : 0x80000000u;
}

float Whole(uint32_t value) {
    return static_cast<float>(static_cast<int32_t>(value));
}

float OneOver(int64_t count) {
    return static_cast<float>(1.0 / static_cast<double>(count));
}

// Where an edge crosses the rows of the frame that it covers, from the top down.
void WalkPlainly(const Place& top, const Place& bottom, std::vector<Place>& rows) {
    const float preStep = static_cast<float>(top.Row() * 65536 - top.y) / 65536;
    const float perRow = 65536 / static_cast<float>(bottom.y - top.y);
    const float slope = static_cast<float>(bottom.x - top.x) * perRow;
    uint32_t x = Rounded(static_cast<float>(top.x) + slope * preStep);
    Place place = top;
    const auto addSteps = [&](float rowCount) {
        for (int q = 0; q < QUANTITIES; ++q)
            place.over[q] += (bottom.over[q] - top.over[q]) * perRow * rowCount;
        place.inverse += (bottom.inverse - top.inverse) * perRow * rowCount;
    };
    addSteps(preStep);
    for (int64_t row = top.Row(); row < bottom.Row() && row < ScreenHeight; row++, addSteps(1)) {
        place.x = static_cast<int32_t>(x);
        if (row >= 0) rows[static_cast<size_t>(row)] = place;
        x += Rounded(slope);
    }
}

// A quantity at each of the n pixels between two ends.
std::vector<uint32_t> Along(const Place& left, const Place& right, int64_t n, int q) {
    const float t = static_cast<float>(left.Column() * 65536 - left.x) / 65536 * OneOver(n);
    float over = left.over[q] + (right.over[q] - left.over[q]) * t;
    float inverse = left.inverse + (right.inverse - left.inverse) * t;
    uint32_t value = Rounded(over * (1 / inverse));
    std::vector<uint32_t> values;
    const auto run = [&](int64_t pixels, uint32_t step) {
        for (int64_t i = 0; i < pixels; i++, value += step)
            values.push_back(value);
    };
    if (n < BLOCK) {
        run(n, Rounded((right.over[q] * (1 / right.inverse) - Whole(value)) * OneOver(n)));
        return values;
    }
    for (int64_t block = 0; block < n / BLOCK; ++block) {
        over += BLOCK * (right.over[q] - left.over[q]) * OneOver(n);
        inverse += BLOCK * (right.inverse - left.inverse) * OneOver(n);
        const uint32_t end = Rounded(over * (1 / inverse));
        run(BLOCK, static_cast<uint32_t>(static_cast<int32_t>(end - value) >> 4));
        value = end;
    }
    if (n % BLOCK > 0) run(n % BLOCK, Rounded((right.over[q] / right.inverse - Whole(value)) * OneOver(n % BLOCK)));
    return values;
}

}  // namespace

void FillPlainly(const PolyRecord& polygon, bool skipsTexelZero) {
    const TextureRecord* texture = PolygonTexture(polygon);
    if (texture == nullptr) return;
    const uint32_t mask = (texture->height - 1u) * 256 + texture->width - 1u;
    std::vector<Place> corners;
    for (int i = 0; i < polygon.cornerCount; ++i) {
        const PolyVertex& corner = WorldGeometry.polyVertices[polygon.firstVertex + i];
        const ViewPoint& point = WorldGeometry.viewPoints[corner.point];
        const float inverse = point.inverseDepth;
        corners.push_back({point.screen.fixed.x,
                           point.screen.fixed.y,
                           {corner.u * inverse, corner.v * inverse, corner.intensity * inverse},
                           inverse});
    }
    const auto height = static_cast<size_t>(ScreenHeight);
    std::vector<Place> left(height), right(height);  // rows that no edge crosses have spans of no width
    for (size_t i = 0; i < corners.size(); ++i) {
        const Place &from = corners[i], &to = corners[(i + 1) % corners.size()];
        to.y < from.y ? WalkPlainly(to, from, right) : WalkPlainly(from, to, left);
    }
    for (size_t y = 0; y < height; ++y) {
        const int64_t first = left[y].Column(), n = right[y].Column() - first;
        if (n <= 0 || n > WIDEST_SPAN) continue;
        std::vector<uint32_t> values[QUANTITIES];
        for (int q = 0; q < QUANTITIES; ++q)
            values[q] = Along(left[y], right[y], n, q);
        for (int64_t i = 0; i < n; ++i) {
            if (first + i < 0 || first + i >= ScreenWidth) continue;
            const auto at = [&](int q) { return values[q][static_cast<size_t>(i)] >> 8 & 0xFF; };
            const uint8_t texel = TextureImage[texture->texelOffset + ((at(1) * 256 + at(0)) & mask)];
            if (texel == 0 && skipsTexelZero) continue;
            FrameBuffer[static_cast<int64_t>(y) * FramePitch + first + i] = ShadeTable[at(2) * 256 + texel];
        }
    }
}
