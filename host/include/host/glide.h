// The accelerator's interface: one board with one texture unit, 640 x 480, a W buffer, fog from a table.
//
// FxBool results are FXTRUE on success. A call with a value the board does not have leaves the state as it was; so does
// every call while no screen is open. Packed colours are 0xAARRGGBB.
#pragma once

#include <cstdint>

struct HostWindow;

using FxBool = int32_t;
constexpr FxBool FXFALSE = 0;
constexpr FxBool FXTRUE = 1;

// ---- Set-up: QueryBoards at any time, the others between grGlideInit and grGlideShutdown, as often as wanted

struct GrHwConfiguration {
    int32_t num_sst;  // number of boards
};

enum GrScreenResolution_t { GR_RESOLUTION_640x480 };
enum GrScreenRefresh_t { GR_REFRESH_60Hz };
enum GrColorFormat_t { GR_COLORFORMAT_ARGB };
enum GrOriginLocation_t { GR_ORIGIN_UPPER_LEFT };

FxBool grSstQueryBoards(GrHwConfiguration* configuration);  // touches no hardware
void grGlideInit();
void grGlideShutdown();  // closes what is still open
FxBool grSstQueryHardware(GrHwConfiguration* configuration);
void grSstSelect(int32_t board);

// Opens the screen with every state at its default: no depth test, alpha test, fog or culling; no texture. Texture
// memory is empty. FXFALSE: other buffers than 2 of colour and 0 or 1 more, or the board cannot be opened.
FxBool grSstWinOpen(HostWindow* window, GrScreenResolution_t resolution, GrScreenRefresh_t refresh,
                    GrColorFormat_t format, GrOriginLocation_t origin, int32_t colourBuffers, int32_t auxiliaryBuffers);
void grSstWinClose();  // the last picture stays on the screen
void grSstIdle();      // waits until all is drawn; nothing without a screen

// ---- Drawing into the back buffer

struct GrTmuVertex {
    float sow, tow;  // s / W, t / W; the longer side of any texture spans 0..256
};

// W = 1..65535, x and y in pixels on multiples of 1/16, -2048..2047; the centre of the upper left pixel is
// (0.5, 0.5). Everything but x and y is interpolated linearly on the screen.
struct GrVertex {
    float x, y;
    float oow;         // 1 / W
    float r, g, b, a;  // 0..255
    GrTmuVertex tmuvtx[1];
};

// A pixel is drawn when its centre lies inside; on an edge the left and the upper ones belong to the triangle.
// Triangles without area, out of range or with values that are no numbers are not drawn.
void grDrawTriangle(const GrVertex* a, const GrVertex* b, const GrVertex* c);
// One pixel wide, both ends included, of x, y, r, g, b alone: no texture, test or fog touches a line.
void grDrawLine(const GrVertex* a, const GrVertex* b);
// The depth buffer is cleared only while it is in use and writable.
void grBufferClear(uint32_t colour, uint8_t alpha, uint16_t depth);
void grBufferSwap(int32_t interval);  // shows the back buffer, whose content is undefined afterwards
int32_t grBufferNumPending();         // swaps that wait: always 0

// ---- States

enum GrCullMode_t { GR_CULL_DISABLE, GR_CULL_NEGATIVE, GR_CULL_POSITIVE };  // sign of the area removed; y grows down
void grCullMode(GrCullMode_t mode);

enum GrCmpFnc_t { GR_CMP_LESS, GR_CMP_EQUAL, GR_CMP_ALWAYS };
enum GrDepthBufferMode_t { GR_DEPTHBUFFER_DISABLE, GR_DEPTHBUFFER_WBUFFER };
void grDepthBufferMode(GrDepthBufferMode_t mode);
void grDepthBufferFunction(GrCmpFnc_t function);  // GR_CMP_LESS, GR_CMP_ALWAYS
void grDepthMask(FxBool writes);

void grAlphaTestFunction(GrCmpFnc_t function);  // GR_CMP_EQUAL, GR_CMP_ALWAYS; they compare the texture's alpha
void grAlphaTestReferenceValue(uint8_t value);

enum GrCombineFunction_t {
    GR_COMBINE_FUNCTION_LOCAL,
    GR_COMBINE_FUNCTION_SCALE_OTHER,
    GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA
};
enum GrCombineFactor_t { GR_COMBINE_FACTOR_NONE, GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_FACTOR_ONE };
enum GrCombineLocal_t { GR_COMBINE_LOCAL_ITERATED };
enum GrCombineOther_t { GR_COMBINE_OTHER_TEXTURE };
enum GrChipID_t { GR_TMU0 };

// The units have one setting each, but for the colour: texture x vertex colour, with or without the vertex's alpha
// added to each channel (GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA).
void grTexCombine(GrChipID_t unit, GrCombineFunction_t rgb, GrCombineFactor_t rgbFactor, GrCombineFunction_t alpha,
                  GrCombineFactor_t alphaFactor, FxBool invertRgb, FxBool invertAlpha);
void grAlphaCombine(GrCombineFunction_t function, GrCombineFactor_t factor, GrCombineLocal_t local,
                    GrCombineOther_t other, FxBool invert);
void grColorCombine(GrCombineFunction_t function, GrCombineFactor_t factor, GrCombineLocal_t local,
                    GrCombineOther_t other, FxBool invert);

// ---- Fog: a share of the fog colour by depth, interpolated between the entries of a table

using GrFog_t = uint8_t;
constexpr int GR_FOG_TABLE_SIZE = 64;
enum GrFogMode_t { GR_FOG_DISABLE, GR_FOG_WITH_TABLE };

