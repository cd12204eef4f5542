// The software rasteriser against the least work a textured, shaded pixel can take.

#include "raster_floor.h"
#include "render/raster.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "render/screen.h"
#include "rounds.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

using namespace raster_floor;

namespace {

const uint8_t* FirstTexels() {
    return TextureImage + TextureRecords()[0].texelOffset;
}

void SetCorner(uint32_t index, double x, double y, float depth) {
    ViewPoint& point = WorldGeometry.viewPoints[WorldGeometry.polyVertices[index].point];
    point.screen.fixed.x = static_cast<int32_t>(std::lround(x * 65536));
    point.screen.fixed.y = static_cast<int32_t>(std::lround(y * 65536));
    point.inverseDepth = 1 / depth;
}

ViewCorner TextureCorner(double x, double y) {
    return {0,
            0,
            1,
            static_cast<float>(x * U_STEP),
            static_cast<float>(x * V_STEP + y * 77),
            static_cast<float>(2000 + x * LIGHT_STEP)};
}

// A slanted strip as high as the frame: HEIGHT spans of `width` pixels.
int32_t AddStrip(double width) {
    const double slant = width > 300 ? 0 : 10.3;
    const uint32_t first = WorldGeometry.used.polyVertices;
    const int32_t polygon = AppendPolygon(
        {TextureCorner(0, 0), TextureCorner(0, HEIGHT), TextureCorner(width, HEIGHT), TextureCorner(width, 0)});
    SetCorner(first, 0, 0, 100);
    SetCorner(first + 1, slant, HEIGHT, 110);
    SetCorner(first + 2, slant + width, HEIGHT, 130);
    SetCorner(first + 3, width, 0, 105);
    return polygon;
}

const SpanTexture& StripTexture() {
    static const SpanTexture texture = {FirstTexels(), MASK};
    return texture;
}

void FillActiveRows(const EdgeRows& rows, TexelZero texelZero) {
    if (UseAvx2Spans)
        FillRowsAvx2(rows, StripTexture(), texelZero);
    else
        FillRowsPortable(rows, StripTexture(), texelZero);
}

size_t AddSpans(Rounds& rounds, int width, TexelZero texelZero) {
    const int32_t polygon = AddStrip(width);
    BuildEdgeTable(&WorldGeometry.polygons[polygon]);
    const std::vector<EdgeRow> rows(EdgeTable, EdgeTable + HEIGHT);
    const std::string kind = texelZero == TexelZero::Drawn ? "opaque" : "transparent";
    return rounds.Add("spans of " + std::to_string(width) + ", " + kind, width * HEIGHT, [rows, texelZero] {
        FillActiveRows({rows.data(), 0, HEIGHT}, texelZero);
    });
}

// Polygons as they reach the rasteriser in a busy view: three to seven corners, many small, some large.
struct DrawnPolygon {
    int32_t number;
    std::vector<EdgeRow> rows;
    int32_t firstRow;
};

std::vector<DrawnPolygon> MakePolygons() {
    std::mt19937 random(3);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution(low, high)(random); };
    std::vector<DrawnPolygon> polygons;
    while (polygons.size() < 300) {
        const double radiusX = std::exp(uniform(1.5, 4.4));
        const double radiusY = std::exp(uniform(1.5, 4.2));
        const double x = uniform(radiusX, WIDTH - radiusX);
        const double y = uniform(radiusY, HEIGHT - radiusY);
        const int corners = 3 + static_cast<int>(random() % 5);
        const double turn = uniform(0, 6.28);
        const uint32_t first = WorldGeometry.used.polyVertices;
        std::vector<ViewCorner> shape;
        for (int i = 0; i < corners; ++i) {
            const double angle = turn - 6.2831853 * i / corners;
            shape.push_back(TextureCorner(radiusX * std::cos(angle), radiusY * std::sin(angle)));
        }
        const int32_t number = AppendPolygon(shape);
        for (int i = 0; i < corners; ++i) {
            const double angle = turn - 6.2831853 * i / corners;
            SetCorner(first + static_cast<uint32_t>(i), x + radiusX * std::cos(angle), y + radiusY * std::sin(angle),
                      static_cast<float>(uniform(100, 140)));
        }
        if (!BuildEdgeTable(&WorldGeometry.polygons[number])) continue;
        polygons.push_back({number, {EdgeTable + FirstRow, EdgeTable + EndRow}, FirstRow});
    }
    return polygons;
}

struct PolygonWork {
    size_t polygons, spans;
};

