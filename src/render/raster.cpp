#include "render/raster.h"

#include "render/device/device.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "world/world_tables.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

EdgeRow EdgeTable[EDGE_TABLE_ROWS];
int32_t FirstRow, EndRow;
float ReciprocalTable[RECIPROCAL_COUNT];

bool UseAvx2Spans = HasAvx2();

namespace {

int GroupCount(const PolyRecord& polygon) {
    return (polygon.cornerCount + LANE_COUNT - 1) / LANE_COUNT;
}

// The corners' points as they lie in WorldGeometry.
void CollectCorners(const PolyRecord& polygon, ScreenCorners* corners) {
    static_assert(offsetof(ViewPoint, inverseDepth) == offsetof(ViewPoint, projectionStamp) + 12);
    const PolyVertex* const vertices = WorldGeometry.polyVertices + polygon.firstVertex;
    for (int i = 0; i < polygon.cornerCount; i += LANE_COUNT, ++corners) {
        Int4 points[LANE_COUNT];
        for (int lane = 0; lane < LANE_COUNT; ++lane) {
            const PolyVertex& vertex = vertices[OrFirst(i + lane, polygon.cornerCount)];
            points[lane] = LoadLanes<Int4>(&WorldGeometry.viewPoints[vertex.point].projectionStamp);
            corners->intensity[lane] = vertex.intensity;
        }
        Transpose(points[0], points[1], points[2], points[3]);
        corners->x = points[1];
        corners->y = points[2];
        corners->inverseDepth = reinterpret_cast<Float4>(points[3]);
    }
}

// u, v, light and 1 of each corner, divided by depth.
void DivideByDepth(const PolyRecord& polygon, const ScreenCorners* corners, Float4* overDepth) {
    static_assert(offsetof(PolyVertex, u) == 4 && offsetof(PolyVertex, v) == 8);
    const PolyVertex* const vertices = WorldGeometry.polyVertices + polygon.firstVertex;
    for (int i = 0; i < polygon.cornerCount; i += LANE_COUNT, ++corners, overDepth += LANE_COUNT) {
        const Float4 first = LoadLanes<Float4>(vertices + i);
        const Float4 second = LoadLanes<Float4>(vertices + OrFirst(i + 1, polygon.cornerCount));
        const Float4 third = LoadLanes<Float4>(vertices + OrFirst(i + 2, polygon.cornerCount));
        const Float4 fourth = LoadLanes<Float4>(vertices + OrFirst(i + 3, polygon.cornerCount));
        const Float4 inverse = corners->inverseDepth;
        const Float4 lights01 = __builtin_shufflevector(corners->intensity, All(1), 0, 4, 1, 5);
        const Float4 lights23 = __builtin_shufflevector(corners->intensity, All(1), 2, 6, 3, 7);
        overDepth[0] = __builtin_shufflevector(first, lights01, 1, 2, 4, 5) * All(inverse[0]);
        overDepth[1] = __builtin_shufflevector(second, lights01, 1, 2, 6, 7) * All(inverse[1]);
        overDepth[2] = __builtin_shufflevector(third, lights23, 1, 2, 4, 5) * All(inverse[2]);
        overDepth[3] = __builtin_shufflevector(fourth, lights23, 1, 2, 6, 7) * All(inverse[3]);
    }
}

Int4 CeilRows(Int4 fixed) {
    return (fixed >> 16) - ((fixed & 0xFFFF) > 0);
}

// Four edges, each from its upper to its lower end.
struct Edges {
    int32_t row[LANE_COUNT], endRow[LANE_COUNT];  // the rows that they cover, those above the frame included
    uint32_t x[LANE_COUNT], xStep[LANE_COUNT];    // in the first row, and from row to row; 16.16 pixels
    float preStep[LANE_COUNT];                    // rows from the upper end to the first row
    float perRow[LANE_COUNT];                     // 1 / height
    int rising;                                   // a bit a lane, set where the polygon's edge leads upwards
    int listed;                                   // a bit a lane, set where a row from FirstRow to EndRow is covered
};

// The edges from four corners to the corners that follow them.
void SetUpEdges(const ScreenCorners& from, const ScreenCorners& next, Edges& edges) {
    const Int4 toX = __builtin_shufflevector(from.x, next.x, 1, 2, 3, 4);
    const Int4 toY = __builtin_shufflevector(from.y, next.y, 1, 2, 3, 4);
    const Int4 rises = toY < from.y;
    const Int4 topX = rises ? toX : from.x, bottomX = rises ? from.x : toX;
    const Int4 topY = rises ? toY : from.y, bottomY = rises ? from.y : toY;
    const Int4 topRow = CeilRows(topY), bottomRow = CeilRows(bottomY);
    edges.listed = Bits((topRow < bottomRow) & (topRow < EndRow) & (bottomRow > FirstRow));
    if (edges.listed == 0) return;
    edges.rising = Bits(rises);
    const Float4 preStep = ToFloats((0x10000 - (topY & 0xFFFF)) & 0xFFFF) * (1.0f / 65536);
    const Float4 perRow = 65536.0f / Difference(bottomY, topY);
    const Float4 slope = Difference(bottomX, topX) * perRow;
    StoreLanes(edges.row, topRow);
    StoreLanes(edges.endRow, bottomRow);
    StoreLanes(edges.x, RoundToInts(ToFloats(topX) + slope * preStep));
    StoreLanes(edges.xStep, RoundToInts(slope));
    StoreLanes(edges.preStep, preStep);
    StoreLanes(edges.perRow, perRow);
}

// Writes one edge into the rows it covers. It steps through the rows above the frame, too: starting further down would
// change the bits of the rows inside.
void WalkEdge(const Edges& edges, int lane, const Float4& top, const Float4& bottom) {
    const Float4 step = (bottom - top) * edges.perRow[lane];
    Float4 value = top + step * edges.preStep[lane];
    uint32_t x = edges.x[lane];
    const uint32_t xStep = edges.xStep[lane];
    const int32_t endRow = std::min(edges.endRow[lane], EndRow);
    int32_t row = edges.row[lane];
    for (; row < FirstRow; row++, x += xStep)
        value += step;
    static_assert(sizeof(EdgeRow) == 2 * sizeof(EdgeHalf));
    EdgeHalf* half = &EdgeTable[row].left + (edges.rising >> lane & 1);
    for (; row < endRow; row++, half += 2, x += xStep) {
        half->x = static_cast<int32_t>(x);
        StoreLanes(&half->u, value);
        value += step;
    }
}

void WalkEdges(const PolyRecord& polygon, const ScreenCorners* corners) {
    Float4 overDepth[SCREEN_CORNERS_MAX * LANE_COUNT];
    DivideByDepth(polygon, corners, overDepth);
    for (int group = 0; group < GroupCount(polygon); ++group) {
        Edges edges;
        SetUpEdges(corners[group], corners[group + 1 < GroupCount(polygon) ? group + 1 : 0], edges);
        for (unsigned left = static_cast<unsigned>(edges.listed); left != 0; left &= left - 1) {
            const int lane = std::countr_zero(left);
            const int from = group * LANE_COUNT + lane;
            const int to = OrFirst(from + 1, polygon.cornerCount);
            const bool rises = (edges.rising >> lane & 1) != 0;
            WalkEdge(edges, lane, overDepth[rises ? to : from], overDepth[rises ? from : to]);
        }
    }
}

void FillRows(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover) {
#ifdef __x86_64__
    if (UseAvx2Spans) return FillRowsAvx2(rows, texture, texelZero, cover);
#endif
    FillRowsPortable(rows, texture, texelZero, cover);
}

bool isNearestFirst;
CoverRow cover[COVER_ROWS];

ScreenBounds BoundsOf(const PolyRecord& polygon, const ScreenCorners* corners) {
    constexpr int32_t LEAST = INT32_MIN, MOST = INT32_MAX;
    Int4 left = Int4{} + MOST, right = Int4{} + LEAST, top = left, bottom = right;
    for (int i = 0; i < GroupCount(polygon); ++i) {
        left = Least(left, corners[i].x);
        right = Greatest(right, corners[i].x);
        top = Least(top, corners[i].y);
        bottom = Greatest(bottom, corners[i].y);
    }
    right = ~right;  // turns the order round
    bottom = ~bottom;
    Transpose(left, right, top, bottom);
    const Int4 least = Least(Least(left, right), Least(top, bottom));
    return {least[0], least[2], ~least[1], ~least[3]};
}

struct Columns {
    int32_t begin, end;
};

// Columns of the frame that no span of the polygon reaches beyond. An edge's steps round, half a unit a row and some
// hundred units in all; far outside they wrap.
Columns ColumnsOf(const ScreenBounds& bounds) {
    constexpr int32_t FAR_AWAY = 4096 * 65536;
    constexpr int32_t MARGIN = 65536 / 16;
    if (std::min(bounds.left, bounds.top) < -FAR_AWAY || std::max(bounds.right, bounds.bottom) > FAR_AWAY)
        return {0, ScreenWidth};
    return {std::max(CeilFixed(bounds.left - MARGIN), 0), std::min(CeilFixed(bounds.right + MARGIN), ScreenWidth)};
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

bool FindRows(const PolyRecord& polygon, const ScreenCorners* corners) {
    const bool isKnown = polygonWithRows == &polygon;
    polygonWithRows = nullptr;
    return isKnown || FindRows(BoundsOf(polygon, corners));
}

void RasterTextured(const PolyRecord& polygon, const ScreenCorners* corners, const TextureRecord& texture,
                    TexelZero texelZero) {
    if (FrameBuffer == nullptr || !FindRows(polygon, corners)) return;
    WalkEdges(polygon, corners);
    const uint32_t mask = (texture.height - 1u) * TEXTURE_PAGE_PITCH + (texture.width - 1u);
    FillRows({EdgeTable, FirstRow, EndRow}, {TextureImage + texture.texelOffset, mask}, texelZero,
             isNearestFirst ? cover : nullptr);
}

void RasterTextured(const PolyRecord& polygon, TexelZero texelZero) {
    const TextureRecord* texture = PolygonTexture(polygon);
    if (texture == nullptr || (texelZero == TexelZero::Skipped && texture->isEmpty == 1)) return;
    ScreenCorners corners[SCREEN_CORNERS_MAX];
    CollectCorners(polygon, corners);
    RasterTextured(polygon, corners, *texture, texelZero);
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
    ScreenCorners corners[SCREEN_CORNERS_MAX];
    CollectCorners(*polygon, corners);
    if (!FindRows(*polygon, corners)) return false;
    WalkEdges(*polygon, corners);
    return true;
}

void RasterPolygon(const PolyRecord* polygon) {
    RasterTextured(*polygon, TexelZero::Drawn);
}

void RasterPolygonTransparent(const PolyRecord* polygon) {
    RasterTextured(*polygon, TexelZero::Skipped);
}

void RasterCorners(const PolyRecord& polygon, const ScreenCorners* corners, const TextureRecord& texture) {
    RasterTextured(polygon, corners, texture, texture.isTransparent == 1 ? TexelZero::Skipped : TexelZero::Drawn);
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

bool IsHidden(const ScreenBounds& bounds) {
    polygonWithRows = nullptr;
    return !FindRows(bounds);
}
