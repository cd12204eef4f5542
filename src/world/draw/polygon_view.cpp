#include "world/draw/polygon_view.h"

#include "camera/camera_tables.h"
#include "platform/timer.h"
#include "render/projection.h"
#include "world/draw/outcodes.h"
#include "world/light_map.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr float FAR_AWAY = 1 << 30;  // 16.16 pixels

struct ViewColumns {
    float x[3], y[3], z[3];  // the rows of the rotation: x gives the x of the view, and so on
    Vec3 translation;
};
ViewColumns matrix;

Float4 Turned(const float (&row)[3], float translation, Float4 x, Float4 y, Float4 z) {
    return x * row[0] + y * row[1] + z * row[2] + translation;
}

// From the world to camera space.
void Turn(CornerGroup& group) {
    const auto [x, y, z] = group;
    group.x = Turned(matrix.x, matrix.translation.x, x, y, z);
    group.y = Turned(matrix.y, matrix.translation.y, x, y, z);
    group.z = Turned(matrix.z, matrix.translation.z, x, y, z);
}

CornerGroup PositionsOf(const PolyVertex* const (&corners)[LANE_COUNT]) {
    static_assert(offsetof(WorldPoint, normal) == sizeof(Vec3), "there is something behind a position to be read");
    Float4 x = LoadLanes<Float4>(&WorldGeometry.points[corners[0]->point]);
    Float4 y = LoadLanes<Float4>(&WorldGeometry.points[corners[1]->point]);
    Float4 z = LoadLanes<Float4>(&WorldGeometry.points[corners[2]->point]);
    Float4 rest = LoadLanes<Float4>(&WorldGeometry.points[corners[3]->point]);
    Transpose(x, y, z, rest);
    return {x, y, z};
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

// Lanes in which a coordinate does not fit an integer, or is not a number.
Int4 Project(const CornerGroup& group, ScreenCorners& screen, LaneBounds& bounds) {
    const auto [x, y, inverseDepth] = ProjectLanes(group.x, group.y, group.z);
    screen.x = TruncToInts(x);
    screen.y = TruncToInts(y);
    screen.inverseDepth = inverseDepth;
    bounds = {Least(bounds.left, x), Greatest(bounds.right, x), Least(bounds.top, y), Greatest(bounds.bottom, y)};
    return (screen.x == INT32_MIN) | (screen.y == INT32_MIN);
}

// The bounds of all lanes, or false where they are far away. Truncating them afterwards is right, since truncation
// keeps the order.
bool Join(LaneBounds lanes, ScreenBounds& bounds) {
    lanes.right = -lanes.right;
    lanes.bottom = -lanes.bottom;
    Transpose(lanes.left, lanes.right, lanes.top, lanes.bottom);
    const Float4 least = Least(Least(lanes.left, lanes.right), Least(lanes.top, lanes.bottom));
    if (Bits(least > -FAR_AWAY) != 0xF) return false;
    const Int4 fixed = TruncToInts(least);
    bounds = {fixed[0], -fixed[1], fixed[2], -fixed[3]};
    return true;
}

template <typename Combine>
uint8_t Joined(Int4 lanes, Combine combine) {
    const Int4 halves = combine(lanes, __builtin_shufflevector(lanes, lanes, 2, 3, 0, 1));
    return static_cast<uint8_t>(combine(halves, __builtin_shufflevector(halves, halves, 1, 0, 3, 2))[0]);
}

}  // namespace

void BeginPolygonViews() {
    const float* m = ViewMatrix.rotation.m;
    matrix = {{m[0], m[1], m[2]}, {m[3], m[4], m[5]}, {m[6], m[7], m[8]}, ViewMatrix.translation};
}

namespace {

// Looks at what stands in the view's first groups, in the world.
void LookAtGroups(int count, PolygonView& view) {
    const bool projects = NearestFirst();
    constexpr float MOST = FAR_AWAY;
    Int4 outsideAll = Int4{} - 1, outsideAny = {}, unfit = {};
    LaneBounds bounds = {All(MOST), All(-MOST), All(MOST), All(-MOST)};
    for (int i = 0; i < count; ++i) {
        CornerGroup& group = view.groups[i];
        Turn(group);
        const Int4 outcodes = Outcodes(group);
        outsideAll &= outcodes;
        outsideAny |= outcodes;
        if (projects) unfit |= Project(group, view.screen[i], bounds);
    }
    view.outsideAll = Joined(outsideAll, [](Int4 a, Int4 b) { return a & b; });
    view.outsideAny = Joined(outsideAny, [](Int4 a, Int4 b) { return a | b; });
    view.isOnScreen = projects && Join(bounds, view.bounds) && Bits(unfit) == 0;
}

}  // namespace

void LookAtPolygon(const PolyRecord& polygon, PolygonView& view) {
    const PolyVertex* const corners = WorldGeometry.polyVertices + polygon.firstVertex;
    const int count = polygon.cornerCount;
    const auto corner = [&](int number) { return corners + OrFirst(number, count); };
    int groups = 0;
    for (int i = 0; i < count; i += LANE_COUNT)
        view.groups[groups++] = PositionsOf({corners + i, corner(i + 1), corner(i + 2), corner(i + 3)});
    LookAtGroups(groups, view);
}

void LookAtBox(const CornerBox& box, PolygonView& view) {
    const auto [low, high] = box;
    const float size = std::max({-low.x, -low.y, -low.z, high.x, high.y, high.z, 0.0f});
    const float margin = 1 + 1e-5f * size;  // far more than rounding can move a corner
    const float left = low.x - margin, right = high.x + margin, bottom = low.y - margin, top = high.y + margin;
    const Float4 x = {left, right, left, right}, y = {bottom, bottom, top, top};
    view.groups[0] = {x, y, All(low.z - margin)};
    view.groups[1] = {x, y, All(high.z + margin)};
    LookAtGroups(2, view);
}

void ShadeView(uint32_t polygon, PolygonView& view) {
    const int count = WorldGeometry.polygons[polygon].cornerCount;
    for (int i = 0; i < count; i += LANE_COUNT)
        view.screen[i / LANE_COUNT].intensity = CornerIntensities(polygon, i, view.groups[i / LANE_COUNT].z);
}

void StoreView(const PolyRecord& polygon, const PolygonView& view) {
    static_assert(offsetof(ViewPoint, transformStamp) == sizeof(Vec3));
    const PolyVertex* const corners = WorldGeometry.polyVertices + polygon.firstVertex;
    const auto stamp = static_cast<int32_t>(FrameCount);
    const auto stamps = reinterpret_cast<Float4>(Int4{} + stamp);
    for (int i = 0; i < polygon.cornerCount; i += LANE_COUNT) {
        const CornerGroup& group = view.groups[i / LANE_COUNT];
        Float4 point[LANE_COUNT] = {group.x, group.y, group.z, stamps};
        Transpose(point[0], point[1], point[2], point[3]);
        for (int lane = 0; lane < LANE_COUNT && i + lane < polygon.cornerCount; ++lane) {
            const uint32_t index = corners[i + lane].point;
            ViewPoint& viewPoint = WorldGeometry.viewPoints[index];
            StoreLanes(&viewPoint, point[lane]);
            WorldGeometry.outcodes[index] = view.outsideAny == 0 ? uint8_t{0} : Outcode(viewPoint);
        }
    }
}
