#include "world/draw/draw_character.h"

#include "camera/camera_tables.h"
#include "character/character_tables.h"
#include "character/depth_list.h"
#include "math/convert.h"
#include "math/vectors.h"
#include "platform/timer.h"
#include "render/raster.h"
#include "world/draw/outcodes.h"
#include "world/light_map.h"
#include "world/world_tables.h"

namespace {

void TransformCharacterPoint(uint32_t point) {
    if (WorldGeometry.characterStamps[point] == FrameCount) return;
    WorldGeometry.characterStamps[point] = FrameCount;
    ViewPoint& view = WorldGeometry.viewPoints[point];
    RotateVector(view.x - CameraPos.x, view.y - CameraPos.y, view.z - CameraPos.z, ViewMatrix.rotation);
    view.x = RotatedVector.x;
    view.y = RotatedVector.y;
    view.z = RotatedVector.z;
    const uint8_t depth = view.z < 0.0f ? OUT_DEPTH : uint8_t{0};
    WorldGeometry.outcodes[point] = SideOutcode(view) | depth;
    ShadeCharacterPoint(point);
}

// The sum is kept as a whole number and truncated after each addition.
float MeanDepth(const PolyRecord& polygon) {
    int32_t sum = 0;
    for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
        const uint32_t point = WorldGeometry.polyVertices[polygon.firstVertex + k].point;
        TransformCharacterPoint(point);
        sum = TruncToInt(static_cast<double>(static_cast<float>(sum) + WorldGeometry.viewPoints[point].z));
    }
    return static_cast<float>(sum) / static_cast<float>(polygon.cornerCount);
}

}  // namespace

void DrawCharacterInLeaf(int32_t leaf) {
    InitDepthList();
    const LeafBin& bin = LeafBins[leaf];
    for (int32_t i = 0; i < bin.count; ++i) {
        const uint16_t polygon = bin.polygons[i];
        InsertByDepth(MeanDepth(WorldGeometry.polygons[polygon]), static_cast<int16_t>(polygon));
    }
    LinkDepthList();
    if (NearestFirst()) {
        for (int32_t k = DepthList[1].previous; DepthList[k].depth != DEPTH_LIST_HEAD; k = DepthList[k].previous)
            DrawMeshByOutcodes(DepthList[k].polygon);
    } else {
        for (int32_t k = DepthList[0].next; DepthList[k].depth != DEPTH_LIST_TAIL; k = DepthList[k].next)
            DrawMeshByOutcodes(DepthList[k].polygon);
    }
}
