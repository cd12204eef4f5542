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

FxBool grSstWinOpen(HostWindow*, GrScreenResolution_t resolution, GrScreenRefresh_t refresh, GrColorFormat_t format,
                    GrOriginLocation_t origin, int32_t colourBuffers, int32_t auxiliaryBuffers) {
    Record("grSstWinOpen", resolution, refresh, format, origin, colourBuffers, auxiliaryBuffers);
    return FXTRUE;
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

int32_t grBufferNumPending() {
    return 0;
}

void grFogTable(const GrFog_t* table) {
    Record("grFogTable", table[0], table[GR_FOG_TABLE_SIZE - 2], table[GR_FOG_TABLE_SIZE - 1]);
}

// The calls that only carry numbers.
#define RECORD0(CALL)                                                                                                  \
    void CALL() {                                                                                                      \
        Record(#CALL);                                                                                                 \
    }
#define RECORD1(CALL, A)                                                                                               \
    void CALL(A a) {                                                                                                   \
        Record(#CALL, a);                                                                                              \
    }
#define RECORD3(CALL, A, B, C)                                                                                         \
    void CALL(A a, B b, C c) {                                                                                         \
        Record(#CALL, a, b, c);                                                                                        \
    }
#define RECORD5(CALL, A, B, C, D, E)                                                                                   \
    void CALL(A a, B b, C c, D d, E e) {                                                                               \
        Record(#CALL, a, b, c, d, e);                                                                                  \
    }
#define RECORD7(CALL, A, B, C, D, E, F, G)                                                                             \
    void CALL(A a, B b, C c, D d, E e, F f, G g) {                                                                     \
        Record(#CALL, a, b, c, d, e, f, g);                                                                            \
    }
RECORD0(grGlideShutdown)
RECORD0(grSstWinClose)
RECORD0(grSstIdle)
RECORD1(grSstSelect, int32_t)
RECORD1(grBufferSwap, int32_t)
RECORD1(grCullMode, GrCullMode_t)
RECORD1(grDepthBufferMode, GrDepthBufferMode_t)
RECORD1(grDepthBufferFunction, GrCmpFnc_t)
RECORD1(grDepthMask, FxBool)
RECORD1(grAlphaTestFunction, GrCmpFnc_t)
RECORD1(grAlphaTestReferenceValue, uint8_t)
RECORD1(grFogMode, GrFogMode_t)
RECORD1(grFogColorValue, uint32_t)
RECORD3(grBufferClear, uint32_t, uint8_t, uint16_t)
RECORD3(grTexClampMode, GrChipID_t, GrTextureClampMode_t, GrTextureClampMode_t)
RECORD3(grTexMipMapMode, GrChipID_t, GrMipMapMode_t, FxBool)
RECORD5(grAlphaCombine, GrCombineFunction_t, GrCombineFactor_t, GrCombineLocal_t, GrCombineOther_t, FxBool)
RECORD5(grColorCombine, GrCombineFunction_t, GrCombineFactor_t, GrCombineLocal_t, GrCombineOther_t, FxBool)
RECORD7(grTexCombine, GrChipID_t, GrCombineFunction_t, GrCombineFactor_t, GrCombineFunction_t, GrCombineFactor_t,
        FxBool, FxBool)

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