PolygonWork AddPolygons(Rounds& rounds, const std::vector<DrawnPolygon>& polygons) {
    double pixels = 0, spans = 0;
    for (const DrawnPolygon& polygon : polygons) {
        for (const EdgeRow& row : polygon.rows) {
            pixels += std::max(0, CeilFixed(row.right.x) - CeilFixed(row.left.x));
            spans++;
        }
    }
    std::printf("%zu polygons, %.0f spans of %.1f pixels\n", polygons.size(), spans, pixels / spans);
    PolygonWork work;
    work.polygons = rounds.Add("polygons", pixels, [&polygons] {
        for (const DrawnPolygon& polygon : polygons)
            RasterPolygon(&WorldGeometry.polygons[polygon.number]);
    });
    work.spans = rounds.Add("their spans", pixels, [&polygons] {
        for (const DrawnPolygon& polygon : polygons) {
            const int32_t end = polygon.firstRow + static_cast<int32_t>(polygon.rows.size());
            FillActiveRows({polygon.rows.data() - polygon.firstRow, polygon.firstRow, end}, TexelZero::Drawn);
        }
    });
    return work;
}

void MakeScene() {
    MakeFrame(WIDTH, HEIGHT, WIDTH);
    MakeWorld();
    WorldGeometry.fixed.polyVertices = WorldGeometry.fixed.points = 20000;
    LoadTextures(MakeTextureFile({{0, 0, 0, 64, 64}}, 1));
    for (size_t i = 0; i < sizeof ShadeTable; ++i)
        ShadeTable[i] = static_cast<uint8_t>(i * 2654435761u >> 13);
    BuildReciprocalTable();
}

struct SpanTarget {
    int width;
    double opaque;  // most time, in times of the floor
    bool byBlocks;  // the floor is filled in blocks of 16, else in whole rows
};
constexpr SpanTarget TARGETS[] = {
    {8, 1.7, false}, {16, 1.7, true}, {40, 1.7, false}, {160, 1.8, false}, {320, 1.8, false}};
constexpr double TRANSPARENT_TARGET = 1.4;
constexpr double POLYGON_TARGET = 1.3;
constexpr double CLEAR_TARGET = 1.5;

// The targets hold for the fill that the processor gets; the portable fill is shown beside it.
void Measure(int roundCount, bool hasTargets) {
    MakeWorld();
    const std::vector<DrawnPolygon> polygons = MakePolygons();
    Rounds rounds;
    const size_t rowFloor = rounds.Add("floor, rows", WIDTH * HEIGHT, [] { FloorFrame(FirstTexels(), WIDTH); });
    const size_t blockFloor = rounds.Add("floor, blocks of 16", WIDTH * HEIGHT, [] { FloorFrame(FirstTexels(), 16); });
    std::vector<size_t> opaque, transparent;
    for (const SpanTarget& target : TARGETS) {
        opaque.push_back(AddSpans(rounds, target.width, TexelZero::Drawn));
        transparent.push_back(AddSpans(rounds, target.width, TexelZero::Skipped));
    }
    const PolygonWork work = AddPolygons(rounds, polygons);
    rounds.Run(roundCount);

    const auto print = [&](size_t measured, size_t floor, double target) {
        hasTargets ? rounds.PrintAgainst(measured, floor, target) : rounds.PrintAgainst(measured, floor);
    };
    rounds.Print(rowFloor);
    rounds.Print(blockFloor);
    for (size_t i = 0; i < opaque.size(); ++i) {
        print(opaque[i], TARGETS[i].byBlocks ? blockFloor : rowFloor, TARGETS[i].opaque);
        print(transparent[i], opaque[i], TRANSPARENT_TARGET);
    }
    rounds.Print(work.spans);
    print(work.polygons, work.spans, POLYGON_TARGET);
}

void MeasureClear(int roundCount) {
    constexpr int BYTES = WIDTH * HEIGHT / 2;
    Rounds rounds;
    const size_t set = rounds.Add("memset", BYTES, [] { std::memset(FrameBuffer + BYTES, 0xFE, BYTES); });
    const size_t clear = rounds.Add("ClearFrame", BYTES, ClearFrame);
    rounds.Run(roundCount);
    rounds.Print(set);
    rounds.PrintAgainst(clear, set, CLEAR_TARGET);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const int roundCount = argumentCount > 1 ? std::atoi(arguments[1]) : 15;
    MakeScene();
    std::printf("Nanoseconds a pixel, %s\n", UseAvx2Spans ? "AVX2" : "portable");
    Measure(roundCount, true);
    MeasureClear(roundCount);
    if (!UseAvx2Spans) return 0;
    UseAvx2Spans = false;
    std::printf("\nNanoseconds a pixel, portable\n");
    Measure(roundCount, false);
}
