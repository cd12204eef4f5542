#include "boards/cpu/cpu_board.h"

#include "boards/cpu/crew.h"
#include "boards/cpu/triangle.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace {

constexpr size_t BUFFER_PIXELS = size_t{CPU_PITCH} * BOARD_HEIGHT;
constexpr uint32_t RGB_MASK = 0xFFFFFF;

// The picture is drawn in bands of rows, each by one thread in the order of the frame: how many threads there are shows
// nowhere. More bands than threads even out their work.
constexpr unsigned MOST_THREADS = 4;
constexpr int32_t BANDS_PER_THREAD = 3;

struct Band {
    int32_t first, end;  // rows
};

std::unique_ptr<Crew> crew;

std::vector<uint32_t> back, front;
std::vector<uint16_t> depth;
std::vector<CpuTexture> textures;

bool Open(std::string&) {
    back.assign(BUFFER_PIXELS, 0);
    front.assign(BUFFER_PIXELS, 0);
    depth.assign(BUFFER_PIXELS, 0xFFFF);
    const unsigned threads = std::clamp(CpuBoardThreads, 1U, MOST_THREADS);
    if (!crew || crew->Size() != threads) crew = std::make_unique<Crew>(threads - 1);
    return true;
}

void Close() {
    back = front = {};
    depth = {};
    textures.clear();
}

void LoadTexture(uint32_t number, TextureImage image) {
    if (textures.size() <= number) textures.resize(number + 1);
    CpuTexture& texture = textures[number];
    texture.image = std::move(image);
    texture.firstLod = texture.image.firstLod;
    texture.lastLod = texture.firstLod + static_cast<int32_t>(texture.image.levels.size()) - 1;
    const TextureLevel& largest = texture.image.levels.front();
    // One side of a small level of a long map may no longer shrink; the map still spans it from end to end.
    const float longer = static_cast<float>(std::max(largest.width, largest.height));
    for (int32_t lod = texture.firstLod; lod <= texture.lastLod; ++lod) {
        const TextureLevel& level = texture.image.levels[static_cast<size_t>(lod - texture.firstLod)];
        const float unit = longer / 256.0F * 128.0F;
        texture.levels[lod] = {level.texels.data(),
                               static_cast<int32_t>(level.width) - 1,
                               static_cast<int32_t>(level.height) - 1,
                               std::countr_zero(level.width),
                               unit * static_cast<float>(level.width) / static_cast<float>(largest.width),
                               unit * static_cast<float>(level.height) / static_cast<float>(largest.height)};
    }
}

FillState Prepare(const BoardState& state) {
    FillState fill{};
    fill.texture = &textures[state.texture];
    fill.wrapS = state.wrapS;
    fill.wrapT = state.wrapT;
    fill.testsDepth = state.testsDepth;
    fill.writesDepth = state.writesDepth;
    fill.alphaReference = state.testsAlpha ? state.alphaReference : -1;
    fill.addMask = state.addsAlpha ? RGB_MASK : 0;
    fill.hasFog = state.hasFog;
    fill.fogColour = state.fog.colour;
    for (size_t i = 0; i < 64; ++i) {
        const int32_t entry = state.fog.entries[i];
        const int32_t next = state.fog.entries[std::min<size_t>(i + 1, 63)];
        fill.fog[i] = entry + (next - entry) * 65536;
    }
    return fill;
}

bool Reaches(const BoardVertex* corners, const Band& band) {
    const auto [top, bottom] = std::minmax({corners[0].y, corners[1].y, corners[2].y});
    return bottom >= static_cast<float>(band.first) && top <= static_cast<float>(band.end);
}

