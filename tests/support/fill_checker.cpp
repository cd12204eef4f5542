// The game that draws each twentieth frame of the software renderer again: every polygon that it submitted, by the
// plain fill and by the others in either order. At the first pixel that differs it says where, and ends with status 3.
#include "render/raster.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "support/plain_fill.h"
#include "world/world_tables.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

// The linker gives the calls of the game to these, and the game's own functions other names.
extern "C" {
void RealPolygon(const PolyRecord*) __asm__("__real__Z13RasterPolygonPK10PolyRecord");
void RealTransparent(const PolyRecord*) __asm__("__real__Z24RasterPolygonTransparentPK10PolyRecord");
void RealBegin() __asm__("__real__Z16BeginBackToFrontv");
void RealEnd() __asm__("__real__Z14EndBackToFrontv");
void OnPolygon(const PolyRecord*) __asm__("__wrap__Z13RasterPolygonPK10PolyRecord");
void OnTransparent(const PolyRecord*) __asm__("__wrap__Z24RasterPolygonTransparentPK10PolyRecord");
void OnBegin() __asm__("__wrap__Z16BeginBackToFrontv");
void OnEnd() __asm__("__wrap__Z14EndBackToFrontv");
}

namespace {

constexpr int FRAME_STEP = 20;

// With points of its own: those of clipped polygons are used again in the same frame.
struct SubmittedPolygon {
    PolyRecord record;
    std::vector<PolyVertex> corners;
    std::vector<ViewPoint> points;
    bool skipsTexelZero;
};
std::vector<SubmittedPolygon> submitted;
using Picture = std::vector<uint8_t>;
Picture before;
int frame;

Picture CopyFrame() {
    return {FrameBuffer, FrameBuffer + static_cast<ptrdiff_t>(FramePitch) * ScreenHeight};
}

void Submit(const PolyRecord* polygon, bool skipsTexelZero) {
    if (frame % FRAME_STEP == 0) {
        SubmittedPolygon copy = {*polygon, {}, {}, skipsTexelZero};
        for (uint32_t i = 0; i < polygon->cornerCount; i++) {
            copy.corners.push_back(WorldGeometry.polyVertices[polygon->firstVertex + i]);
            copy.points.push_back(WorldGeometry.viewPoints[copy.corners[i].point]);
            copy.corners[i].point = i;
        }
        copy.record.firstVertex = 0;
        submitted.push_back(copy);
    }
    skipsTexelZero ? RealTransparent(polygon) : RealPolygon(polygon);
}

void FillReally(const PolyRecord& polygon, bool skipsTexelZero) {
    skipsTexelZero ? RealTransparent(&polygon) : RealPolygon(&polygon);
}

void ExpectAgain(const char* way, const Picture& expected, void (*fill)(const PolyRecord&, bool), bool isFrontToBack) {
    std::memcpy(FrameBuffer, before.data(), before.size());
    const WorldGeometryTables tables = WorldGeometry;
    if (isFrontToBack) RealBegin();
    for (SubmittedPolygon& polygon : submitted) {
        WorldGeometry.polyVertices = polygon.corners.data();
        WorldGeometry.viewPoints = polygon.points.data();
        fill(polygon.record, polygon.skipsTexelZero);
    }
    if (isFrontToBack) RealEnd();
    WorldGeometry = tables;
    for (size_t i = 0; i < expected.size(); i++) {
        if (FrameBuffer[i] == expected[i]) continue;
        const auto pitch = static_cast<size_t>(FramePitch);
        std::fprintf(stderr, "frame %d, column %zu, row %zu: %s%s gives %d, the game had %d\n", frame, i % pitch,
                     i / pitch, way, isFrontToBack ? ", front to back," : "", FrameBuffer[i], expected[i]);
        std::_Exit(3);
    }
}

}  // namespace

void OnPolygon(const PolyRecord* polygon) {
    Submit(polygon, false);
}

void OnTransparent(const PolyRecord* polygon) {
    Submit(polygon, true);
}

void OnBegin() {
    frame++;
    submitted.clear();
    if (frame % FRAME_STEP == 0) before = CopyFrame();
    RealBegin();
}

void OnEnd() {
    RealEnd();
    if (frame % FRAME_STEP != 0) return;
    const Picture picture = CopyFrame();
    const bool usesAvx2 = UseAvx2Spans;
    ExpectAgain("the plain fill", picture, FillPlainly, false);
    for (const bool isFrontToBack : {false, true}) {
        ExpectAgain("the same fill", picture, FillReally, isFrontToBack);
        UseAvx2Spans = false;
        ExpectAgain("the portable fill", picture, FillReally, isFrontToBack);
        UseAvx2Spans = usesAvx2;
    }
    std::printf("frame %d: %zu polygons alike\n", frame, submitted.size());
}
