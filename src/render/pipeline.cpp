#include "render/pipeline.h"

#include "math/convert.h"
#include "platform/timer.h"
#include "render/device/device.h"
#include "render/projection.h"
#include "render/render_tables.h"
#include "render/side_outcode.h"
#include "render/submit.h"
#include "world/light_map.h"
#include "world/world_tables.h"

namespace {

struct ClipPlane {
    uint8_t bit;
    float ViewPoint::*axis;
    float sign;  // a point is inside when sign x axis <= z
};
constexpr ClipPlane CLIP_PLANES[4] = {{OUT_RIGHT, &ViewPoint::x, 1.0f},
                                      {OUT_LEFT, &ViewPoint::x, -1.0f},
                                      {OUT_TOP, &ViewPoint::y, 1.0f},
                                      {OUT_BOTTOM, &ViewPoint::y, -1.0f}};

uint32_t NextPolyVertex;
uint32_t NextPoint;

float Interpolate(float from, float to, double t) {
    return static_cast<float>(from + (double{to} - from) * t);
}

bool ScratchIsFull() {
    return NextPolyVertex - WorldGeometry.fixed.polyVertices >= CLIP_SCRATCH_ENTRIES ||
           NextPoint - WorldGeometry.fixed.points >= CLIP_SCRATCH_ENTRIES;
}

// Always called with the inside end first, so that an edge gives the same point to both polygons that share it.
void AppendCrossing(const PolyVertex& inside, const PolyVertex& outside, const ClipPlane& plane) {
    const ViewPoint& p1 = WorldGeometry.viewPoints[inside.point];
    const ViewPoint& p2 = WorldGeometry.viewPoints[outside.point];
    const double dx = double{p2.x} - p1.x;
    const double dy = double{p2.y} - p1.y;
    const double dz = double{p2.z} - p1.z;
    const double along = plane.sign * double{p1.*plane.axis};
    const double dAlong = plane.sign * (plane.axis == &ViewPoint::x ? dx : dy);
    const double t = (p1.z - along) / (dAlong - dz);

    const uint32_t index = NextPoint++;
    ViewPoint& crossing = WorldGeometry.viewPoints[index];
    crossing.z = static_cast<float>(p1.z + t * dz);
    crossing.x = static_cast<float>(p1.x + t * dx);
    crossing.y = static_cast<float>(p1.y + t * dy);
    crossing.*plane.axis = plane.sign * crossing.z;
    WorldGeometry.outcodes[index] = static_cast<uint8_t>(SideOutcode(crossing) & ~plane.bit);
    WorldGeometry.polyVertices[NextPolyVertex++] = {index, Interpolate(inside.u, outside.u, t),
                                                    Interpolate(inside.v, outside.v, t),
                                                    Interpolate(inside.intensity, outside.intensity, t)};
}

// The output's corners are those of the input on the plane's inner side, and the crossings. A polygon that does not fit
// the scratch space comes out empty.
void ClipAgainstPlane(const PolyRecord& input, PolyRecord& output, const ClipPlane& plane) {
    const uint32_t first = NextPolyVertex;
    const PolyVertex* corners = WorldGeometry.polyVertices + input.firstVertex;
    output.firstVertex = static_cast<uint16_t>(first);
    output.cornerCount = 0;
    for (int i = 0; i < input.cornerCount; ++i) {
        const PolyVertex& current = corners[i];
        const PolyVertex& next = corners[i + 1 < input.cornerCount ? i + 1 : 0];
        const bool isCurrentOut = (WorldGeometry.outcodes[current.point] & plane.bit) != 0;
        const bool isNextOut = (WorldGeometry.outcodes[next.point] & plane.bit) != 0;
        if (!isCurrentOut) {
            if (ScratchIsFull()) return;
            WorldGeometry.polyVertices[NextPolyVertex++] = current;
        }
        if (isCurrentOut == isNextOut) continue;
        if (ScratchIsFull()) return;
        AppendCrossing(isCurrentOut ? next : current, isCurrentOut ? current : next, plane);
    }
    output.cornerCount = static_cast<uint8_t>(NextPolyVertex - first);
}

void Project(ViewPoint& point) {
    const float inverse = point.z < NEAREST_DEPTH ? 0.0f : 1.0f / point.z;
    point.projectionStamp = FrameCount;
    const float x = ScreenX(point.x, inverse);
    const float y = ScreenY(point.y, inverse);
    if (GlideActive()) {
        point.screen.pixels.x = x;
        point.screen.pixels.y = y;
        point.inverseDepth = 1.0f / (point.z * DepthScale);
        return;
    }
    point.screen.fixed.x = TruncToInt(x * 65536.0f);
    point.screen.fixed.y = TruncToInt(y * 65536.0f);
    point.inverseDepth = inverse;
}

// Points from firstFresh on are projected at every use, because the next clip reuses their slots.
void ProjectCorners(const PolyRecord& polygon, uint32_t firstFresh) {
    const PolyVertex* corners = WorldGeometry.polyVertices + polygon.firstVertex;
    for (int i = 0; i < polygon.cornerCount; ++i) {
        const uint32_t index = corners[i].point;
        ViewPoint& point = WorldGeometry.viewPoints[index];
        if (point.projectionStamp != FrameCount || index >= firstFresh) Project(point);
    }
}

// Where the corners of a polygon stand on the screen, from their ViewPoints.
void ProjectScreenCorners(const PolyRecord& polygon, ScreenCorners* corners) {
    const PolyVertex* const vertices = WorldGeometry.polyVertices + polygon.firstVertex;
    for (int i = 0; i < polygon.cornerCount; i += LANE_COUNT, ++corners) {
        Float4 points[LANE_COUNT], light[LANE_COUNT];
        for (int lane = 0; lane < LANE_COUNT; ++lane) {
            const PolyVertex* const vertex = vertices + OrFirst(i + lane, polygon.cornerCount);
            points[lane] = LoadLanes<Float4>(WorldGeometry.viewPoints + vertex->point);
            light[lane] = LoadLanes<Float4>(vertex);
        }
        Transpose(points[0], points[1], points[2], points[3]);
        Transpose(light[0], light[1], light[2], light[3]);
        const auto [x, y, inverseDepth] = ProjectLanes(points[0], points[1], points[2]);
        *corners = {TruncToInts(x), TruncToInts(y), inverseDepth, light[3]};
    }
}

// Where the nearest polygons come first, the tables stay without what nobody else reads.
void ProjectAndSubmit(const PolyRecord& polygon, uint32_t firstFresh) {
    if (NearestFirst()) {
        ScreenCorners corners[SCREEN_CORNERS_MAX];
        ProjectScreenCorners(polygon, corners);
        SubmitCorners(polygon, corners);
    } else {
        ProjectCorners(polygon, firstFresh);
        SubmitPolygon(&polygon, 0);
    }
}

}  // namespace

