#include "boards/cpu/triangle.h"

#include <cmath>
#include <utility>

namespace {

struct Corner {
    int32_t x, y;  // 1/16 pixels
    const BoardVertex* vertex;
};

int32_t Sixteenths(float pixels) {
    return static_cast<int32_t>(std::floor(pixels * 16.0F + 0.5F));
}

// The first row whose centre does not lie above.
int32_t RowFrom(int32_t y) {
    return (y + 7) >> 4;
}

Edge MakeEdge(const Corner& top, const Corner& bottom) {
    return {top.x, top.y, bottom.x - top.x, bottom.y - top.y};
}

void ReadValues(const BoardVertex& vertex, double* values) {
    const float all[VALUE_COUNT] = {vertex.oow, vertex.sow, vertex.tow, vertex.r, vertex.g, vertex.b, vertex.a, 0};
    std::copy_n(all, VALUE_COUNT, values);
}

// In double precision: on a sliver the differences of floats would be worth nothing.
void SetUpValues(const Corner& a, const Corner& b, const Corner& c, int64_t area, Triangle& triangle) {
    double atB[VALUE_COUNT];
    double atC[VALUE_COUNT];
    ReadValues(*a.vertex, triangle.origin);
    ReadValues(*b.vertex, atB);
    ReadValues(*c.vertex, atC);
    triangle.x = a.x / 16.0;
    triangle.y = a.y / 16.0;
    const double scale = 16.0 / static_cast<double>(area);
    const double xB = (b.x - a.x) * scale;
    const double yB = (b.y - a.y) * scale;
    const double xC = (c.x - a.x) * scale;
    const double yC = (c.y - a.y) * scale;
    for (int i = 0; i < VALUE_COUNT; ++i) {
        const double toB = atB[i] - triangle.origin[i];
        const double toC = atC[i] - triangle.origin[i];
        triangle.perColumn[i] = toB * yC - toC * yB;
        triangle.perRow[i] = toC * xB - toB * xC;
        triangle.columnStep[i] = static_cast<float>(triangle.perColumn[i]);
        triangle.rowStep[i] = static_cast<float>(triangle.perRow[i]);
    }
}

}  // namespace

bool SetUpTriangle(const BoardVertex* vertices, Triangle& triangle) {
    Corner corners[3];
    for (int i = 0; i < 3; ++i)
        corners[i] = {Sixteenths(vertices[i].x), Sixteenths(vertices[i].y), &vertices[i]};
    auto& [top, middle, bottom] = corners;
    if (middle.y < top.y) std::swap(top, middle);
    if (bottom.y < middle.y) std::swap(middle, bottom);
    if (middle.y < top.y) std::swap(top, middle);
    const int64_t area =
        int64_t{middle.x - top.x} * (bottom.y - top.y) - int64_t{bottom.x - top.x} * (middle.y - top.y);
    if (area == 0) return false;
    triangle.firstRow = std::max(RowFrom(top.y), 0);
    triangle.middleRow = RowFrom(middle.y);
    triangle.endRow = std::min(RowFrom(bottom.y), BOARD_HEIGHT);
    triangle.longEdgeIsLeft = area > 0;
    triangle.edges[0] = MakeEdge(top, bottom);
    triangle.edges[1] = MakeEdge(top, middle);
    triangle.edges[2] = MakeEdge(middle, bottom);
    if (triangle.firstRow < triangle.endRow) SetUpValues(top, middle, bottom, area, triangle);
    return true;
}
