#include "render/raster.h"

#include "math/convert.h"
#include "render/device/device.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstring>

EdgeRow EdgeTable[EDGE_TABLE_ROWS];
int32_t FirstRow, EndRow;
float ReciprocalTable[RECIPROCAL_COUNT];

bool UseAvx2Spans = HasAvx2();

namespace {

constexpr int CORNERS_MAX = 255;

// Four floats that are stepped together; each gives the same bits as a plain float.
typedef float Float4 __attribute__((vector_size(16)));

struct EdgePoint {
    int32_t x, y;      // 16.16 pixels
    int32_t row;       // first row at or below y
    Float4 overDepth;  // u, v, light and 1, each divided by depth
};

EdgePoint MakeEdgePoint(const PolyVertex& corner) {
    const ViewPoint& view = WorldGeometry.viewPoints[corner.point];
    const float inverse = view.inverseDepth;
    return {view.screen.fixed.x, view.screen.fixed.y, CeilFixed(view.screen.fixed.y),
            Float4{corner.u * inverse, corner.v * inverse, corner.intensity * inverse, inverse}};
}

struct Edge {
    const EdgePoint *top, *bottom;
    EdgeHalf EdgeRow::*side;
};

// Lists the edges that cover a row from FirstRow to EndRow, without a branch, since no processor could predict it.
int ListEdges(const EdgePoint* points, int count, Edge* edges) {
    int listed = 0;
    for (int i = 0; i < count; ++i) {
        const EdgePoint* const from = points + i;
        const EdgePoint* const to = points + (i + 1 < count ? i + 1 : 0);
        const bool rises = to->y < from->y;
        const Edge edge = {rises ? to : from, rises ? from : to, rises ? &EdgeRow::right : &EdgeRow::left};
        const int32_t row = std::max(edge.top->row, FirstRow);
        edges[listed] = edge;
        listed += row < std::min(edge.bottom->row, EndRow) ? 1 : 0;
    }
    return listed;
}

// Writes one edge into the rows it covers. It steps through the rows above the frame, too: starting further down would
// change the bits of the rows inside.
void WalkEdge(const Edge& edge) {
    const EdgePoint& top = *edge.top;
    const EdgePoint& bottom = *edge.bottom;
    const int32_t endRow = std::min(bottom.row, EndRow);
    const float preStep = static_cast<float>(int64_t{top.row} * 65536 - top.y) / 65536;
    const float perRow = 65536 / static_cast<float>(int64_t{bottom.y} - top.y);
    const float slope = static_cast<float>(int64_t{bottom.x} - top.x) * perRow;
    const uint32_t xStep = static_cast<uint32_t>(RoundToInt(slope));
    uint32_t x = static_cast<uint32_t>(RoundToInt(static_cast<float>(top.x) + slope * preStep));
    const Float4 step = (bottom.overDepth - top.overDepth) * perRow;
    Float4 value = top.overDepth + step * preStep;
    int32_t row = top.row;
    for (; row < FirstRow; row++, x += xStep)
        value += step;
    for (; row < endRow; row++, x += xStep) {
        EdgeHalf& half = EdgeTable[row].*edge.side;
        half.x = static_cast<int32_t>(x);
        std::memcpy(&half.u, &value, sizeof(value));
        value += step;
    }
}

void WalkEdges(const EdgePoint* points, int count) {
    Edge edges[CORNERS_MAX];
    const int listed = ListEdges(points, count, edges);
    for (int i = 0; i < listed; ++i)
        WalkEdge(edges[i]);
}

int MakeEdgePoints(const PolyRecord& polygon, EdgePoint* points) {
    const PolyVertex* corners = WorldGeometry.polyVertices + polygon.firstVertex;
    for (int i = 0; i < polygon.cornerCount; ++i)
        points[i] = MakeEdgePoint(corners[i]);
    return polygon.cornerCount;
}

void FillRows(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover) {
#ifdef __x86_64__
    if (UseAvx2Spans) return FillRowsAvx2(rows, texture, texelZero, cover);
#endif
    FillRowsPortable(rows, texture, texelZero, cover);
}

bool isNearestFirst;
CoverRow cover[COVER_ROWS];

ScreenBounds BoundsOf(const PolyRecord& polygon) {
    const PolyVertex* corners = WorldGeometry.polyVertices + polygon.firstVertex;
    ScreenBounds bounds = {INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN};
    for (int i = 0; i < polygon.cornerCount; ++i) {
        const auto point = WorldGeometry.viewPoints[corners[i].point].screen.fixed;
        bounds.left = std::min(bounds.left, point.x);
        bounds.right = std::max(bounds.right, point.x);
        bounds.top = std::min(bounds.top, point.y);
        bounds.bottom = std::max(bounds.bottom, point.y);
    }
    return bounds;
}

struct Columns {
    int32_t begin, end;
};

// Columns of the frame that no span of the polygon reaches beyond: the steps round, and wrap far outside.
Columns ColumnsOf(const ScreenBounds& bounds) {
    constexpr int32_t FAR_AWAY = 4096 * 65536;
    constexpr int32_t MARGIN = 2;
    if (std::min(bounds.left, bounds.top) < -FAR_AWAY || std::max(bounds.right, bounds.bottom) > FAR_AWAY)
        return {0, ScreenWidth};
    return {std::max((bounds.left >> 16) - MARGIN, 0), std::min((bounds.right >> 16) + 1 + MARGIN, ScreenWidth)};
}

void SkipCoveredRows(const Columns& columns) {
    if (columns.begin >= columns.end) {
        EndRow = FirstRow;
        return;
    }
    const CoverColumns words(columns.begin, columns.end);
    while (FirstRow < EndRow && cover[FirstRow].Holds(words))
        FirstRow++;
    while (FirstRow < EndRow && cover[EndRow - 1].Holds(words))
        EndRow--;
}

// Sets FirstRow and EndRow to the rows that the bounds cover inside the frame and the cover does not hold. False: none.
bool FindRows(const ScreenBounds& bounds) {
    FirstRow = std::max(CeilFixed(bounds.top), 0);
    EndRow = std::min({CeilFixed(bounds.bottom), ScreenHeight, EDGE_TABLE_ROWS});
    if (isNearestFirst) SkipCoveredRows(ColumnsOf(bounds));
    return FirstRow < EndRow;
}

// The polygon that FirstRow and EndRow belong to.
const PolyRecord* polygonWithRows;

bool FindRows(const PolyRecord& polygon) {
    const bool isKnown = polygonWithRows == &polygon;
    polygonWithRows = nullptr;
    return isKnown || FindRows(BoundsOf(polygon));
}

void RasterTextured(const PolyRecord* polygon, TexelZero texelZero) {
    const TextureRecord* record = PolygonTexture(*polygon);
    if (record == nullptr || FrameBuffer == nullptr) return;
    if (texelZero == TexelZero::Skipped && record->isEmpty == 1) return;
    const uint32_t mask = (record->height - 1u) * TEXTURE_PAGE_PITCH + (record->width - 1u);
    const SpanTexture texture = {TextureImage + record->texelOffset, mask};
    if (!BuildEdgeTable(polygon)) return;
    FillRows({EdgeTable, FirstRow, EndRow}, texture, texelZero, isNearestFirst ? cover : nullptr);
}

}  // namespace

