#include "memory/fatal.h"
#include "memory/files.h"
#include "render/render_tables.h"
#include "render/textures.h"

#include <cstdio>
#include <memory>
#include <new>

GrMipMapId_t TextureHandles[TEXTURES_MAX];

namespace {

GrMipMapId_t AllocateTexture(const Gu3dfHeader& header) {
    return guTexAllocateMemory(GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, header.width, header.height, header.format,
                               GR_MIPMAP_NEAREST, header.small_lod, header.large_lod, header.aspect_ratio,
                               GR_TEXTURECLAMP_CLAMP, GR_TEXTURECLAMP_CLAMP, GR_TEXTUREFILTER_BILINEAR,
                               GR_TEXTUREFILTER_BILINEAR, 0.0f, FXFALSE);
}

void LoadGlideTexture(const char* path, GrMipMapId_t& handle) {
    Gu3dfInfo info{};
    // Kept as it is: without a file the handle stays as it was.
    if (!gu3dfGetInfo(path, &info)) return;
    const std::unique_ptr<uint8_t[]> texels(new (std::nothrow) uint8_t[info.mem_required]);
    if (!texels) FatalError(-1, "L_LoadGlideTexture (Memory #2)", path);
    info.data = texels.get();
    if (!gu3dfLoad(path, &info)) FatalError(-1, "L_LoadGlideTexture (Load #1)", path);
    handle = AllocateTexture(info.header);
    if (handle == GR_NULL_MIPMAP_HANDLE) FatalError(-1, "L_LoadGlideTexture (Memory #1)", path);
    guTexDownloadMipMap(handle, info.data, &info.table);
}

}  // namespace

void L_LoadGlideTexture(int32_t level) {
    for (uint32_t i = 0; i < TextureCount; ++i) {
        char path[64];
        std::snprintf(path, sizeof path, "game\\data\\levels\\level%d\\glidetex\\%02u.3df", level + 1, i);
        LoadGlideTexture(path, TextureHandles[i]);
    }
}
