#include "render/scene.h"

#include "host/files.h"
#include "memory/pool.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "world/bsp.h"
#include "world/light_map.h"
#include "world/world_tables.h"

#include <cstring>
#include <random>

Calls Recorded;
std::map<std::string, std::vector<uint8_t>> GlideFiles;

namespace {

constexpr size_t GUARD_BYTES = 4096;
constexpr size_t POOL_ROOM = 1100000;  // the off-screen frame is the largest block

std::vector<uint8_t> File;
std::vector<uint8_t> Frame;
std::vector<uint8_t> Pool;
std::vector<PolyRecord> Polygons;
std::vector<PolyVertex> Vertices;
std::vector<PolyVertex> AlternateVertices;
std::vector<ViewPoint> Points;
std::vector<WorldPoint> WorldPoints;
std::vector<uint8_t> Outcodes;
std::vector<PlaneRecord> Planes;

}  // namespace

std::vector<uint8_t> MakeTextureFile(const std::vector<TestTexture>& textures, int pages) {
    std::mt19937 random(7);
    std::vector<uint8_t> file(TEXTURE_RECORDS_OFFSET);
    file[0] = static_cast<uint8_t>(textures.size());
    file[1] = static_cast<uint8_t>(textures.size() >> 8);
    for (size_t i = 0; i < 256; i++) {
        file[TEXTURE_PALETTE_OFFSET + i * 3] = static_cast<uint8_t>(i % 64);
        file[TEXTURE_PALETTE_OFFSET + i * 3 + 1] = static_cast<uint8_t>(i / 64 * 16 + 1);
        file[TEXTURE_PALETTE_OFFSET + i * 3 + 2] = static_cast<uint8_t>(i % 61);
    }
    for (const TestTexture& texture : textures)
        file.insert(file.end(),
                    {9, 9, 9, 9, 9, 0, 0, texture.page, texture.x, texture.y, texture.width, texture.height});
    for (int i = 0; i < pages * 65536; i++)
        file.push_back(static_cast<uint8_t>(random()));
    return file;
}

void MakeWorld(uint32_t polygons) {
    const uint32_t corners = polygons * 16;
    Polygons.assign(polygons + SPARE_POLYGONS, {});
    Vertices.assign(corners + SPARE_POLY_VERTICES, {});
    AlternateVertices = Vertices;
    Points.assign(corners + SPARE_POINTS, {});
    WorldPoints.assign(Points.size(), {});
    Outcodes.assign(Points.size(), 0);
    Planes.assign(1, {});
    WorldGeometry = {};
    WorldGeometry.planes = Planes.data();
    WorldGeometry.polygons = Polygons.data();
    WorldGeometry.polyVertices = Vertices.data();
    WorldGeometry.alternateVertices = AlternateVertices.data();
    WorldGeometry.viewPoints = Points.data();
    WorldGeometry.points = WorldPoints.data();
    WorldGeometry.outcodes = Outcodes.data();
    WorldGeometry.fixed = {1, polygons, corners, corners};
    FrameCount = 1;
    Recorded = {};
}

int32_t AddPolygon(const std::vector<Corner>& corners, uint8_t texture) {
    GeometryCounts& used = WorldGeometry.used;
    PolyRecord& polygon = Polygons[used.polygons];
    polygon = {static_cast<uint8_t>(corners.size()),     texture, SHADE_POINT_LIGHT, 0, 0,
               static_cast<uint16_t>(used.polyVertices), 0};
    for (const Corner& corner : corners) {
        Vertices[used.polyVertices++] = {used.points, corner.u, corner.v, corner.intensity};
        ViewPoint& point = Points[used.points];
        point.x = corner.x;
        point.y = corner.y;
        point.z = corner.z;
        WorldPoints[used.points].position = {corner.x, corner.y, corner.z};
        Outcodes[used.points++] =
            static_cast<uint8_t>((corner.x > corner.z ? OUT_RIGHT : 0) | (corner.x < -corner.z ? OUT_LEFT : 0) |
                                 (corner.y > corner.z ? OUT_TOP : 0) | (corner.y < -corner.z ? OUT_BOTTOM : 0));
    }
    return static_cast<int32_t>(used.polygons++);
}

void MakeFrame(int32_t width, int32_t height, int32_t pitch) {
    ScreenWidth = width;
    ScreenHeight = height;
    FramePitch = pitch;
    Frame.assign(static_cast<size_t>(pitch * height) + 2 * GUARD_BYTES, GUARD);
    FrameBuffer = Frame.data() + GUARD_BYTES;
    FillFrame(0);
}

void FillFrame(uint8_t colour) {
    for (int32_t y = 0; y < ScreenHeight; y++)
        std::memset(FrameBuffer + y * FramePitch, colour, static_cast<size_t>(ScreenWidth));
}

std::vector<uint8_t> FramePixels() {
    std::vector<uint8_t> pixels;
    for (int32_t y = 0; y < ScreenHeight; y++)
        pixels.insert(pixels.end(), FrameBuffer + y * FramePitch, FrameBuffer + y * FramePitch + ScreenWidth);
    return pixels;
}

bool GuardsAreIntact() {
    for (size_t i = 0; i < Frame.size(); i++) {
        const int64_t offset = static_cast<int64_t>(i) - static_cast<int64_t>(GUARD_BYTES);
        const bool inside =
            offset >= 0 && offset < int64_t{FramePitch} * ScreenHeight && offset % FramePitch < ScreenWidth;
        if (!inside && Frame[i] != GUARD) return false;
    }
    return true;
}

void LoadTextures(const std::vector<uint8_t>& file) {
    File = file;
    Pool.assign(file.size() + POOL_ROOM, 0x55);
    PoolInit(Pool.data(), Pool.data() + Pool.size());
    LoadTextureFile(0);
}

// The modules around the renderer.
uint16_t FrameCount;
DisplayContext Display;
uint8_t DisplayState;

std::FILE* HostOpenFile(const char* path, const char* mode) {
    Recorded.files.push_back(path);
    if (mode[0] == 'w') return std::tmpfile();
    std::vector<uint8_t>& file = std::string(path).ends_with(".3df") ? GlideFiles[path] : File;
    return file.empty() ? nullptr : fmemopen(file.data(), file.size(), "rb");
}

bool OpenSoftwareDisplay(HWND) {
    DisplayState = DISPLAY_FULL_SCREEN;
    return true;
}

void PresentDisplay() {
    Recorded.order += 'W';
}

bool SetPaletteRange(const uint8_t*, DisplayContext&, uint8_t, uint8_t) {
    Recorded.order += 'P';
    return true;
}

void GenerateNodeRadii() {
    Recorded.order += 'R';
}

void ShadePolygon(int32_t polygon) {
    Recorded.order += 'S';
    Recorded.shaded.push_back(polygon);
}
