#include "boards/gpu/gpu_lines.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float TO_RIGHT_AND_DOWN = 1.0F / 64;  // where a line runs midway between two pixels

// `part` of the way from the centre of one end's pixel to that of the other.
BoardVertex Between(const BoardVertex& from, const BoardVertex& to, float part) {
    const auto centre = [](float pixels) { return std::floor(pixels) + 0.5F; };
    BoardVertex vertex{};
    vertex.x = std::lerp(centre(from.x), centre(to.x), part);
    vertex.y = std::lerp(centre(from.y), centre(to.y), part);
    vertex.r = std::lerp(from.r, to.r, part);
    vertex.g = std::lerp(from.g, to.g, part);
    vertex.b = std::lerp(from.b, to.b, part);
    return vertex;
}

void AppendLine(const BoardVertex& from, const BoardVertex& to, std::vector<BoardVertex>& triangles) {
    const float columns = std::fabs(std::floor(to.x) - std::floor(from.x));
    const float rows = std::fabs(std::floor(to.y) - std::floor(from.y));
    const bool isSteep = rows > columns;
    const float steps = std::max({columns, rows, 1.0F});
    BoardVertex begin = Between(from, to, -0.5F / steps);
    BoardVertex end = Between(from, to, 1 + 0.5F / steps);
    if (columns == 0 && rows == 0) {
        begin.x -= 0.5F;
        end.x += 0.5F;
    }
    const auto aside = [isSteep](BoardVertex vertex, float distance) {
        (isSteep ? vertex.x : vertex.y) += distance + TO_RIGHT_AND_DOWN;
        return vertex;
    };
    const BoardVertex corners[4] = {aside(begin, -0.5F), aside(begin, 0.5F), aside(end, 0.5F), aside(end, -0.5F)};
    for (const int corner : {0, 1, 2, 0, 2, 3})
        triangles.push_back(corners[corner]);
}

}  // namespace

void AppendLines(const BoardVertex* ends, uint32_t count, std::vector<BoardVertex>& triangles) {
    for (uint32_t i = 0; i + 2 <= count; i += 2)
        AppendLine(ends[i], ends[i + 1], triangles);
}
