#include "boards/cpu/triangle.h"
#include "machine/bits.h"

#include <utility>

namespace {

struct Corner {
    int32_t x, y;  // 1/16 pixels
    const BoardVertex* vertex;
};

int32_t Sixteenths(float pixels) {
    const float scaled = pixels * 16.0f + 0.5f;
    const auto whole = static_cast<int32_t>(scaled);
    return whole - (static_cast<float>(whole) > scaled);
}

// The first row whose centre does not lie above y.
int32_t RowFrom(int32_t y) {
    return (y + 7) >> 4;
}

// The quotient is made half a step of its divisor too large, so that no rounding error can carry it across a whole
// number.
Edge MakeEdge(const Corner& top, const Corner& bottom) {
    const double dx = bottom.x - top.x;
    const double dy = bottom.y - top.y;
    const double inverse = 1 / (16 * dy);
    return {((top.x + 8) * dy + (8 - top.y) * dx - 0.5) * inverse, 16 * dx * inverse};
}

// Four values at once, in loops that compilers turn into vector instructions.
struct Four {
    double of[4];
};
static_assert(PLANE_COUNT == 4 && CHANNEL_COUNT == 4);

struct Planes {
    Four origin, perRow, perColumn;
};

// How values change over the screen, from their differences to two corners. Double precision is needed: on a sliver the
// differences of floats would mean nothing.
class Slopes {
public:
    Slopes(const Corner& a, const Corner& b, const Corner& c, double area) {
        const double scale = 16 / area;
        xB_ = (b.x - a.x) * scale;
        yB_ = (b.y - a.y) * scale;
        xC_ = (c.x - a.x) * scale;
        yC_ = (c.y - a.y) * scale;
        columns_ = 0.5 - a.x / 16.0;
        rows_ = 0.5 - a.y / 16.0;
    }
    // The origin is the centre of the screen's first pixel.
    Planes Of(const Four& atA, const Four& atB, const Four& atC) const {
        Planes planes;
        for (int i = 0; i < 4; ++i) {
            const double toB = atB.of[i] - atA.of[i];
            const double toC = atC.of[i] - atA.of[i];
            planes.perColumn.of[i] = toB * yC_ - toC * yB_;
            planes.perRow.of[i] = toC * xB_ - toB * xC_;
            planes.origin.of[i] = atA.of[i] + planes.perColumn.of[i] * columns_ + planes.perRow.of[i] * rows_;
        }
        return planes;
    }

private:
    double xB_, yB_, xC_, yC_;
    double columns_, rows_;
};

void SetUpPlanes(const Slopes& slopes, const Corner* corners, Triangle& triangle) {
    const auto at = [](const Corner& corner) {
        return Four{{corner.vertex->oow, corner.vertex->sow, corner.vertex->tow, 0}};
    };
    const Planes planes = slopes.Of(at(corners[0]), at(corners[1]), at(corners[2]));
    for (int i = 0; i < PLANE_COUNT; ++i) {
        triangle.origin[i] = planes.origin.of[i];
        triangle.perRow[i] = planes.perRow.of[i];
        triangle.perColumn[i] = planes.perColumn.of[i];
        triangle.columnStep[i] = static_cast<float>(planes.perColumn.of[i]);
    }
    const auto determinant = [](const Four& first, const Four& second, int plane) {
        return 2 * (first.of[plane] * second.of[PLANE_OOW] - second.of[plane] * first.of[PLANE_OOW]);
    };
    for (const int i : {0, 1}) {
        const int plane = PLANE_SOW + i;
        const double twist = determinant(planes.perColumn, planes.perRow, plane);
        triangle.alongRow[i] = determinant(planes.perColumn, planes.origin, plane);
        triangle.alongRowPerRow[i] = twist;
        triangle.downColumn[i] = static_cast<float>(determinant(planes.perRow, planes.origin, plane));
        triangle.downColumnPerColumn[i] = static_cast<float>(-twist);
    }
}

// Rounds to the nearest 1/65536, modulo 2^32, by a sum that has no room for a finer fraction. Only on slivers of hardly
// a pixel can a value be too large for this.
void ToFixed(const Four& values, uint32_t* fixed) {
    constexpr double SHIFTER = 6755399441055744.0;  // 1.5 x 2^52
    for (int i = 0; i < CHANNEL_COUNT; ++i)
        fixed[i] = static_cast<uint32_t>(BitCast<uint64_t>(values.of[i] * 65536 + SHIFTER));
}

void SetUpColours(const Slopes& slopes, const Corner* corners, Triangle& triangle) {
    const auto at = [](const Corner& corner) {
        constexpr float LIMIT = 16384;
        const BoardVertex& vertex = *corner.vertex;
        Four colour{{vertex.b, vertex.g, vertex.r, vertex.a}};
        for (double& value : colour.of)
            value = std::min<double>(std::max<double>(value, -LIMIT), LIMIT);
        return colour;
    };
    Planes planes = slopes.Of(at(corners[0]), at(corners[1]), at(corners[2]));
    constexpr Four ADDED{{1.5, 1.5, 1.5, 0.5}};
    for (int i = 0; i < CHANNEL_COUNT; ++i)
        planes.origin.of[i] += ADDED.of[i];
    ToFixed(planes.origin, triangle.colourOrigin);
    ToFixed(planes.perRow, triangle.colourPerRow);
    ToFixed(planes.perColumn, triangle.colourPerColumn);
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
    const double area = double(middle.x - top.x) * (bottom.y - top.y) - double(bottom.x - top.x) * (middle.y - top.y);
    if (area == 0 || triangle.firstRow >= triangle.endRow) return false;
    triangle.longEdgeIsLeft = area > 0;
    // An edge that runs along a row bounds no row.
    const Edge nowhere = {triangle.longEdgeIsLeft ? BOARD_WIDTH : 0.0, 0};
    triangle.longEdge = MakeEdge(top, bottom);
    triangle.upperEdge = top.y == middle.y ? nowhere : MakeEdge(top, middle);
    triangle.lowerEdge = middle.y == bottom.y ? nowhere : MakeEdge(middle, bottom);
    const Slopes slopes(top, middle, bottom, area);
    SetUpPlanes(slopes, corners, triangle);
    SetUpColours(slopes, corners, triangle);
    return true;
}
