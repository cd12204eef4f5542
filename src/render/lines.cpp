#include "render/lines.h"

#include "camera/camera_tables.h"
#include "host/glide.h"
#include "math/convert.h"
#include "math/vectors.h"
#include "math/world_planes.h"
#include "platform/timer.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

struct ClipPlane {
    float Vec3::*axis;
    float sign;  // a point is inside when sign x axis <= z
};
constexpr ClipPlane CLIP_PLANES[4] = {{&Vec3::x, 1.0f}, {&Vec3::x, -1.0f}, {&Vec3::y, 1.0f}, {&Vec3::y, -1.0f}};

float Distance(const Vec3& point, const ClipPlane& plane) {
    return point.z - plane.sign * (point.*plane.axis);
}

// False: both ends lie outside.
bool ClipSegment(Vec3& p, Vec3& q, const ClipPlane& plane) {
    const float dp = Distance(p, plane);
    const float dq = Distance(q, plane);
    if (dp < 0 && dq < 0) return false;
    if (!(dp < 0) && !(dq < 0)) return true;
    const float t = dp / (dp - dq);
    Vec3& outside = dp < 0 ? p : q;
    const Vec3 crossing = {p.x + (q.x - p.x) * t, p.y + (q.y - p.y) * t, p.z + (q.z - p.z) * t};
    outside = crossing;
    outside.*plane.axis = plane.sign * crossing.z;
    return true;
}

void Plot(int64_t x, int64_t y) {
    if (x < 0 || x >= ScreenWidth || y < 0 || y >= ScreenHeight) return;
    FrameBuffer[y * FramePitch + x] = static_cast<uint8_t>(LineColour);
}

void DrawGlideLine(const int32_t x[2], const int32_t y[2]) {
    const uint8_t* const colour = TextureImage + TEXTURE_PALETTE_OFFSET + 3 * (LineColour & 0xFF);
    GrVertex ends[2] = {};
    for (int i = 0; i < 2; ++i) {
        ends[i].x = static_cast<float>(x[i]);
        ends[i].y = static_cast<float>(y[i]);
        ends[i].r = static_cast<float>(2 * colour[0]);
        ends[i].g = static_cast<float>(2 * colour[1]);
        ends[i].b = static_cast<float>(2 * colour[2]);
    }
    grDrawLine(&ends[0], &ends[1]);
}

void PutIntoViewSpace(uint32_t point) {
    const Vec3 position = WorldGeometry.points[point].position;
    RotateVector(position.x - CameraPos.x, position.y - CameraPos.y, position.z - CameraPos.z, ViewMatrix.rotation);
    ViewPoint& view = WorldGeometry.viewPoints[point];
    view.x = RotatedVector.x;
    view.y = RotatedVector.y;
    view.z = RotatedVector.z;
}

void DrawEdge(const PolyVertex& from, const PolyVertex& to) {
    const ViewPoint& a = WorldGeometry.viewPoints[from.point];
    const ViewPoint& b = WorldGeometry.viewPoints[to.point];
    DrawLine3D(a.x, a.y, a.z, b.x, b.y, b.z);
}

}  // namespace

void DrawLine3D(float x1, float y1, float z1, float x2, float y2, float z2) {
    if (x1 == x2 && y1 == y2 && z1 == z2) return;
    Vec3 ends[2] = {{x1, y1, z1}, {x2, y2, z2}};
    for (const ClipPlane& plane : CLIP_PLANES) {
        if (!ClipSegment(ends[0], ends[1], plane)) return;
    }
    int32_t x[2], y[2];
    for (int i = 0; i < 2; ++i) {
        Vec3& end = ends[i];
        if (end.z <= 0) end.z = 1.0f;
        x[i] = TruncToInt(end.x * ProjectionScaleX / end.z + ScreenCentreX);
        y[i] = TruncToInt(-(end.y * ProjectionScaleY) / end.z + ScreenCentreY);
    }
    if (GlideActive())
        DrawGlideLine(x, y);
    else
        DrawLine2D(x[0], y[0], x[1], y[1]);
}

void DrawLine2D(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
    if (FrameBuffer == nullptr) return;
    if (y2 < y1) {
        std::swap(x1, x2);
        std::swap(y1, y2);
    }
    const int64_t dx = int64_t{x2} - x1;
    const int64_t dy = int64_t{y2} - y1;
    // Only the steps that can lie in the frame are made, so that an end far outside costs no time.
    // Kept as it is: a line whose ends fall on one pixel is not drawn.
    if (std::abs(dx) > dy) {
        const int64_t slope = dy * 65536 / std::abs(dx);
        const int64_t direction = dx > 0 ? 1 : -1;
        const int64_t first = std::max(int64_t{0}, dx > 0 ? -int64_t{x1} : int64_t{x1} - (ScreenWidth - 1));
        const int64_t last = std::min(std::abs(dx), dx > 0 ? int64_t{ScreenWidth} - 1 - x1 : int64_t{x1});
        for (int64_t i = first; i <= last; ++i)
            Plot(x1 + direction * i, (int64_t{y1} * 65536 + slope * i) >> 16);
    } else if (dy != 0) {
        const int64_t slope = dx * 65536 / dy;
        const int64_t first = std::max(int64_t{0}, -int64_t{y1});
        const int64_t last = std::min(dy, int64_t{ScreenHeight} - 1 - y1);
        for (int64_t i = first; i <= last; ++i)
            Plot((int64_t{x1} * 65536 + slope * i) >> 16, y1 + i);
    }
}

void DrawPolygonOutline(int32_t polygon) {
    if (PolySideOfCamera(polygon) > 0) return;
    const PolyRecord record = WorldGeometry.polygons[polygon];
    const PolyVertex* corners = WorldGeometry.polyVertices + record.firstVertex;
    for (int i = 0; i < record.cornerCount; ++i) {
        if (WorldGeometry.viewPoints[corners[i].point].transformStamp != FrameCount) PutIntoViewSpace(corners[i].point);
    }
    for (int i = 0; i < record.cornerCount; ++i)
        DrawEdge(corners[i], corners[i + 1 < record.cornerCount ? i + 1 : 0]);
}
