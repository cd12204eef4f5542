#include "render/glide_screen.h"

#include "app/app_tables.h"
#include "host/glide.h"
#include "host/win32.h"
#include "memory/fatal.h"
#include "memory/files.h"
#include "render/fog.h"
#include "render/render_tables.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr int32_t GLIDE_SCREEN_RES = 2;
constexpr int32_t SHOWN_FOG_ENTRIES = 63;

int32_t NextScreenshot = 0;

void OpenBoard() {
    grGlideInit();
    GrHwConfiguration configuration{};
    if (!grSstQueryHardware(&configuration)) FatalError(-1, "grQuery failed!");
    grSstSelect(0);
    if (!grSstWinOpen(GetActiveWindow(), GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB,
                      GR_ORIGIN_UPPER_LEFT, 2, 1))
        FatalError(-1, "grOpen failed!");
}

void CombineColours(GrCombineFunction_t function) {
    grColorCombine(function, GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED, GR_COMBINE_OTHER_TEXTURE, FXFALSE);
}

// Draws texture x vertex colour + vertex alpha, and only where the texture's alpha is 0.
void SetTextureStates() {
    grTexClampMode(GR_TMU0, GR_TEXTURECLAMP_CLAMP, GR_TEXTURECLAMP_CLAMP);
    grTexMipMapMode(GR_TMU0, GR_MIPMAP_NEAREST, FXTRUE);
    grTexCombine(GR_TMU0, GR_COMBINE_FUNCTION_LOCAL, GR_COMBINE_FACTOR_NONE, GR_COMBINE_FUNCTION_LOCAL,
                 GR_COMBINE_FACTOR_NONE, FXFALSE, FXFALSE);
    grAlphaCombine(GR_COMBINE_FUNCTION_SCALE_OTHER, GR_COMBINE_FACTOR_ONE, GR_COMBINE_LOCAL_ITERATED,
                   GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    CombineColours(GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA);
    grAlphaTestReferenceValue(0);
    grAlphaTestFunction(GR_CMP_EQUAL);
}

void SetBufferStates() {
    grDepthBufferMode(GR_DEPTHBUFFER_WBUFFER);
    grDepthBufferFunction(GR_CMP_LESS);
    grDepthMask(FXTRUE);
    grCullMode(GR_CULL_POSITIVE);
}

void WritePixels(std::FILE* file, const GrLfbInfo_t& picture) {
    const auto* row = static_cast<const uint8_t*>(picture.lfbPtr);
    for (int32_t y = 0; y < ScreenHeight; y++, row += picture.strideInBytes) {
        for (int32_t x = 0; x < ScreenWidth; ++x) {
            uint16_t pixel;
            std::memcpy(&pixel, row + 2 * x, sizeof pixel);
            std::fputc(pixel >> 11 << 3, file);
            std::fputc((pixel >> 5 & 0x3F) << 2, file);
            std::fputc((pixel & 0x1F) << 3, file);
        }
    }
}

}  // namespace

int32_t GlideBoardCount() {
    GrHwConfiguration configuration{};
    grSstQueryBoards(&configuration);
    return configuration.num_sst;
}

void OpenGlide() {
    OpenBoard();
    SetTextureStates();
    SetBufferStates();
    LoadFogTable(0.0f);
    SetFogStates();
    for (int32_t i = 0; i < SHOWN_FOG_ENTRIES; ++i)
        std::printf("i = %d,  W = %f\n", i, guFogTableIndexToW(i));
    grBufferClear(0, 0, 0xFFFF);
    ScreenResIndex = GLIDE_SCREEN_RES;
    GlideInitialised = GlideHardwareReady = GlideWindowOpen = 1;
    grSstIdle();
}

void SetFogSwitchStates(bool on) {
    grFogMode(on ? GR_FOG_WITH_TABLE : GR_FOG_DISABLE);
    grAlphaTestFunction(on ? GR_CMP_EQUAL : GR_CMP_ALWAYS);
    grDepthMask(on ? FXTRUE : FXFALSE);
}

void SetSkyStates(bool on) {
    if (!GlideActive()) return;
    CombineColours(on ? GR_COMBINE_FUNCTION_SCALE_OTHER : GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA);
    grDepthMask(on ? FXFALSE : FXTRUE);
}

void SaveScreenshot() {
    if (!GlideActive()) return;
    GrLfbInfo_t picture{};
    picture.size = sizeof picture;
    if (!grLfbLock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT, FXTRUE,
                   &picture))
        return;
    char name[32];
    std::snprintf(name, sizeof name, "3DFX_%02d.raw", NextScreenshot);
    if (std::FILE* file = OpenGameFile(name, "wb")) {
        WritePixels(file, picture);
        std::fclose(file);
        NextScreenshot++;
    }
    grLfbUnlock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER);
}
