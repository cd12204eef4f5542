// The game with the plain fill beside the software renderer. Four frames of every forty are drawn by both, each with
// another of the four ways that the renderer has. At the first pixel that differs the program says where, and ends with
// status 3.
#include "render/raster.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "support/plain_fill.h"
#include "world/world_tables.h"

#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

// The linker gives the calls of the game to the second half, and the names of the first half to the game's functions.
void RealPolygon(const PolyRecord*) __asm__("__real__Z13RasterPolygonPK10PolyRecord");
void RealTransparent(const PolyRecord*) __asm__("__real__Z24RasterPolygonTransparentPK10PolyRecord");
void RealCorners(const PolyRecord&, const ScreenCorners*, const TextureRecord&) __asm__(
    "__real__Z13RasterCornersRK10PolyRecordPK13ScreenCornersRK13TextureRecord");
bool RealBegin() __asm__("__real__Z17BeginNearestFirstv");
void RealEnd() __asm__("__real__Z15EndNearestFirstv");
void OnPolygon(const PolyRecord*) __asm__("__wrap__Z13RasterPolygonPK10PolyRecord");
void OnTransparent(const PolyRecord*) __asm__("__wrap__Z24RasterPolygonTransparentPK10PolyRecord");
void OnCorners(const PolyRecord&, const ScreenCorners*, const TextureRecord&) __asm__(
    "__wrap__Z13RasterCornersRK10PolyRecordPK13ScreenCornersRK13TextureRecord");
bool OnBegin() __asm__("__wrap__Z17BeginNearestFirstv");
void OnEnd() __asm__("__wrap__Z15EndNearestFirstv");

namespace {

std::vector<uint8_t> plainFrame;  // empty: this one is not checked
std::vector<bool> isTaken;        // where the nearest polygons come first: true once one of them has drawn the pixel
int frame, polygons;

void FillInto(std::vector<uint8_t>& picture, const PolyRecord& polygon, bool skipsTexelZero) {
    uint8_t* const drawn = std::exchange(FrameBuffer, picture.data());
    FillPlainly(polygon, skipsTexelZero);
    FrameBuffer = drawn;
}

// What a polygon draws is what comes out alike on two different grounds.
void FillBehind(const PolyRecord& polygon, bool skipsTexelZero) {
    std::vector<uint8_t> dark(plainFrame.size(), 0), bright(plainFrame.size(), 0xFF);
    FillInto(dark, polygon, skipsTexelZero);
    FillInto(bright, polygon, skipsTexelZero);
    for (size_t i = 0; i < plainFrame.size(); ++i) {
        if (dark[i] == bright[i] && !isTaken[i]) plainFrame[i] = dark[i];
        if (dark[i] == bright[i]) isTaken[i] = true;
    }
}

void DrawPlainly(const PolyRecord& polygon, bool skipsTexelZero) {
    if (plainFrame.empty()) return;
    NearestFirst() ? FillBehind(polygon, skipsTexelZero) : FillInto(plainFrame, polygon, skipsTexelZero);
    polygons++;
}

}  // namespace

bool OnBegin() {
    const int step = frame++ % 40;
    plainFrame.clear();
    if (step < 4) plainFrame.assign(FrameBuffer, FrameBuffer + static_cast<ptrdiff_t>(FramePitch) * ScreenHeight);
    UseAvx2Spans = step % 2 == 0 && HasAvx2();
    isTaken.assign(plainFrame.size(), false);
    return step / 2 != 1 && RealBegin();
}

void OnPolygon(const PolyRecord* polygon) {
    DrawPlainly(*polygon, false);
    RealPolygon(polygon);
}

void OnTransparent(const PolyRecord* polygon) {
    DrawPlainly(*polygon, true);
    RealTransparent(polygon);
}

// The plain fill reads the corners in WorldGeometry.
void OnCorners(const PolyRecord& polygon, const ScreenCorners* corners, const TextureRecord& texture) {
    for (int i = 0; i < polygon.cornerCount; ++i) {
        const ScreenCorners& group = corners[i / LANE_COUNT];
        const int lane = i % LANE_COUNT;
        PolyVertex& vertex = WorldGeometry.polyVertices[polygon.firstVertex + i];
        ViewPoint& point = WorldGeometry.viewPoints[vertex.point];
        vertex.intensity = group.intensity[lane];
        point.screen.fixed = {group.x[lane], group.y[lane]};
        point.inverseDepth = group.inverseDepth[lane];
    }
    DrawPlainly(polygon, texture.isTransparent == 1);
    RealCorners(polygon, corners, texture);
}

void OnEnd() {
    RealEnd();
    for (size_t i = 0; i < plainFrame.size(); ++i) {
        if (FrameBuffer[i] == plainFrame[i]) continue;
        const auto pitch = static_cast<size_t>(FramePitch);
        std::fprintf(stderr, "frame %d, column %zu, row %zu: %d instead of %d\n", frame, i % pitch, i / pitch,
                     FrameBuffer[i], plainFrame[i]);
        std::_Exit(3);
    }
    std::printf("%d polygons are filled plainly up to frame %d\n", polygons, frame);
}
