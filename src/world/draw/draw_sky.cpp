#include "world/draw/draw_sky.h"

#include "camera/camera_tables.h"
#include "math/vectors.h"
#include "platform/timer.h"
#include "records/view_facts.h"
#include "render/glide_screen.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "world/bsp.h"
#include "world/draw/outcodes.h"
#include "world/world_tables.h"

namespace {

constexpr float SKY_INTENSITY = 16128.0f;

void TurnPoint(uint32_t index) {
    const Vec3 position = WorldGeometry.points[index].position;
    RotateVector(position.x, position.y - SKY_EYE_HEIGHT, position.z, ViewMatrix.rotation);
    ViewPoint& view = WorldGeometry.viewPoints[index];
    view.transformStamp = FrameCount;
    view.x = RotatedVector.x;
    view.y = RotatedVector.y;
    view.z = RotatedVector.z;
    WorldGeometry.outcodes[index] = SideOutcode(view);
}

void DrawSkyPolygon(int32_t index) {
    const PolyRecord& polygon = WorldGeometry.polygons[index];
    for (uint32_t k = 0; k < polygon.cornerCount; ++k)
        WorldGeometry.polyVertices[polygon.firstVertex + k].intensity = SKY_INTENSITY;
    // Kept as it is: the pipeline has room for no more corners, and fewer cover nothing.
    if (polygon.cornerCount >= BSP_CORNERS_MIN && polygon.cornerCount <= BSP_CORNERS_MAX) DrawMeshByOutcodes(index);
}

}  // namespace

void DrawSky() {
    if (FogSwitch == 0) return;
    SetSkyStates(true);
    for (int32_t i = 0; i < SkyObject.pointCount; ++i)
        TurnPoint(static_cast<uint32_t>(SkyObject.firstPoint + i));
    for (int32_t i = 0; i < SkyObject.polygonCount; ++i)
        DrawSkyPolygon(SkyObject.firstPolygon + (NearestFirst() ? SkyObject.polygonCount - 1 - i : i));
    SetSkyStates(false);
}