void grFogMode(GrFogMode_t mode);
void grFogColorValue(uint32_t colour);
void grFogTable(const GrFog_t* table);    // copied
float guFogTableIndexToW(int32_t index);  // 0..63 -> 1..52428.8
// 0 up to nearW, 255 from farW on, linear in W between them. Equal distances or such that are no numbers make a step.
void guFogGenerateLinear(GrFog_t* table, float nearW, float farW);

// ---- Textures

enum GrTextureFormat_t {
    GR_TEXFMT_RGB_332,
    GR_TEXFMT_YIQ_422,
    GR_TEXFMT_ALPHA_8,
    GR_TEXFMT_INTENSITY_8,
    GR_TEXFMT_ALPHA_INTENSITY_44,
    GR_TEXFMT_P_8,
    GR_TEXFMT_ARGB_8332,
    GR_TEXFMT_AYIQ_8422,
    GR_TEXFMT_RGB_565,
    GR_TEXFMT_ARGB_1555,
    GR_TEXFMT_ARGB_4444,
    GR_TEXFMT_ALPHA_INTENSITY_88,
    GR_TEXFMT_AP_88
};
// Length of a mip level's longer side.
enum GrLOD_t { GR_LOD_256, GR_LOD_128, GR_LOD_64, GR_LOD_32, GR_LOD_16, GR_LOD_8, GR_LOD_4, GR_LOD_2, GR_LOD_1 };
enum GrAspectRatio_t {  // width x height
    GR_ASPECT_8x1,
    GR_ASPECT_4x1,
    GR_ASPECT_2x1,
    GR_ASPECT_1x1,
    GR_ASPECT_1x2,
    GR_ASPECT_1x4,
    GR_ASPECT_1x8
};
enum GrTextureClampMode_t { GR_TEXTURECLAMP_WRAP, GR_TEXTURECLAMP_CLAMP };
enum GrTextureFilterMode_t { GR_TEXTUREFILTER_BILINEAR };
enum GrMipMapMode_t { GR_MIPMAP_NEAREST };  // takes the level nearest to one texel a pixel
enum GrMipMapLevelMask_t { GR_MIPMAPLEVELMASK_BOTH };

void grTexClampMode(GrChipID_t unit, GrTextureClampMode_t s, GrTextureClampMode_t t);  // until the next guTexSource
void grTexMipMapMode(GrChipID_t unit, GrMipMapMode_t mode, FxBool blendLevels);

struct GuNccTable {
    int16_t y[16];
    int16_t i[4][3], q[4][3];  // red, green, blue; a channel is y + i + q
};
struct GuTexPalette {
    uint32_t data[256];  // 0x..RRGGBB; the alpha byte is not used
};
union GuTexTable {
    GuNccTable nccTable;
    GuTexPalette palette;
};

struct Gu3dfHeader {
    uint32_t width, height;        // size of the largest level
    GrLOD_t small_lod, large_lod;  // small_lod is the larger number
    GrAspectRatio_t aspect_ratio;
    GrTextureFormat_t format;
};
struct Gu3dfInfo {
    Gu3dfHeader header;
    GuTexTable table;
    void* data;             // the caller's, mem_required bytes; 16-bit texels may lie anywhere
    uint32_t mem_required;  // texels of all levels
};

// Fills header and mem_required. FXFALSE: there is no such file of the game, or it is none of this kind.
FxBool gu3dfGetInfo(const char* gamePath, Gu3dfInfo* info);
// Reads table and texels, largest level first. FXFALSE also: the file is shorter than it says.
FxBool gu3dfLoad(const char* gamePath, Gu3dfInfo* info);

using GrMipMapId_t = uint32_t;
constexpr GrMipMapId_t GR_NULL_MIPMAP_HANDLE = 0xFFFFFFFF;
constexpr uint32_t GR_MIPMAP_HANDLES = 1024;

// Handles count up from 0. GR_NULL_MIPMAP_HANDLE: none is left, or the sizes do not fit each other.
GrMipMapId_t guTexAllocateMemory(GrChipID_t unit, GrMipMapLevelMask_t mask, uint32_t width, uint32_t height,
                                 GrTextureFormat_t format, GrMipMapMode_t mode, GrLOD_t smallLod, GrLOD_t largeLod,
                                 GrAspectRatio_t aspect, GrTextureClampMode_t s, GrTextureClampMode_t t,
                                 GrTextureFilterMode_t minFilter, GrTextureFilterMode_t magFilter, float lodBias,
                                 FxBool trilinear);
// All levels, as gu3dfLoad gives them. `table` is read for the formats that have one.
void guTexDownloadMipMap(GrMipMapId_t handle, const void* texels, const GuTexTable* table);
void guTexSource(GrMipMapId_t handle);  // makes it the current texture, with the clamp modes it was allocated with

// ---- Reading back

enum GrLock_t { GR_LFB_READ_ONLY };
enum GrBuffer_t { GR_BUFFER_FRONTBUFFER };
enum GrLfbWriteMode_t { GR_LFBWRITEMODE_ANY };

struct GrLfbInfo_t {
    uint32_t size;  // sizeof(GrLfbInfo_t), set by the caller
    const void* lfbPtr;
    uint32_t strideInBytes;
    GrLfbWriteMode_t writeMode;
    GrOriginLocation_t origin;
};

// The picture last swapped, 16 bits a pixel (5-6-5), upper row first. FXFALSE: no screen, or a wrong size.
FxBool grLfbLock(GrLock_t type, GrBuffer_t buffer, GrLfbWriteMode_t writeMode, GrOriginLocation_t origin,
                 FxBool pixelPipeline, GrLfbInfo_t* info);
FxBool grLfbUnlock(GrLock_t type, GrBuffer_t buffer);
