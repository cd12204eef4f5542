#include "world/draw/polygon_view.h"

#include "camera/camera_tables.h"
#include "math/convert.h"
#include "platform/timer.h"
#include "render/projection.h"
#include "world/draw/outcodes.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

constexpr int GROUP = 4;
constexpr float FAR_AWAY = 1 << 30;  // 16.16 pixels

struct ViewColumns {
    float x[3], y[3], z[3];  // the rows of the rotation: x gives the x of the view, and so on
    Vec3 translation;
};
ViewColumns matrix;

// One bit a lane, set where all bits of the lane are.
int Bits(Int4 mask) {
#ifdef __x86_64__
    return _mm_movemask_ps(reinterpret_cast<__m128>(mask));
#else
    int bits = 0;
    for (int lane = 0; lane < GROUP; ++lane)
        bits |= (mask[lane] & 1) << lane;
    return bits;
#endif
}

Int4 TruncToInts(Float4 values) {
#ifdef __x86_64__
    return reinterpret_cast<Int4>(_mm_cvttps_epi32(values));
#else
    return Int4{TruncToInt(values[0]), TruncToInt(values[1]), TruncToInt(values[2]), TruncToInt(values[3])};
#endif
}

Float4 Load(const void* floats) {
    Float4 values;
    std::memcpy(&values, floats, sizeof values);
    return values;
}

void Store(void* bytes, Float4 values) {
    std::memcpy(bytes, &values, sizeof values);
}

// Exchanges rows and columns.
void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    const Float4 lowAb = __builtin_shufflevector(a, b, 0, 4, 1, 5), highAb = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 lowCd = __builtin_shufflevector(c, d, 0, 4, 1, 5), highCd = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(lowAb, lowCd, 0, 1, 4, 5);
    b = __builtin_shufflevector(lowAb, lowCd, 2, 3, 6, 7);
    c = __builtin_shufflevector(highAb, highCd, 0, 1, 4, 5);
    d = __builtin_shufflevector(highAb, highCd, 2, 3, 6, 7);
}

Float4 Turned(const float (&row)[3], float translation, Float4 x, Float4 y, Float4 z) {
    return x * row[0] + y * row[1] + z * row[2] + translation;
}

void Turn(const PolyVertex* const (&corners)[GROUP], CornerGroup& group) {
    static_assert(offsetof(WorldPoint, normal) == sizeof(Vec3), "there is something behind a position to be read");
    Float4 x = Load(&WorldGeometry.points[corners[0]->point]);
    Float4 y = Load(&WorldGeometry.points[corners[1]->point]);
    Float4 z = Load(&WorldGeometry.points[corners[2]->point]);
    Float4 rest = Load(&WorldGeometry.points[corners[3]->point]);
    Transpose(x, y, z, rest);
    group.x = Turned(matrix.x, matrix.translation.x, x, y, z);
    group.y = Turned(matrix.y, matrix.translation.y, x, y, z);
    group.z = Turned(matrix.z, matrix.translation.z, x, y, z);
}

uint8_t Outcode(const ViewPoint& point) {
    return SideOutcode(point) | (point.z > FarDistance ? OUT_DEPTH : uint8_t{0});
}

Int4 Outcodes(const CornerGroup& group) {
    return ((group.x > group.z) & OUT_RIGHT) | ((-group.x > group.z) & OUT_LEFT) | ((group.y > group.z) & OUT_TOP) |
           ((-group.y > group.z) & OUT_BOTTOM) | ((group.z > FarDistance) & OUT_DEPTH);
}

// The least and the greatest of both screen coordinates, in each lane over its own corners.
struct LaneBounds {
    Float4 left, right, top, bottom;
};

Float4 Least(Float4 a, Float4 b) {
    return a < b ? a : b;
}

Float4 Greatest(Float4 a, Float4 b) {
    return a > b ? a : b;
}

bool IsNear(Float4 x, Float4 y) {
    return Bits((x < FAR_AWAY) & (x > -FAR_AWAY) & (y < FAR_AWAY) & (y > -FAR_AWAY)) == 0xF;
}

