// The polygon pipeline replaced by a record of what is drawn. Link `pipeline_spy`.
#pragma once

#include <string>

// "D1 C5/2" and so on, in order, since it was emptied last: D DrawMeshPolygon, C DrawMeshPolygonClipped with its edge
// mask. The world's own polygons leave no trace.
extern std::string PipelineLog;
