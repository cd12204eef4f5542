#include "support/pipeline_spy.h"

#include "render/lines.h"
#include "render/pipeline.h"
#include "render/render_tables.h"

std::string PipelineLog;

namespace {

void Record(const char* call, int32_t polygon) {
    PipelineLog += (PipelineLog.empty() ? "" : " ") + (call + std::to_string(polygon));
}

void Record(const char* call, int32_t polygon, uint32_t detail) {
    Record(call, polygon);
    PipelineLog += "/" + std::to_string(detail);
}

}  // namespace

void DrawMeshPolygon(int32_t polygon) {
    Record("D", polygon);
}

void DrawMeshPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    Record("C", polygon, edgeMask);
}

void DrawPolygon(int32_t polygon) {
    Record("W", polygon);
}

void DrawPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    Record("X", polygon, edgeMask);
}

void DrawPolygonOutline(int32_t polygon) {
    Record("O", polygon, LineColour);
}
