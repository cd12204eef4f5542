#include "boards/gpu/gpu_lines.h"

#include <cmath>

namespace {

// A line that runs midway between two pixels takes the right or the lower one, so lines are moved by the smallest step
// that every OpenGL tells apart.
constexpr float TO_RIGHT_AND_DOWN = 1.0f / 256;

BoardVertex Moved(BoardVertex vertex, float x, float y) {
    vertex.x += x;
    vertex.y += y;
    return vertex;
}

void AppendQuad(const BoardVertex (&corners)[4], std::vector<BoardVertex>& triangles) {
    for (const int corner : {0, 1, 2, 0, 2, 3})
        triangles.push_back(corners[corner]);
}

void AppendPixel(const BoardVertex& centre, std::vector<BoardVertex>& triangles) {
    AppendQuad({Moved(centre, -0.5f, -0.5f), Moved(centre, -0.5f, 0.5f), Moved(centre, 0.5f, 0.5f),
                Moved(centre, 0.5f, -0.5f)},
               triangles);
}

// Makes a strip one pixel wide from centre to centre. It covers at most one of the pixels at its ends, so these are
// drawn on their own.
void AppendLine(BoardVertex from, BoardVertex to, std::vector<BoardVertex>& triangles) {
    for (BoardVertex* end : {&from, &to}) {
        end->x = std::floor(end->x) + 0.5f;
        end->y = std::floor(end->y) + 0.5f;
    }
    const bool isSteep = std::fabs(to.y - from.y) > std::fabs(to.x - from.x);
    const auto aside = [isSteep](const BoardVertex& end, float distance) {
        return isSteep ? Moved(end, distance, 0) : Moved(end, 0, distance);
    };
    const float before = -0.5f + TO_RIGHT_AND_DOWN;
    const float behind = 0.5f + TO_RIGHT_AND_DOWN;
    AppendQuad({aside(from, before), aside(from, behind), aside(to, behind), aside(to, before)}, triangles);
    AppendPixel(from, triangles);
    AppendPixel(to, triangles);
}

}  // namespace

void AppendLines(const BoardVertex* ends, uint32_t count, std::vector<BoardVertex>& triangles) {
    for (uint32_t i = 0; i + 2 <= count; i += 2)
        AppendLine(ends[i], ends[i + 1], triangles);
}
