#include "host/glide.h"

#include "boards/boards.h"
#include "input/session_hooks.h"
#include "interfaces/glide_frame.h"
#include "interfaces/glide_textures.h"
#include "interfaces/presentation.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float POSITION_MIN = -2048.0f;
constexpr float GREATEST_POSITION = 2047.0f;
constexpr float GREATEST_VALUE = 1e9f;
constexpr uint32_t RGB_MASK = 0xFFFFFF;

constexpr uint32_t READ_BACK_STRIDE = 2048;

std::vector<uint16_t> readBack;

bool IsPosition(float value) {
    return value >= POSITION_MIN && value <= GREATEST_POSITION;
}

bool IsUsable(const BoardVertex& vertex) {
    const auto usable = [](float value) { return std::fabs(value) <= GREATEST_VALUE; };
    return IsPosition(vertex.x) && IsPosition(vertex.y) && usable(vertex.oow) && usable(vertex.sow) &&
           usable(vertex.tow) && usable(vertex.r) && usable(vertex.g) && usable(vertex.b) && usable(vertex.a);
}

BoardVertex ToBoard(const GrVertex& vertex) {
    return {vertex.x, vertex.y, vertex.oow, vertex.tmuvtx[0].sow, vertex.tmuvtx[0].tow, vertex.r,
            vertex.g, vertex.b, vertex.a};
}

// Copies the only fields that a line reads; the caller has not set the others.
BoardVertex ToLineEnd(const GrVertex& vertex) {
    return {vertex.x, vertex.y, 0, 0, 0, vertex.r, vertex.g, vertex.b, 0};
}

bool IsCulled(const BoardVertex& a, const BoardVertex& b, const BoardVertex& c) {
    const double area = (double{b.x} - a.x) * (double{c.y} - a.y) - (double{c.x} - a.x) * (double{b.y} - a.y);
    return area == 0 || (Glide.cull > 0 && area > 0) || (Glide.cull < 0 && area < 0);
}

FrontBuffer ReadBoardFront() {
    const uint32_t scale = CurrentBoard->scale();
    uint32_t pitch = 0;
    const uint32_t* pixels = CurrentBoard->front(pitch);
    return {
        reinterpret_cast<const uint8_t*>(pixels), pitch * 4, BOARD_WIDTH * scale, BOARD_HEIGHT * scale, 32, nullptr};
}

void ShowBoardFront() {
    const uint32_t scale = CurrentBoard->scale();
    if (CurrentBoard->frontTexture)
        ShowFrontTexture({CurrentBoard->frontTexture(), BOARD_WIDTH * scale, BOARD_HEIGHT * scale, ReadBoardFront});
    else
        ShowFront(ReadBoardFront());
}

// A pixel of the 640 x 480 picture: the mean of the pixels of a larger picture that lie in it.
uint16_t HighColour(const uint32_t* corner, uint32_t pitch, uint32_t scale) {
    uint32_t red = 0;
    uint32_t green = 0;
    uint32_t blue = 0;
    for (uint32_t y = 0; y < scale; ++y) {
        for (uint32_t x = 0; x < scale; ++x) {
            const uint32_t rgb = corner[size_t{y} * pitch + x];
            red += rgb >> 16 & 0xFF;
            green += rgb >> 8 & 0xFF;
            blue += rgb & 0xFF;
        }
    }
    const uint32_t count = scale * scale;
    return static_cast<uint16_t>((red / count & 0xF8) << 8 | (green / count & 0xFC) << 3 | blue / count >> 3);
}

void ReadFront() {
    const uint32_t scale = CurrentBoard->scale();
    uint32_t pitch = 0;
    const uint32_t* row = CurrentBoard->front(pitch);
    readBack.resize(READ_BACK_STRIDE / 2 * BOARD_HEIGHT);
    uint16_t* out = readBack.data();
    for (int32_t y = 0; y < BOARD_HEIGHT; ++y, row += size_t{pitch} * scale, out += READ_BACK_STRIDE / 2)
        for (uint32_t x = 0; x < BOARD_WIDTH; ++x)
            out[x] = HighColour(row + x * scale, pitch, scale);
}

}  // namespace

FxBool grSstQueryBoards(GrHwConfiguration* configuration) {
    configuration->num_sst = CurrentBoard ? 1 : 0;
    return FXTRUE;
}

void grGlideInit() {}

void grGlideShutdown() {
    grSstWinClose();
}

FxBool grSstQueryHardware(GrHwConfiguration* configuration) {
    grSstQueryBoards(configuration);
    return configuration->num_sst != 0;
}

void grSstSelect(int32_t) {}

