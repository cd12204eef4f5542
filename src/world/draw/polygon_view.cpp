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

// Numbers of the frame, each in all lanes.
struct FrameLanes {
    Float4 x[3], y[3], z[3];  // the rows of the rotation: x gives the x of the view, and so on
    Float4 xTranslation, yTranslation, zTranslation;
    Float4 farDistance;
};
FrameLanes frame;

Float4 Turned(const Float4 (&row)[3], Float4 translation, const CornerGroup& group) {
    return group.x * row[0] + group.y * row[1] + group.z * row[2] + translation;
}

// From the world to camera space.
CornerGroup Turned(const CornerGroup& group) {
    return {Turned(frame.x, frame.xTranslation, group), Turned(frame.y, frame.yTranslation, group),
            Turned(frame.z, frame.zTranslation, group)};
}

uint8_t Outcode(const ViewPoint& point) {
    return SideOutcode(point) | (point.z > FarDistance ? OUT_DEPTH : uint8_t{0});
}

// Lanes whose outcode is not 0.
Int4 AreOutside(const CornerGroup& group) {
    return (Absolute(group.x) > group.z) | (Absolute(group.y) > group.z) | (group.z > frame.farDistance);
}

Int4 Outcodes(const CornerGroup& group) {
    return ((group.x > group.z) & OUT_RIGHT) | ((-group.x > group.z) & OUT_LEFT) | ((group.y > group.z) & OUT_TOP) |
           ((-group.y > group.z) & OUT_BOTTOM) | ((group.z > frame.farDistance) & OUT_DEPTH);
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
bool Join(const LaneBounds& lanes, ScreenBounds& bounds) {
    const Float4 least = Least(__builtin_shufflevector(lanes.left, lanes.top, 0, 4, 1, 5),
                               __builtin_shufflevector(lanes.left, lanes.top, 2, 6, 3, 7));
    const Float4 greatest = Greatest(__builtin_shufflevector(lanes.right, lanes.bottom, 0, 4, 1, 5),
                                     __builtin_shufflevector(lanes.right, lanes.bottom, 2, 6, 3, 7));
    const Float4 joined = __builtin_shufflevector(
        Least(least, __builtin_shufflevector(least, least, 2, 3, 0, 1)),
        Greatest(greatest, __builtin_shufflevector(greatest, greatest, 2, 3, 0, 1)), 0, 1, 4, 5);
    if (Bits(Absolute(joined) < FAR_AWAY) != ALL_BITS) return false;
    static_assert(sizeof bounds == sizeof(Int4) && offsetof(ScreenBounds, top) == 4 &&
                  offsetof(ScreenBounds, right) == 8);
    StoreLanes(&bounds, TruncToInts(joined));
    return true;
}

template <typename Combine>
uint8_t Joined(Int4 lanes, Combine combine) {
    const Int4 halves = combine(lanes, __builtin_shufflevector(lanes, lanes, 2, 3, 0, 1));
    return static_cast<uint8_t>(combine(halves, __builtin_shufflevector(halves, halves, 1, 0, 3, 2))[0]);
}

// Sets outsideAll and outsideAny.
void FindOutcodes(PolygonView& view) {
    Int4 outsideAll = Int4{} - 1, outsideAny = {};
    for (int i = 0; i < view.groupCount; ++i) {
        const Int4 outcodes = Outcodes(view.groups[i]);
        outsideAll &= outcodes;
        outsideAny |= outcodes;
    }
    view.outsideAll = Joined(outsideAll, [](Int4 a, Int4 b) { return a & b; });
    view.outsideAny = Joined(outsideAny, [](Int4 a, Int4 b) { return a | b; });
}

}  // namespace

void BeginPolygonViews() {
    const float* m = ViewMatrix.rotation.m;
    const Vec3& translation = ViewMatrix.translation;
    frame = {{All(m[0]), All(m[1]), All(m[2])},
             {All(m[3]), All(m[4]), All(m[5])},
             {All(m[6]), All(m[7]), All(m[8])},
             All(translation.x),
             All(translation.y),
             All(translation.z),
             All(FarDistance)};
}

namespace {

// Looks at corners in the world.
void LookAtGroups(const CornerGroup* groups, int count, PolygonView& view) {
    Int4 outside = {};
    for (int i = 0; i < count; ++i) {
        view.groups[i] = Turned(groups[i]);
        outside |= AreOutside(view.groups[i]);
    }
    view.groupCount = count;
    view.outsideAll = view.outsideAny = 0;
    if (Bits(outside) != 0) FindOutcodes(view);
}

}  // namespace

void LookAtPolygon(uint32_t polygon, PolygonView& view) {
    const int groups = (WorldGeometry.polygons[polygon].cornerCount + LANE_COUNT - 1) / LANE_COUNT;
    LookAtGroups(&PolygonLanes.cornerGroups[PolygonLanes.firstGroup[polygon]], groups, view);
}

void LookAtBox(const CornerBox& box, PolygonView& view) {
    const auto [low, high] = box;
    const float size = std::max({-low.x, -low.y, -low.z, high.x, high.y, high.z, 0.0f});
    const float margin = 1 + 1e-5f * size;  // far more than rounding can move a corner
    const float left = low.x - margin, right = high.x + margin, bottom = low.y - margin, top = high.y + margin;
    const Float4 x = {left, right, left, right}, y = {bottom, bottom, top, top};
    const CornerGroup groups[] = {{x, y, All(low.z - margin)}, {x, y, All(high.z + margin)}};
    LookAtGroups(groups, 2, view);
}

bool ProjectView(PolygonView& view) {
    constexpr float MOST = FAR_AWAY;
    Int4 unfit = {};
    LaneBounds bounds = {All(MOST), All(-MOST), All(MOST), All(-MOST)};
    for (int i = 0; i < view.groupCount; ++i)
        unfit |= Project(view.groups[i], view.screen[i], bounds);
    return Join(bounds, view.bounds) && Bits(unfit) == 0;
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