void DrawPolygon(int32_t polygon) {
    ShadePolygon(polygon);
    ProjectAndSubmit(WorldGeometry.polygons[polygon], UINT32_MAX);
}

void DrawPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    ShadePolygon(polygon);
    DrawMeshPolygonClipped(polygon, edgeMask);
}

void DrawPolygonAuto(int32_t polygon) {
    const PolyRecord record = WorldGeometry.polygons[polygon];
    const PolyVertex* corners = WorldGeometry.polyVertices + record.firstVertex;
    uint8_t common = 0xFF;
    uint8_t any = 0;
    for (int i = 0; i < record.cornerCount; ++i) {
        common &= WorldGeometry.outcodes[corners[i].point];
        any |= WorldGeometry.outcodes[corners[i].point];
    }
    if (common != 0) return;
    if ((any & OUT_SIDES) == 0)
        DrawPolygon(polygon);
    else
        DrawPolygonClipped(polygon, any);
}

void DrawMeshPolygon(int32_t polygon) {
    ProjectAndSubmit(WorldGeometry.polygons[polygon], UINT32_MAX);
}

void DrawMeshPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    const PolyRecord* clipped = ClipPolygon(polygon, edgeMask);
    if (clipped->cornerCount == 0) return;
    ProjectAndSubmit(*clipped, WorldGeometry.fixed.points);
}

PolyRecord* ClipPolygon(int32_t polygon, uint8_t edgeMask) {
    NextPolyVertex = WorldGeometry.fixed.polyVertices;
    NextPoint = WorldGeometry.fixed.points;
    const PolyRecord* original = &WorldGeometry.polygons[polygon];
    const PolyRecord* input = original;
    PolyRecord* output = &WorldGeometry.polygons[WorldGeometry.fixed.polygons];
    output->cornerCount = 0;
    for (const ClipPlane& plane : CLIP_PLANES) {
        if ((edgeMask & plane.bit) == 0) continue;
        if (input != original) output++;
        ClipAgainstPlane(*input, *output, plane);
        input = output;
    }
    output->texture = original->texture;
    output->flags = original->flags;
    return output;
}