FxBool grSstWinOpen(HostWindow*, GrScreenResolution_t, GrScreenRefresh_t, GrColorFormat_t, GrOriginLocation_t,
                    int32_t colourBuffers, int32_t auxiliaryBuffers) {
    grSstWinClose();
    if (!CurrentBoard || colourBuffers != 2 || auxiliaryBuffers < 0 || auxiliaryBuffers > 1) return FXFALSE;
    if (!OpenBoard()) return FXFALSE;
    Glide = {};
    Glide.isOpen = true;
    StateChanged();
    return FXTRUE;
}

void grSstWinClose() {
    if (!Glide.isOpen) return;
    FlushFrame();
    FreezeFront();
    Glide.isOpen = false;
    ForgetTextures();
    CurrentBoard->close();
}

void grSstIdle() {
    if (!Glide.isOpen) return;
    FlushFrame();
    CurrentBoard->finish();
}

void grDrawTriangle(const GrVertex* a, const GrVertex* b, const GrVertex* c) {
    if (!Glide.isOpen || !Glide.hasTexture) return;
    const BoardVertex corners[3] = {ToBoard(*a), ToBoard(*b), ToBoard(*c)};
    if (!std::all_of(corners, corners + 3, IsUsable) || IsCulled(corners[0], corners[1], corners[2])) return;
    AddVertices(BoardAction::Triangles, {corners[0], corners[1], corners[2]});
}

void grDrawLine(const GrVertex* a, const GrVertex* b) {
    const BoardVertex ends[2] = {ToLineEnd(*a), ToLineEnd(*b)};
    if (!Glide.isOpen || !std::all_of(ends, ends + 2, IsUsable)) return;
    AddVertices(BoardAction::Lines, {ends[0], ends[1]});
}

void grBufferClear(uint32_t colour, uint8_t, uint16_t depth) {
    if (!Glide.isOpen) return;
    AddClear(BoardAction::ClearColour, colour & RGB_MASK);
    if (Glide.hasDepthBuffer && Glide.depthMask) AddClear(BoardAction::ClearDepth, depth);
}

void grBufferSwap(int32_t) {
    if (!Glide.isOpen) return;
    FlushFrame();
    if (!Session.wantsPicture()) return;
    CurrentBoard->swap();
    ShowBoardFront();
}

int32_t grBufferNumPending() {
    return 0;
}

void grCullMode(GrCullMode_t mode) {
    Glide.cull = mode == GR_CULL_DISABLE ? 0 : mode == GR_CULL_POSITIVE ? 1 : -1;
}

void grDepthBufferMode(GrDepthBufferMode_t mode) {
    Glide.hasDepthBuffer = mode == GR_DEPTHBUFFER_WBUFFER;
    StateChanged();
}

void grDepthBufferFunction(GrCmpFnc_t function) {
    if (function != GR_CMP_EQUAL) Glide.depthFunctionIsLess = function == GR_CMP_LESS;
    StateChanged();
}

void grDepthMask(FxBool writes) {
    Glide.depthMask = writes != FXFALSE;
    StateChanged();
}

void grAlphaTestFunction(GrCmpFnc_t function) {
    if (function != GR_CMP_LESS) Glide.state.testsAlpha = function == GR_CMP_EQUAL;
    StateChanged();
}

void grAlphaTestReferenceValue(uint8_t value) {
    Glide.state.alphaReference = value;
    StateChanged();
}

void grTexCombine(GrChipID_t, GrCombineFunction_t, GrCombineFactor_t, GrCombineFunction_t, GrCombineFactor_t, FxBool,
                  FxBool) {}

void grAlphaCombine(GrCombineFunction_t, GrCombineFactor_t, GrCombineLocal_t, GrCombineOther_t, FxBool) {}

void grColorCombine(GrCombineFunction_t function, GrCombineFactor_t, GrCombineLocal_t, GrCombineOther_t, FxBool) {
    if (function == GR_COMBINE_FUNCTION_LOCAL) return;
    Glide.state.addsAlpha = function == GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA;
    StateChanged();
}

void grFogMode(GrFogMode_t mode) {
    Glide.state.hasFog = mode == GR_FOG_WITH_TABLE;
    StateChanged();
}

void grFogColorValue(uint32_t colour) {
    Glide.state.fog.colour = colour & RGB_MASK;
    StateChanged();
}

void grFogTable(const GrFog_t* table) {
    std::copy_n(table, GR_FOG_TABLE_SIZE, Glide.state.fog.entries.begin());
    StateChanged();
}

FxBool grLfbLock(GrLock_t, GrBuffer_t, GrLfbWriteMode_t, GrOriginLocation_t, FxBool, GrLfbInfo_t* info) {
    if (!Glide.isOpen || info->size != sizeof(GrLfbInfo_t)) return FXFALSE;
    ReadFront();
    *info = {sizeof(GrLfbInfo_t), readBack.data(), READ_BACK_STRIDE, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT};
    return FXTRUE;
}

FxBool grLfbUnlock(GrLock_t, GrBuffer_t) {
    return Glide.isOpen;
}
