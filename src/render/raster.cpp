#include "render/raster.h"

#include "math/convert.h"
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

constexpr int MAX_CORNERS = 255;

// Four floats stepped together; the arithmetic of each is that of a plain float.
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

// Writes one edge into the rows it covers. Rows above the frame are stepped over so that the others do not change.
void WalkEdge(const EdgePoint& top, const EdgePoint& bottom, EdgeHalf EdgeRow::*side) {
    const int32_t endRow = std::min(bottom.row, EndRow);
    if (top.row >= endRow) return;
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
        EdgeHalf& half = EdgeTable[row].*side;
        half.x = static_cast<int32_t>(x);
        std::memcpy(&half.u, &value, sizeof(value));
        value += step;
    }
}

// The rows that the points cover, as far as they lie inside the frame.
void FindRows(const EdgePoint* points, int count) {
    int32_t first = EDGE_TABLE_ROWS;
    int32_t end = -EDGE_TABLE_ROWS;
    for (int i = 0; i < count; i++) {
        first = std::min(first, points[i].row);
        end = std::max(end, points[i].row);
    }
    FirstRow = std::max(first, 0);
    EndRow = std::min({end, ScreenHeight, EDGE_TABLE_ROWS});
}

void WalkEdges(const EdgePoint* points, int count) {
    for (int i = 0; i < count; i++) {
        const EdgePoint& from = points[i];
        const EdgePoint& to = points[i + 1 < count ? i + 1 : 0];
        if (to.y < from.y)
            WalkEdge(to, from, &EdgeRow::right);
        else
            WalkEdge(from, to, &EdgeRow::left);
    }
}

int MakeEdgePoints(const PolyRecord& polygon, EdgePoint* points) {
    const PolyVertex* corners = WorldGeometry.polyVertices + polygon.firstVertex;
    for (int i = 0; i < polygon.cornerCount; i++)
        points[i] = MakeEdgePoint(corners[i]);
    return polygon.cornerCount;
}

void FillRows(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover) {
#ifdef __x86_64__
    if (UseAvx2Spans) return FillRowsAvx2(rows, texture, texelZero, cover);
#endif
    FillRowsPortable(rows, texture, texelZero, cover);
}

// Polygons that wait to be drawn front to back.
struct KeptPolygon {
    SpanTexture texture;
    TexelZero texelZero;
    int firstPoint, pointCount;
};
constexpr int MOST_KEPT = 4096;
constexpr int MOST_KEPT_POINTS = 6 * MOST_KEPT;
KeptPolygon kept[MOST_KEPT];
EdgePoint keptPoints[MOST_KEPT_POINTS];
int keptCount, keptPointCount;
bool isKeeping;
CoverRow cover[COVER_ROWS];

struct Columns {
    int32_t begin, end;
};

// No span of the polygon reaches beyond these columns of the frame. Steps round, and wrap far outside.
Columns ColumnsOf(const EdgePoint* points, int count) {
    constexpr int32_t FAR_AWAY = 4096 * 65536;
    constexpr int32_t MARGIN = 2;
    Columns columns = {ScreenWidth, 0};
    for (int i = 0; i < count; i++) {
        const EdgePoint& point = points[i];
        if (point.x < -FAR_AWAY || point.x > FAR_AWAY || point.y < -FAR_AWAY || point.y > FAR_AWAY)
            return {0, ScreenWidth};
        columns.begin = std::min(columns.begin, (point.x >> 16) - MARGIN);
        columns.end = std::max(columns.end, (point.x >> 16) + 1 + MARGIN);
    }
    return {std::max(columns.begin, 0), std::min(columns.end, ScreenWidth)};
}

void DrawKeptPolygon(const KeptPolygon& polygon) {
    const EdgePoint* points = keptPoints + polygon.firstPoint;
    FindRows(points, polygon.pointCount);
    const Columns columns = ColumnsOf(points, polygon.pointCount);
    while (FirstRow < EndRow && cover[FirstRow].Holds(columns.begin, columns.end))
        FirstRow++;
    while (FirstRow < EndRow && cover[EndRow - 1].Holds(columns.begin, columns.end))
        EndRow--;
    if (FirstRow >= EndRow) return;
    WalkEdges(points, polygon.pointCount);
    FillRows({EdgeTable, FirstRow, EndRow}, polygon.texture, polygon.texelZero, cover);
}

void DrawKept() {
    std::memset(cover, 0, sizeof(CoverRow) * static_cast<size_t>(ScreenHeight));
    while (keptCount > 0)
        DrawKeptPolygon(kept[--keptCount]);
    keptPointCount = 0;
}

// What has been kept so far lies behind all that is still to come, so it may be drawn whenever there is no more room.
void Keep(const PolyRecord& polygon, const SpanTexture& texture, TexelZero texelZero) {
    if (keptCount == MOST_KEPT || keptPointCount + polygon.cornerCount > MOST_KEPT_POINTS) DrawKept();
    const int count = MakeEdgePoints(polygon, keptPoints + keptPointCount);
    kept[keptCount++] = {texture, texelZero, keptPointCount, count};
    keptPointCount += count;
}

void RasterTextured(const PolyRecord* polygon, TexelZero texelZero) {
    const TextureRecord* record = PolygonTexture(*polygon);
    if (record == nullptr || FrameBuffer == nullptr) return;
    const uint32_t mask = (record->height - 1u) * TEXTURE_PAGE_PITCH + (record->width - 1u);
    const SpanTexture texture = {TextureImage + record->texelOffset, mask};
    if (isKeeping) return Keep(*polygon, texture, texelZero);
    if (BuildEdgeTable(polygon)) FillRows({EdgeTable, FirstRow, EndRow}, texture, texelZero, nullptr);
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
    for (int i = 1; i < RECIPROCAL_COUNT; i++)
        ReciprocalTable[i] = static_cast<float>(1.0 / i);
}

bool BuildEdgeTable(const PolyRecord* polygon) {
    EdgePoint points[MAX_CORNERS];
    const int count = MakeEdgePoints(*polygon, points);
    FindRows(points, count);
    if (FirstRow >= EndRow) return false;
    WalkEdges(points, count);
    return true;
}

void RasterPolygon(const PolyRecord* polygon) {
    RasterTextured(polygon, TexelZero::Drawn);
}

void RasterPolygonTransparent(const PolyRecord* polygon) {
    RasterTextured(polygon, TexelZero::Skipped);
}

void BeginBackToFront() {
    isKeeping = ScreenWidth <= COVER_COLUMNS && ScreenHeight <= COVER_ROWS;
}

void EndBackToFront() {
    if (isKeeping) DrawKept();
    isKeeping = false;
}