void DrawTriangles(const BoardState& state, const BoardVertex* corners, uint32_t count, const Band& band) {
    const FillState fill = Prepare(state);
    const Target target{back.data(), depth.data()};
    FillTriangle* const fillTriangle = CpuBoardUsesAvx2 ? FillTriangleAvx2 : FillTrianglePortable;
    Triangle triangle;
    for (uint32_t i = 0; i + 3 <= count; i += 3)
        if (Reaches(corners + i, band) && SetUpTriangle(corners + i, triangle))
            fillTriangle(fill, triangle, target, band.first, band.end);
}

uint32_t ChannelBetween(float from, float to, float part) {
    return static_cast<uint32_t>(std::clamp(from + (to - from) * part, 0.0F, 255.0F) + 0.5F);
}

void DrawLine(const BoardVertex& from, const BoardVertex& to, const Band& band) {
    const auto x = static_cast<int32_t>(std::floor(from.x));
    const auto y = static_cast<int32_t>(std::floor(from.y));
    const int32_t dx = static_cast<int32_t>(std::floor(to.x)) - x;
    const int32_t dy = static_cast<int32_t>(std::floor(to.y)) - y;
    const int32_t steps = std::max({std::abs(dx), std::abs(dy), 1});
    // To the nearest pixel of the shorter direction; a tie goes right or down.
    const auto along = [steps](int32_t whole, int32_t i) {
        const int32_t doubled = 2 * whole * i + steps;
        return doubled / (2 * steps) - (doubled % (2 * steps) < 0);
    };
    for (int32_t i = 0; i <= steps; ++i) {
        const int32_t column = x + along(dx, i);
        const int32_t row = y + along(dy, i);
        if (column < 0 || column >= BOARD_WIDTH || row < band.first || row >= band.end) continue;
        const float part = static_cast<float>(i) / static_cast<float>(steps);
        back[static_cast<size_t>(row * CPU_PITCH + column)] = ChannelBetween(from.r, to.r, part) << 16 |
                                                              ChannelBetween(from.g, to.g, part) << 8 |
                                                              ChannelBetween(from.b, to.b, part);
    }
}

template <typename Pixel>
void Clear(std::vector<Pixel>& buffer, const Band& band, uint32_t value) {
    std::fill(buffer.begin() + band.first * CPU_PITCH, buffer.begin() + band.end * CPU_PITCH,
              static_cast<Pixel>(value));
}

void DrawBand(const BoardFrame& frame, const Band& band) {
    for (const BoardRun& run : frame.runs) {
        const BoardVertex* vertices = frame.vertices.data() + run.first;
        switch (run.action) {
        case BoardAction::Triangles: DrawTriangles(frame.states[run.state], vertices, run.count, band); break;
        case BoardAction::Lines:
            for (uint32_t i = 0; i + 2 <= run.count; i += 2)
                DrawLine(vertices[i], vertices[i + 1], band);
            break;
        case BoardAction::ClearColour: Clear(back, band, run.value); break;
        case BoardAction::ClearDepth: Clear(depth, band, run.value); break;
        }
    }
}

void Draw(const BoardFrame& frame) {
    const int32_t bands = crew->Size() == 1 ? 1 : static_cast<int32_t>(crew->Size()) * BANDS_PER_THREAD;
    crew->Run(bands, [&](int band) {
        DrawBand(frame, {BOARD_HEIGHT * band / bands, BOARD_HEIGHT * (band + 1) / bands});
    });
}

const uint32_t* Front(uint32_t& pitch) {
    pitch = CPU_PITCH;
    return front.data();
}

}  // namespace

bool CpuBoardHasAvx2() {
#ifdef __x86_64__
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

bool CpuBoardUsesAvx2 = CpuBoardHasAvx2();
unsigned CpuBoardThreads = std::thread::hardware_concurrency();

const Board CpuBoard = {
    .name = "cpu",
    .open = Open,
    .close = Close,
    .loadTexture = LoadTexture,
    .draw = Draw,
    .finish = [] {},
    .swap = [] { std::swap(back, front); },
    .scale = [] { return 1U; },
    .front = Front,
    .frontTexture = nullptr,
};
