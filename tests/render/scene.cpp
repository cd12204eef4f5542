#include "render/scene.h"

#include "memory/pool.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "testing/test_machine.h"
#include "world/bsp.h"
#include "world/light_map.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>

int ShadedPolygons;

namespace {

constexpr uint8_t GUARD = 0xA5;
constexpr size_t GUARD_BYTES = 4096;
constexpr size_t POOL_ROOM = 1100000;  // the off-screen frame is the largest block
constexpr uint32_t ROOM = 4000;        // entries of every table before the scratch space

std::optional<TinyWorld> World;
std::vector<uint8_t> Frame, Pool;

}  // namespace

std::vector<uint8_t> MakeTextureFile(const std::vector<TestTexture>& textures, int pages) {
    std::mt19937 random(7);
    std::vector<uint8_t> file = {static_cast<uint8_t>(textures.size()), 0};
    for (int i = 0; i < 256; ++i) {
        for (const int level : {i % 64, i / 64 * 16 + 1, i % 61})
            file.push_back(static_cast<uint8_t>(level));
    }
    for (const TestTexture& texture : textures)
        file.insert(file.end(),
                    {9, 9, 9, 9, 9, 0, 0, texture.page, texture.x, texture.y, texture.width, texture.height});
    for (int i = 0; i < pages * 65536; ++i)
        file.push_back(static_cast<uint8_t>(random()));
    return file;
}

void MakeWorld() {
    World.emplace();
    World->Publish();
    WorldGeometry.fixed = {1, ROOM / 4, ROOM, ROOM};
    FrameCount = 1;
    ShadedPolygons = 0;
}

void MakeFrame(int32_t width, int32_t height, int32_t pitch) {
    ScreenWidth = width;
    ScreenHeight = height;
    FramePitch = pitch;
    ProjectionScaleX = 0.495f * static_cast<float>(width);
    ProjectionScaleY = 0.495f * static_cast<float>(height);
    ScreenCentreX = 0.5f * static_cast<float>(width);
    ScreenCentreY = 0.5f * static_cast<float>(height);
    Frame.assign(static_cast<size_t>(pitch * height) + 2 * GUARD_BYTES, GUARD);
    FrameBuffer = Frame.data() + GUARD_BYTES;
    FillFrame(0);
}

void FillFrame(uint8_t colour) {
    for (int32_t y = 0; y < ScreenHeight; ++y)
        std::memset(FrameBuffer + y * FramePitch, colour, static_cast<size_t>(ScreenWidth));
}

std::vector<uint8_t> FramePixels() {
    std::vector<uint8_t> pixels;
    for (int32_t y = 0; y < ScreenHeight; ++y)
        pixels.insert(pixels.end(), FrameBuffer + y * FramePitch, FrameBuffer + y * FramePitch + ScreenWidth);
    return pixels;
}

bool GuardsAreIntact() {
    for (size_t i = 0; i < Frame.size(); ++i) {
        const int64_t offset = static_cast<int64_t>(i) - static_cast<int64_t>(GUARD_BYTES);
        const bool inside =
            offset >= 0 && offset < int64_t{FramePitch} * ScreenHeight && offset % FramePitch < ScreenWidth;
        if (!inside && Frame[i] != GUARD) return false;
    }
    return true;
}

void LoadTextures(const std::vector<uint8_t>& file) {
    const auto folder = std::filesystem::temp_directory_path();
    const auto level = folder / "game/data/levels/level1";
    std::filesystem::create_directories(level);
    std::filesystem::remove(level / "texture.bin");
    if (!file.empty())
        std::ofstream(level / "texture.bin", std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    SetTestDataFolder(folder.string());
    Pool.assign(file.size() + POOL_ROOM, 0x55);
    PoolInit(Pool.data(), Pool.data() + Pool.size());
    LoadTextureFile(0);
}

// Functions of the modules around the renderer that its code calls.
uint16_t FrameCount;
DisplayContext Display;
uint8_t DisplayState;

bool OpenSoftwareDisplay(HWND) {
    DisplayState = DISPLAY_FULL_SCREEN;
    return true;
}

void PresentDisplay() {}

bool SetPaletteRange(const uint8_t*, DisplayContext&, uint8_t, uint8_t) {
    return true;
}

void GenerateNodeRadii() {}

void ShadePolygon(int32_t) {
    ShadedPolygons++;
}
