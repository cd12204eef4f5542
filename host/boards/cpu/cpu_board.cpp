#include "boards/cpu/cpu_board.h"

#include "boards/cpu/crew.h"
#include "boards/cpu/triangle.h"

#include <cmath>
#include <cstdlib>
#include <memory>

namespace {

constexpr size_t BUFFER_PIXELS = size_t{CPU_PITCH} * BOARD_HEIGHT;

constexpr unsigned THREADS_MAX = 4;

// The picture is drawn in bands of rows, each by one thread in the order of the frame, so the number of threads does
// not change it. This many bands even out the threads' work, and the pixels of one fit a core's cache.
constexpr int32_t BANDS = 12;
static_assert(BOARD_HEIGHT % BANDS == 0);

struct Band {
    int32_t first, end;  // rows
    // Triangles that may reach the band: the numbers of their first vertices, in the frame's order.
    std::vector<uint32_t> triangles;
};

std::unique_ptr<Crew> crew;

std::array<Band, BANDS> bands;
std::vector<FillState> states;  // the states of the frame, made ready for filling
std::vector<uint32_t> back, front;
std::vector<uint16_t> depth;
std::vector<CpuTexture> textures;

bool Open(std::string&) {
    back.assign(BUFFER_PIXELS, 0);
    front.assign(BUFFER_PIXELS, 0);
    depth.assign(BUFFER_PIXELS, 0xFFFF);
    for (int32_t i = 0; i < BANDS; ++i)
        bands[static_cast<size_t>(i)] = {BOARD_HEIGHT * i / BANDS, BOARD_HEIGHT * (i + 1) / BANDS, {}};
    const unsigned threads = std::clamp(CpuBoardThreads, 1U, THREADS_MAX);
    if (!crew || crew->Size() != threads) crew = std::make_unique<Crew>(threads - 1);
    return true;
}

void Close() {
    back = front = {};
    depth = {};
    textures.clear();
}

void LoadTexture(uint32_t number, TextureImage image) {
    if (textures.size() <= number) textures.resize(number + 1, CpuTexture{-1, -1, {}, {}});
    textures[number] = MakeCpuTexture(image);
}

FillState Prepare(const BoardState& state) {
    FillState fill{};
    // A state that draws only lines has no texture.
    if (state.texture < textures.size()) fill.texture = &textures[state.texture];
    fill.wrapS = state.wrapS;
    fill.wrapT = state.wrapT;
    fill.testsDepth = state.testsDepth;
    fill.writesDepth = state.writesDepth;
    fill.alphaReference = state.testsAlpha ? state.alphaReference : -1;
    fill.addsAlpha = state.addsAlpha;
    fill.hasFog = state.hasFog;
    const uint64_t colour = state.fog.colour;
    fill.fogChannels = (colour & 0xFF) | (colour & 0xFF00) << 8 | (colour & 0xFF0000) << 16;
    const auto share = [&](size_t i) { return state.fog.entries[std::min<size_t>(i, 63)] * 32767 / 255; };
    for (size_t i = 0; i < 64; ++i)
        fill.fog[i] = {static_cast<int16_t>(share(i)), static_cast<int16_t>(share(i + 1) - share(i))};
    return fill;
}

void DrawTriangle(const FillState& state, const BoardVertex* corners, const Band& band) {
    Triangle triangle;
    if (!SetUpTriangle(corners, triangle)) return;
    FillTriangle* const fill = CpuBoardUsesAvx2 ? FillTriangleAvx2 : FillTrianglePortable;
    fill(state, triangle, {back.data(), depth.data()}, std::max(triangle.firstRow, band.first),
         std::min(triangle.endRow, band.end));
}

uint32_t ChannelBetween(float from, float to, float part) {
    return static_cast<uint32_t>(std::clamp(from + (to - from) * part, 0.0f, 255.0f) + 0.5f);
}

void DrawLine(const BoardVertex& from, const BoardVertex& to, const Band& band) {
    const auto x = static_cast<int32_t>(std::floor(from.x));
    const auto y = static_cast<int32_t>(std::floor(from.y));
    const int32_t dx = static_cast<int32_t>(std::floor(to.x)) - x;
    const int32_t dy = static_cast<int32_t>(std::floor(to.y)) - y;
    const int32_t steps = std::max({std::abs(dx), std::abs(dy), 1});
    // Rounds to the nearest pixel in the shorter direction; a tie goes right or down.
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
    auto next = band.triangles.begin();
    for (const BoardRun& run : frame.runs) {
        const BoardVertex* vertices = frame.vertices.data() + run.first;
        switch (run.action) {
        case BoardAction::Triangles:
            for (; next != band.triangles.end() && *next < run.first + run.count; ++next)
                DrawTriangle(states[run.state], frame.vertices.data() + *next, band);
            break;
        case BoardAction::Lines:
            for (uint32_t i = 0; i + 2 <= run.count; i += 2)
                DrawLine(vertices[i], vertices[i + 1], band);
            break;
        case BoardAction::ClearColour: Clear(back, band, run.value); break;
        case BoardAction::ClearDepth: Clear(depth, band, run.value); break;
        }
    }
}

// All bands are equally high.
void SortTriangles(const BoardFrame& frame) {
    for (Band& band : bands)
        band.triangles.clear();
    const auto bandOf = [](float y) {
        const float row = std::clamp(y, 0.0f, static_cast<float>(BOARD_HEIGHT - 1));
        return static_cast<int32_t>(row) / (bands.front().end - bands.front().first);
    };
    for (const BoardRun& run : frame.runs) {
        if (run.action != BoardAction::Triangles) continue;
        for (uint32_t i = run.first; i + 3 <= run.first + run.count; i += 3) {
            const BoardVertex* corners = &frame.vertices[i];
            const auto [top, bottom] = std::minmax({corners[0].y, corners[1].y, corners[2].y});
            if (bottom < 0 || top > static_cast<float>(BOARD_HEIGHT)) continue;
            const int32_t last = bandOf(bottom);
            for (int32_t band = bandOf(top); band <= last; ++band)
                bands[static_cast<size_t>(band)].triangles.push_back(i);
        }
    }
}

void Draw(const BoardFrame& frame) {
    states.clear();
    for (const BoardState& state : frame.states)
        states.push_back(Prepare(state));
    SortTriangles(frame);
    crew->Run(static_cast<int>(bands.size()), [&](int i) { DrawBand(frame, bands[static_cast<size_t>(i)]); });
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
    .suits = nullptr,
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