bool HasAvx2() {
#ifdef __x86_64__
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

void BuildReciprocalTable() {
    ReciprocalTable[0] = 1.0f;
    for (int i = 1; i < RECIPROCAL_COUNT; ++i)
        ReciprocalTable[i] = static_cast<float>(1.0 / i);
}

bool BuildEdgeTable(const PolyRecord* polygon) {
    if (!FindRows(*polygon)) return false;
    EdgePoint points[CORNERS_MAX];
    WalkEdges(points, MakeEdgePoints(*polygon, points));
    return true;
}

void RasterPolygon(const PolyRecord* polygon) {
    RasterTextured(polygon, TexelZero::Drawn);
}

void RasterPolygonTransparent(const PolyRecord* polygon) {
    RasterTextured(polygon, TexelZero::Skipped);
}

bool BeginNearestFirst() {
    polygonWithRows = nullptr;
    isNearestFirst = !GlideActive() && ScreenWidth <= COVER_COLUMNS && ScreenHeight <= COVER_ROWS;
    if (isNearestFirst) std::memset(cover, 0, sizeof(CoverRow) * static_cast<size_t>(ScreenHeight));
    return isNearestFirst;
}

void EndNearestFirst() {
#ifdef __x86_64__
    if (isNearestFirst && UseAvx2Spans) FinishRowsAvx2();
#endif
    isNearestFirst = false;
    polygonWithRows = nullptr;
}

bool NearestFirst() {
    return isNearestFirst;
}

bool IsHidden(const PolyRecord& polygon, const ScreenBounds& bounds) {
    polygonWithRows = FindRows(bounds) ? &polygon : nullptr;
    return polygonWithRows == nullptr;
}
