#include "boards/cpu/triangle.h"

#include <bit>
#include <cmath>
#include <utility>

namespace {

struct Corner {
    int32_t x, y;  // 1/16 pixels
    const BoardVertex* vertex;
};

int32_t Sixteenths(float pixels) {
    const float scaled = pixels * 16.0F + 0.5F;
    const auto whole = static_cast<int32_t>(scaled);
    return whole - (static_cast<float>(whole) > scaled);
}

// The first row whose centre does not lie above.
int32_t RowFrom(int32_t y) {
    return (y + 7) >> 4;
}

// The quotient lies half a step of its divisor above what it should be: no error of rounding reaches a whole number.
Edge MakeEdge(const Corner& top, const Corner& bottom) {
    const int32_t dx = bottom.x - top.x;
    const int32_t dy = bottom.y - top.y;
    const int64_t numerator = int64_t{top.x + 8} * dy + int64_t{8 - top.y} * dx;
    const double inverse = 1 / (16.0 * dy);
    return {(static_cast<double>(numerator) - 0.5) * inverse, 16.0 * dx * inverse};
}

// How a value goes over the screen, from its differences to two corners. In double precision: on a sliver the
// differences of floats would be worth nothing.
class Slopes {
public:
    Slopes(const Corner& a, const Corner& b, const Corner& c, int64_t area) {
        const double scale = 16.0 / static_cast<double>(area);
        xB_ = (b.x - a.x) * scale;
        yB_ = (b.y - a.y) * scale;
        xC_ = (c.x - a.x) * scale;
        yC_ = (c.y - a.y) * scale;
        columns_ = 0.5 - a.x / 16.0;
        rows_ = 0.5 - a.y / 16.0;
    }
    // Origin is the centre of the screen's first pixel.
    void Of(double atA, double atB, double atC, double& origin, double& perRow, double& perColumn) const {
        const double toB = atB - atA;
        const double toC = atC - atA;
        perColumn = toB * yC_ - toC * yB_;
        perRow = toC * xB_ - toB * xC_;
        origin = atA + perColumn * columns_ + perRow * rows_;
    }

private:
    double xB_, yB_, xC_, yC_;
    double columns_, rows_;
};

void SetUpPlanes(const Slopes& slopes, const BoardVertex& a, const BoardVertex& b, const BoardVertex& c,
                 Triangle& triangle) {
    const auto setUp = [&](Plane plane, double atA, double atB, double atC) {
        slopes.Of(atA, atB, atC, triangle.origin[plane], triangle.perRow[plane], triangle.perColumn[plane]);
        triangle.columnStep[plane] = static_cast<float>(triangle.perColumn[plane]);
    };
    setUp(PLANE_OOW, a.oow, b.oow, c.oow);
    setUp(PLANE_SOW, a.sow, b.sow, c.sow);
    setUp(PLANE_TOW, a.tow, b.tow, c.tow);
    const auto determinant = [](const double* first, const double* second, int plane) {
        return 2 * (first[plane] * second[PLANE_OOW] - second[plane] * first[PLANE_OOW]);
    };
    for (const int i : {0, 1}) {
        const int plane = PLANE_SOW + i;
        const double twist = determinant(triangle.perColumn, triangle.perRow, plane);
        triangle.alongRow[i] = determinant(triangle.perColumn, triangle.origin, plane);
        triangle.alongRowPerRow[i] = twist;
        triangle.downColumn[i] = static_cast<float>(determinant(triangle.perRow, triangle.origin, plane));
        triangle.downColumnPerColumn[i] = static_cast<float>(-twist);
    }
}

// To the nearest, modulo 2^32: the sum has no room for a fraction.
uint32_t Fixed(double value) {
    constexpr double LIMIT = 1125899906842624.0;  // 2^50
    return static_cast<uint32_t>(std::bit_cast<uint64_t>(std::clamp(value * 65536, -LIMIT, LIMIT) + 6 * LIMIT));
}

void SetUpColours(const Slopes& slopes, const BoardVertex& a, const BoardVertex& b, const BoardVertex& c,
                  Triangle& triangle) {
    const auto setUp = [&](Channel channel, float atA, float atB, float atC, double added) {
        constexpr float LIMIT = 16384;
        double origin, perRow, perColumn;
        slopes.Of(std::clamp(atA, -LIMIT, LIMIT), std::clamp(atB, -LIMIT, LIMIT), std::clamp(atC, -LIMIT, LIMIT),
                  origin, perRow, perColumn);
        triangle.colourOrigin[channel] = Fixed(origin + added);
        triangle.colourPerRow[channel] = Fixed(perRow);
        triangle.colourPerColumn[channel] = Fixed(perColumn);
    };
    setUp(CHANNEL_BLUE, a.b, b.b, c.b, 1.5);
    setUp(CHANNEL_GREEN, a.g, b.g, c.g, 1.5);
    setUp(CHANNEL_RED, a.r, b.r, c.r, 1.5);
    setUp(CHANNEL_ALPHA, a.a, b.a, c.a, 0.5);
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
    triangle.firstRow = std::max(RowFrom(top.y), 0);
    triangle.endRow = std::min(RowFrom(bottom.y), BOARD_HEIGHT);
    const int64_t area =
        int64_t{middle.x - top.x} * (bottom.y - top.y) - int64_t{bottom.x - top.x} * (middle.y - top.y);
    if (area == 0 || triangle.firstRow >= triangle.endRow) return false;
    triangle.longEdgeIsLeft = area > 0;
    // An edge along a row bounds nothing.
    const Edge nowhere = {triangle.longEdgeIsLeft ? BOARD_WIDTH : 0.0, 0};
    triangle.longEdge = MakeEdge(top, bottom);
    triangle.upperEdge = top.y == middle.y ? nowhere : MakeEdge(top, middle);
    triangle.lowerEdge = middle.y == bottom.y ? nowhere : MakeEdge(middle, bottom);
    const Slopes slopes(top, middle, bottom, area);
    SetUpPlanes(slopes, *top.vertex, *middle.vertex, *bottom.vertex, triangle);
    SetUpColours(slopes, *top.vertex, *middle.vertex, *bottom.vertex, triangle);
    return true;
}
