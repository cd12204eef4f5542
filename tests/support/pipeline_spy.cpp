#include "support/pipeline_spy.h"

#include "render/lines.h"
#include "render/pipeline.h"
#include "render/render_tables.h"

std::vector<PipelineCall> PipelineCalls;

void DrawPolygon(int32_t polygon) {
    PipelineCalls.push_back({'d', polygon, 0});
}

void DrawPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    PipelineCalls.push_back({'c', polygon, edgeMask});
}

void DrawMeshPolygon(int32_t polygon) {
    PipelineCalls.push_back({'D', polygon, 0});
}

void DrawMeshPolygonClipped(int32_t polygon, uint8_t edgeMask) {
    PipelineCalls.push_back({'C', polygon, edgeMask});
}

void DrawPolygonOutline(int32_t polygon) {
    PipelineCalls.push_back({'o', polygon, LineColour});
}

std::string PipelineLog() {
    std::string log;
    for (const PipelineCall& call : PipelineCalls) {
        if (!log.empty()) log += ' ';
        log += call.kind + std::to_string(call.polygon);
        if (call.detail != 0) log += '/' + std::to_string(call.detail);
    }
    return log;
}
