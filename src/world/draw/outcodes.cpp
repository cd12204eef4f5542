#include "world/draw/outcodes.h"

#include "render/pipeline.h"
#include "world/world_tables.h"

void DrawMeshByOutcodes(int32_t index) {
    const PolyRecord& polygon = WorldGeometry.polygons[index];
    uint8_t outsideAll = 0xFF;
    uint8_t outsideAny = 0;
    for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
        const uint8_t code = WorldGeometry.outcodes[WorldGeometry.polyVertices[polygon.firstVertex + k].point];
        outsideAll &= code;
        outsideAny |= code;
    }
    if (outsideAll != 0) return;
    if ((outsideAny & OUT_SIDES) != 0) {
        DrawMeshPolygonClipped(index, outsideAny);
    } else {
        DrawMeshPolygon(index);
    }
}
