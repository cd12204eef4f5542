#include "world/draw/render_world.h"

#include "camera/camera_tables.h"
#include "character/character_tables.h"
#include "math/convert.h"
#include "math/vectors.h"
#include "math/world_planes.h"
#include "platform/timer.h"
#include "render/lines.h"
#include "render/pipeline.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "render/submit.h"
#include "render/textures.h"
#include "world/draw/draw_character.h"
#include "world/draw/polygon_view.h"
#include "world/polygon_lanes.h"
#include "world/world_tables.h"

#include <algorithm>
#include <bit>
#include <cmath>

int32_t RenderListCount;

namespace {

constexpr float NO_FACING_POLYGON = 100000.0f;  // farther than any plane of a level

enum BoxResult { BOX_INVISIBLE, BOX_INSIDE, BOX_CROSSING };  // relative to the side planes

struct Box {
    Vec3 centre;
    float radius;        // radius of the sphere test, root 2 larger than the bounding sphere's
    float radiusAspect;  // the same, scaled to the vertical direction of the view
    Vec3 halfExtents;    // half the sides of the box; any sign
};

// A plane of the view volume: a point q is outside when normal . q > offset.
struct ViewPlane {
    Vec3 normal;
    float offset;
};

constexpr int FAR_PLANE = 0;  // the others are the side planes
constexpr int VIEW_PLANE_COUNT = 5;
ViewPlane viewPlanes[VIEW_PLANE_COUNT];

ViewPlane PlaneThrough(Vec3 p, Vec3 q, Vec3 s) {
    const Vec3 normal = Cross(q - p, s - p);
    return {normal, Dot(normal, p)};
}

Vec3 ViewToWorld(float x, float y, float z) {
    RotateVectorT(x, y, z, CameraRotation);
    return RotatedVector + CameraPos;
}

void BuildViewPlanes() {
    const float width = FarDistance;
    const float height = FarDistance * (ProjectionScaleY / ProjectionScaleX);
    // Kept as it is: the corners lie one unit beyond the far distance.
    const float depth = FarDistance + 1.0f;
    const Vec3 topRight = ViewToWorld(width, height, depth);
    const Vec3 bottomRight = ViewToWorld(width, -height, depth);
    const Vec3 bottomLeft = ViewToWorld(-width, -height, depth);
    const Vec3 topLeft = ViewToWorld(-width, height, depth);
    viewPlanes[FAR_PLANE] = PlaneThrough(bottomLeft, bottomRight, topRight);
    viewPlanes[1] = PlaneThrough(CameraPos, topRight, bottomRight);
    viewPlanes[2] = PlaneThrough(CameraPos, bottomLeft, topLeft);
    viewPlanes[3] = PlaneThrough(CameraPos, topLeft, topRight);
    viewPlanes[4] = PlaneThrough(CameraPos, bottomRight, bottomLeft);
}

template <typename NodeOrLeaf>
Box BoxOf(const NodeOrLeaf& record) {
    return {record.centre, record.radiusRoot2, record.radiusAspect, record.halfExtents};
}

// The exact test, for boxes whose spheres cross a side plane. Only two of the eight corners decide: the one least far
// along the plane's normal and the one farthest along it; rounding keeps their order.
BoxResult TestBoxCorners(const Box& box) {
    const Vec3 half = {std::fabs(box.halfExtents.x), std::fabs(box.halfExtents.y), std::fabs(box.halfExtents.z)};
    const Vec3 low = box.centre - half;
    const Vec3 high = box.centre + half;
    BoxResult result = BOX_INSIDE;
    for (int k = 0; k < VIEW_PLANE_COUNT; ++k) {
        const ViewPlane& plane = viewPlanes[k];
        const bool x = plane.normal.x < 0.0f;
        const bool y = plane.normal.y < 0.0f;
        const bool z = plane.normal.z < 0.0f;
        const Vec3 least = {x ? high.x : low.x, y ? high.y : low.y, z ? high.z : low.z};
        if (Dot(plane.normal, least) > plane.offset) return BOX_INVISIBLE;
        const Vec3 farthest = {x ? low.x : high.x, y ? low.y : high.y, z ? low.z : high.z};
        if (k != FAR_PLANE && Dot(plane.normal, farthest) > plane.offset) result = BOX_CROSSING;
    }
    return result;
}

BoxResult TestBox(const Box& box) {
    const Vec3 fromEye = box.centre - CameraPos;
    // Kept as it is: the test uses whole numbers, cut before and after the turn.
    RotateIntVector(TruncToInt(fromEye.x), TruncToInt(fromEye.y), TruncToInt(fromEye.z), ViewMatrix.rotation);
    const float z = static_cast<float>(RotatedIntVector.z);
    if (z <= -box.radius || z >= FarDistance + box.radius) return BOX_INVISIBLE;
    const float x = std::fabs(static_cast<float>(RotatedIntVector.x));
    if (z < x - box.radius) return BOX_INVISIBLE;
    const float y = std::fabs(static_cast<float>(RotatedIntVector.y));
    if (z < y - box.radiusAspect) return BOX_INVISIBLE;
    if (z > x + box.radius && z > y + box.radiusAspect) return BOX_INSIDE;
    return TestBoxCorners(box);
}

bool FacesCamera(uint32_t polygon) {
    return PolySideOfCamera(static_cast<int32_t>(polygon)) < 0;
}

bool HoldsCharacter(int32_t leaf) {
    return WorldGeometry.leaves[leaf].frameStamp == FrameCount;
}

// Entries of the list that lie below one node, all of them leaves inside the side planes.
struct Group {
    int32_t node, begin;  // node -1: none
};
Group groups[2 * BSP_LEAVES_MAX];  // by their last entry
int32_t lastCharacterEntry;        // -1: none

// The list can be full only in worlds in which several nodes share a leaf.
void Append(int32_t entry) {
    if (RenderListCount < static_cast<int32_t>(2 * WorldGeometry.leafCount)) {
        groups[RenderListCount].node = -1;
        if (entry >= CHARACTER_ENTRY) lastCharacterEntry = RenderListCount;
        WorldGeometry.renderList[RenderListCount++] = entry;
    }
}

// Whether the character in a leaf is nearer than the leaf's polygons: it is, unless it stands behind the polygon
// plane nearest to it of those that face the camera.
bool CharacterIsInFront(const BspLeaf& leaf) {
    const Vec3 player = PlayerActor.position;
    float nearest = NO_FACING_POLYGON + 1.0f;
    float nearestDistance = 0.0f;
    for (uint32_t p = leaf.firstPolygon; p < uint32_t{leaf.firstPolygon} + leaf.polygonCount; ++p) {
        if (!FacesCamera(p)) continue;
        const PlaneRecord& plane = WorldGeometry.planes[WorldGeometry.polygons[p].plane];
        const float distance = Dot({plane.nx, plane.ny, plane.nz}, player) + plane.d;
        if (std::fabs(distance) < nearest) {
            nearest = std::fabs(distance);
            nearestDistance = distance;
        }
    }
    return nearest > NO_FACING_POLYGON || nearestDistance <= 0.0f;
}

void AppendLeaf(int32_t leaf, BoxResult visibility) {
    const int32_t entry = visibility == BOX_INSIDE ? ~leaf : leaf;
    if (!HoldsCharacter(leaf)) {
        Append(entry);
    } else if (CharacterIsInFront(WorldGeometry.leaves[leaf])) {
        Append(entry);
        Append(leaf + CHARACTER_ENTRY);
    } else {
        Append(leaf + CHARACTER_ENTRY);
        Append(entry);
    }
}

// Calls visit(subtree) for the two children of a node, the one on the camera's far side first.
template <typename Visit>
void VisitChildren(int32_t node, Visit visit) {
    const BspNode& record = WorldGeometry.nodes[node];
    const bool cameraInFront = NodeSideOfCamera(node) >= 0;
    visit(cameraInFront ? record.backChild : record.frontChild);
    visit(cameraInFront ? record.frontChild : record.backChild);
}

// Kept as it is: the character is drawn even where its leaf is culled.
void CollectCharacter(int32_t subtree) {
    if (subtree >= 0) {
        VisitChildren(subtree, [](int32_t child) { CollectCharacter(child); });
    } else if (HoldsCharacter(~subtree)) {
        Append(~subtree + CHARACTER_ENTRY);
    }
}

void CollectInside(int32_t subtree) {
    if (subtree < 0) return AppendLeaf(~subtree, BOX_INSIDE);
    const int32_t begin = RenderListCount;
    VisitChildren(subtree, [](int32_t child) { CollectInside(child); });
    const bool isWorthAsking = RenderListCount - begin > 1;
    if (isWorthAsking && begin > lastCharacterEntry) groups[RenderListCount - 1] = {subtree, begin};
}

void CollectLeaves(int32_t subtree) {
    const bool isNode = subtree >= 0;
    const BoxResult visibility =
        TestBox(isNode ? BoxOf(WorldGeometry.nodes[subtree]) : BoxOf(WorldGeometry.leaves[~subtree]));
    if (visibility == BOX_INVISIBLE) {
        CollectCharacter(subtree);
    } else if (!isNode) {
        AppendLeaf(~subtree, visibility);
    } else if (visibility == BOX_INSIDE) {
        CollectInside(subtree);
    } else {
        VisitChildren(subtree, [](int32_t child) { CollectLeaves(child); });
    }
}

// Draws a polygon that needs no clipping straight from its view, with the nearest first. One that is hidden counts as
// submitted, like any other. False, and nothing is done: it is not near the frame.
bool DrawOnScreen(uint32_t number, PolygonView& view) {
    const PolyRecord& polygon = WorldGeometry.polygons[number];
    const TextureRecord* texture = PolygonTexture(polygon);
    const bool isSeen = texture != nullptr && texture->isEmpty == 0;
    if (isSeen && !ProjectView(view)) return false;
    SubmittedPolygons++;
    if (!isSeen || IsHidden(polygon, view.bounds)) return true;
    ShadeView(number, view);
    RasterCorners(polygon, view.screen, *texture);
    return true;
}

void DrawFacingPolygon(uint32_t number, bool mayCross) {
    PolygonView view;
    LookAtPolygon(number, view);
    if (view.outsideAll != 0) return;
    const bool crosses = mayCross && (view.outsideAny & OUT_SIDES) != 0;
    if (!crosses && NearestFirst() && DrawOnScreen(number, view)) return;
    StoreView(WorldGeometry.polygons[number], view);
    if (crosses)
        DrawPolygonClipped(static_cast<int32_t>(number), view.outsideAny);
    else
        DrawPolygon(static_cast<int32_t>(number));
}

// Polygons that are looked at together: a bit each in what FacingPolygons returns, the lowest for the first one.
constexpr uint32_t BATCH = 64;

// Half of all polygons face away, in an order that no processor could predict: they are sorted out without a branch.
uint64_t FacingPolygons(uint32_t first, uint32_t count) {
    const PolygonLanesTable& planes = PolygonLanes;
    const Float4 x = All(CameraPos.x), y = All(CameraPos.y), z = All(CameraPos.z);
    uint64_t facing = 0;
    for (uint32_t i = 0; i < count; i += LANE_COUNT) {
        const uint32_t p = first + i;
        const Float4 distances = LoadLanes<Float4>(&planes.nx[p]) * x + LoadLanes<Float4>(&planes.ny[p]) * y +
                                 LoadLanes<Float4>(&planes.nz[p]) * z + LoadLanes<Float4>(&planes.d[p]);
        facing |= static_cast<uint64_t>(Bits(distances < 0.0f)) << i;
    }
    return facing & ~uint64_t{0} >> (BATCH - count);
}

// Calls visit(first, facing) for each batch of a leaf's polygons.
template <typename Visit>
void VisitFacing(const BspLeaf& leaf, bool backwards, Visit visit) {
    for (uint32_t done = 0; done < leaf.polygonCount; done += BATCH) {
        const uint32_t count = std::min(leaf.polygonCount - done, BATCH);
        const uint32_t first = leaf.firstPolygon + (backwards ? leaf.polygonCount - done - count : done);
        visit(first, FacingPolygons(first, count));
    }
}

void DrawLeaf(const BspLeaf& leaf, bool mayCross) {
    const bool backwards = NearestFirst();
    VisitFacing(leaf, backwards, [mayCross, backwards](uint32_t first, uint64_t facing) {
        for (uint64_t left = facing; left != 0; left &= left - 1)
            PrefetchPolygon(first + static_cast<uint32_t>(std::countr_zero(left)));
        while (facing != 0) {
            const int i = backwards ? 63 - std::countl_zero(facing) : std::countr_zero(facing);
            facing &= ~(uint64_t{1} << i);
            DrawFacingPolygon(first + static_cast<uint32_t>(i), mayCross);
        }
    });
}

void DrawEntry(int32_t entry) {
    if (entry < 0) {
        DrawLeaf(WorldGeometry.leaves[~entry], false);
    } else if (entry < CHARACTER_ENTRY) {
        DrawLeaf(WorldGeometry.leaves[entry], true);
    } else {
        DrawCharacterInLeaf(entry - CHARACTER_ENTRY);
    }
}

// Whether all of a node's polygons lie inside the view, behind what has been drawn.
bool IsHidden(int32_t node) {
    PolygonView view;
    LookAtBox(CornerBoxes[node], view);
    return view.outsideAny == 0 && ProjectView(view) && IsHidden(view.bounds);
}

// The same, but a node that is seen is not asked again for some frames, since it will most often still be seen. The
// picture does not depend on it: hidden polygons that are drawn leave nothing.
bool IsKnownToBeHidden(int32_t node) {
    constexpr int32_t FRAMES = 8;
    static uint8_t framesToWait[BSP_NODES_MAX];
    uint8_t& wait = framesToWait[node];
    if (wait > 0) {
        wait--;
        return false;
    }
    const bool isHidden = IsHidden(node);
    wait = static_cast<uint8_t>(isHidden ? 0 : FRAMES + node % FRAMES);  // not all in the same frame
    return isHidden;
}

void CountFacing(const BspLeaf& leaf) {
    VisitFacing(leaf, false,
                [](uint32_t, uint64_t facing) { SubmittedPolygons += static_cast<uint32_t>(std::popcount(facing)); });
}

// All polygons of a hidden group count as submitted.
void DrawNearestFirst() {
    for (int32_t i = RenderListCount - 1; i >= 0;) {
        const Group group = groups[i];
        if (group.node < 0 || !IsKnownToBeHidden(group.node)) {
            DrawEntry(WorldGeometry.renderList[i--]);
            continue;
        }
        for (; i >= group.begin; --i)
            CountFacing(WorldGeometry.leaves[~WorldGeometry.renderList[i]]);
    }
}

void DrawRenderList() {
    if (NearestFirst()) return DrawNearestFirst();
    for (int32_t i = 0; i < RenderListCount; ++i)
        DrawEntry(WorldGeometry.renderList[i]);
}

void DrawOutlines(int32_t subtree) {
    if (subtree >= 0) {
        VisitChildren(subtree, DrawOutlines);
        return;
    }
    const BspLeaf& leaf = WorldGeometry.leaves[~subtree];
    // Kept as it is: the colour is the leaf's number, and nothing is skipped.
    LineColour = static_cast<uint32_t>(~subtree);
    for (int32_t p = leaf.firstPolygon; p < leaf.firstPolygon + leaf.polygonCount; ++p)
        DrawPolygonOutline(p);
}

}  // namespace

void RenderWorld() {
    BuildViewPlanes();
    BeginPolygonViews();
    RenderListCount = 0;
    lastCharacterEntry = -1;
    if (FogSwitch == 0) {
        DrawOutlines(0);
        return;
    }
    CollectLeaves(0);
    DrawRenderList();
}
