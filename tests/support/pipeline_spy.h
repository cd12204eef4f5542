// The polygon pipeline replaced by a record of its calls. Link `pipeline_spy`.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct PipelineCall {
    char kind;  // 'd' DrawPolygon, 'c' DrawPolygonClipped, 'o' DrawPolygonOutline; 'D' and 'C' of mesh polygons
    int32_t polygon;
    uint32_t detail;  // the edge mask of a clipped call, LineColour of an outline, otherwise 0
};
extern std::vector<PipelineCall> PipelineCalls;

std::string PipelineLog();  // "d3 c5/1 o7/2" and so on, in order
