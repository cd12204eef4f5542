// The game with an accelerator that draws nothing and writes down what it is asked for: a line for each call in
// glide_calls.txt, with its arguments. Corners are `x y 1/W s/W t/W red green blue alpha`.
#include "host/glide.h"

#include <cstdio>
#include <type_traits>

namespace {

std::FILE* const file = std::fopen("glide_calls.txt", "w");

template <typename... Arguments>
void Record(const char* call, Arguments... arguments) {
    std::fputs(call, file);
    (std::fprintf(file, std::is_integral_v<Arguments> ? " %.0f" : " %.6g", static_cast<double>(arguments)), ...);
    std::fputc('\n', file);
}

void RecordCorner(const GrVertex& v) {
    Record("   ", v.x, v.y, v.oow, v.tmuvtx[0].sow, v.tmuvtx[0].tow, v.r, v.g, v.b, v.a);
}

GrMipMapId_t handles = 0;

}  // namespace

FxBool grSstQueryBoards(GrHwConfiguration* configuration) {
    configuration->num_sst = 1;
    return FXTRUE;
}

FxBool grSstQueryHardware(GrHwConfiguration* configuration) {
    return grSstQueryBoards(configuration);
}

void grGlideInit() {
    Record("grGlideInit");
    handles = 0;
}

void grGlideShutdown() {
    Record("grGlideShutdown");
}

void grSstSelect(int32_t board) {
    Record("grSstSelect", board);
}

FxBool grSstWinOpen(HostWindow*, GrScreenResolution_t resolution, GrScreenRefresh_t refresh, GrColorFormat_t format,
                    GrOriginLocation_t origin, int32_t colourBuffers, int32_t auxiliaryBuffers) {
    Record("grSstWinOpen", resolution, refresh, format, origin, colourBuffers, auxiliaryBuffers);
    return FXTRUE;
}

void grSstWinClose() {
    Record("grSstWinClose");
}

void grSstIdle() {
    Record("grSstIdle");
}

void grDrawTriangle(const GrVertex* a, const GrVertex* b, const GrVertex* c) {
    Record("grDrawTriangle");
    RecordCorner(*a);
    RecordCorner(*b);
    RecordCorner(*c);
}

void grDrawLine(const GrVertex* a, const GrVertex* b) {
    Record("grDrawLine", a->x, a->y, b->x, b->y, a->r, a->g, a->b);
}

void grBufferClear(uint32_t colour, uint8_t alpha, uint16_t depth) {
    Record("grBufferClear", colour, alpha, depth);
}

void grBufferSwap(int32_t interval) {
    Record("grBufferSwap", interval);
}

int32_t grBufferNumPending() {
    return 0;
}

void grCullMode(GrCullMode_t mode) {
    Record("grCullMode", mode);
}

void grDepthBufferMode(GrDepthBufferMode_t mode) {
    Record("grDepthBufferMode", mode);
}

void grDepthBufferFunction(GrCmpFnc_t function) {
    Record("grDepthBufferFunction", function);
}

void grDepthMask(FxBool writes) {
    Record("grDepthMask", writes);
}

void grAlphaTestFunction(GrCmpFnc_t function) {
    Record("grAlphaTestFunction", function);
}

void grAlphaTestReferenceValue(uint8_t value) {
    Record("grAlphaTestReferenceValue", value);
}

void grTexCombine(GrChipID_t unit, GrCombineFunction_t rgb, GrCombineFactor_t rgbFactor, GrCombineFunction_t alpha,
                  GrCombineFactor_t alphaFactor, FxBool invertRgb, FxBool invertAlpha) {
    Record("grTexCombine", unit, rgb, rgbFactor, alpha, alphaFactor, invertRgb, invertAlpha);
}

void grAlphaCombine(GrCombineFunction_t function, GrCombineFactor_t factor, GrCombineLocal_t local,
                    GrCombineOther_t other, FxBool invert) {
    Record("grAlphaCombine", function, factor, local, other, invert);
}

void grColorCombine(GrCombineFunction_t function, GrCombineFactor_t factor, GrCombineLocal_t local,
                    GrCombineOther_t other, FxBool invert) {
    Record("grColorCombine", function, factor, local, other, invert);
}

void grFogMode(GrFogMode_t mode) {
    Record("grFogMode", mode);
}

void grFogColorValue(uint32_t colour) {
    Record("grFogColorValue", colour);
}

void grFogTable(const GrFog_t* table) {
    Record("grFogTable", table[0], table[GR_FOG_TABLE_SIZE - 2], table[GR_FOG_TABLE_SIZE - 1]);
}

void grTexClampMode(GrChipID_t unit, GrTextureClampMode_t s, GrTextureClampMode_t t) {
    Record("grTexClampMode", unit, s, t);
}

void grTexMipMapMode(GrChipID_t unit, GrMipMapMode_t mode, FxBool blendLevels) {
    Record("grTexMipMapMode", unit, mode, blendLevels);
}

FxBool gu3dfGetInfo(const char* gamePath, Gu3dfInfo* info) {
    Record(gamePath);
    info->mem_required = 1;
    return FXTRUE;
}

FxBool gu3dfLoad(const char*, Gu3dfInfo*) {
    return FXTRUE;
}

GrMipMapId_t guTexAllocateMemory(GrChipID_t, GrMipMapLevelMask_t, uint32_t, uint32_t, GrTextureFormat_t,
                                 GrMipMapMode_t mode, GrLOD_t, GrLOD_t, GrAspectRatio_t, GrTextureClampMode_t s,
                                 GrTextureClampMode_t t, GrTextureFilterMode_t minFilter,
                                 GrTextureFilterMode_t magFilter, float lodBias, FxBool trilinear) {
    Record("guTexAllocateMemory", mode, s, t, minFilter, magFilter, lodBias, trilinear);
    return handles++;
}

void guTexDownloadMipMap(GrMipMapId_t handle, const void*, const GuTexTable*) {
    Record("guTexDownloadMipMap", handle);
}

void guTexSource(GrMipMapId_t handle) {
    Record("guTexSource", handle);
}

FxBool grLfbLock(GrLock_t, GrBuffer_t, GrLfbWriteMode_t, GrOriginLocation_t, FxBool, GrLfbInfo_t*) {
    return FXFALSE;
}

FxBool grLfbUnlock(GrLock_t, GrBuffer_t) {
    return FXFALSE;
}
