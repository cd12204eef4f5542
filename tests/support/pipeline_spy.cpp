#include "support/pipeline_spy.h"

#include "render/lines.h"
#include "render/pipeline.h"

std::string PipelineLog;

void DrawMeshPolygon(int32_t polygon) {
    PipelineLog += (PipelineLog.empty() ? "D" : " D") + std::to_string(polygon);
}

void DrawMeshPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    PipelineLog += (PipelineLog.empty() ? "C" : " C") + std::to_string(polygon) + "/" + std::to_string(edgeMask);
}

void DrawPolygon(int32_t) {}

void DrawPolygonClipped(int32_t, uint8_t) {}

void DrawPolygonOutline(int32_t) {}