void Project(CornerGroup& group, LaneBounds& bounds, PolygonView& view) {
    const Float4 inverse = group.z < NEAREST_DEPTH ? Float4{} : 1.0f / group.z;
    const Float4 x = ScreenX(group.x, inverse) * 65536.0f;
    const Float4 y = ScreenY(group.y, inverse) * 65536.0f;
    group.screenX = TruncToInts(x);
    group.screenY = TruncToInts(y);
    group.inverseDepth = inverse;
    view.isOnScreen &= IsNear(x, y);
    bounds = {Least(bounds.left, x), Greatest(bounds.right, x), Least(bounds.top, y), Greatest(bounds.bottom, y)};
}

// The bounds of all lanes. Truncating them afterwards is right, since truncation keeps the order.
ScreenBounds Joined(LaneBounds lanes) {
    lanes.right = -lanes.right;
    lanes.bottom = -lanes.bottom;
    Transpose(lanes.left, lanes.right, lanes.top, lanes.bottom);
    const Int4 least = TruncToInts(Least(Least(lanes.left, lanes.right), Least(lanes.top, lanes.bottom)));
    return {least[0], -least[1], least[2], -least[3]};
}

}  // namespace

void BeginPolygonViews() {
    const float* m = ViewMatrix.rotation.m;
    matrix = {{m[0], m[1], m[2]}, {m[3], m[4], m[5]}, {m[6], m[7], m[8]}, ViewMatrix.translation};
}

void LookAtPolygon(const PolyRecord& polygon, PolygonView& view) {
    const PolyVertex* const corners = WorldGeometry.polyVertices + polygon.firstVertex;
    const int last = polygon.cornerCount - 1;
    Int4 outsideAll = Int4{} - 1, outsideAny = {};
    view.isOnScreen = NearestFirst();
    const bool projects = view.isOnScreen;
    constexpr float MOST = FAR_AWAY;
    LaneBounds bounds = {Float4{} + MOST, Float4{} - MOST, Float4{} + MOST, Float4{} - MOST};
    for (int i = 0; i <= last; i += GROUP) {
        CornerGroup& group = view.groups[i / GROUP];
        Turn({corners + i, corners + std::min(i + 1, last), corners + std::min(i + 2, last),
              corners + std::min(i + 3, last)},
             group);
        const Int4 outcodes = Outcodes(group);
        outsideAll &= outcodes;
        outsideAny |= outcodes;
        if (projects) Project(group, bounds, view);
    }
    view.outsideAll = static_cast<uint8_t>(outsideAll[0] & outsideAll[1] & outsideAll[2] & outsideAll[3]);
    view.outsideAny = static_cast<uint8_t>(outsideAny[0] | outsideAny[1] | outsideAny[2] | outsideAny[3]);
    if (view.isOnScreen) view.bounds = Joined(bounds);
}

void StoreView(const PolyRecord& polygon, const PolygonView& view) {
    static_assert(offsetof(ViewPoint, transformStamp) == sizeof(Vec3));
    static_assert(offsetof(ViewPoint, projectionStamp) == sizeof(Float4));
    const PolyVertex* const corners = WorldGeometry.polyVertices + polygon.firstVertex;
    const auto stamp = static_cast<int32_t>(FrameCount);
    const auto stamps = reinterpret_cast<Float4>(Int4{} + stamp);
    for (int i = 0; i < polygon.cornerCount; i += GROUP) {
        const CornerGroup& group = view.groups[i / GROUP];
        Float4 point[GROUP] = {group.x, group.y, group.z, stamps};
        Transpose(point[0], point[1], point[2], point[3]);
        Float4 screen[GROUP] = {stamps, reinterpret_cast<Float4>(group.screenX),
                                reinterpret_cast<Float4>(group.screenY), group.inverseDepth};
        Transpose(screen[0], screen[1], screen[2], screen[3]);
        for (int lane = 0; lane < GROUP && i + lane < polygon.cornerCount; ++lane) {
            const uint32_t index = corners[i + lane].point;
            ViewPoint& viewPoint = WorldGeometry.viewPoints[index];
            Store(&viewPoint, point[lane]);
            if (NearestFirst()) Store(&viewPoint.projectionStamp, screen[lane]);
            WorldGeometry.outcodes[index] = view.outsideAny == 0 ? uint8_t{0} : Outcode(viewPoint);
        }
    }
}
