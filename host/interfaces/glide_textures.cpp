#include "interfaces/glide_textures.h"

#include "boards/boards.h"
#include "boards/texture_file.h"
#include "boards/texture_format.h"
#include "host/files.h"
#include "host/glide.h"
#include "interfaces/glide_frame.h"

#include <cstring>

namespace {

struct Texture {
    GrTextureFormat_t format;
    GrLOD_t smallLod, largeLod;
    GrAspectRatio_t aspect;
    bool wrapS, wrapT;
    bool isLoaded;
};
std::vector<Texture> textures;

template <typename Read>
FxBool ReadGameFile(const char* gamePath, Read read) {
    std::FILE* file = HostOpenFile(gamePath, "rb");
    if (!file) return FXFALSE;
    const bool done = read(file);
    std::fclose(file);
    return done;
}

TextureLevel DecodeLevel(const Texture& texture, LevelSize size, const uint8_t*& texels, const GuTexTable& table) {
    TextureLevel level{size.width, size.height, std::vector<uint32_t>(size.width * size.height)};
    const uint32_t bytes = TexelBytes(texture.format);
    for (uint32_t& decoded : level.texels) {
        uint16_t texel = *texels;
        if (bytes == 2) std::memcpy(&texel, texels, 2);
        decoded = DecodeTexel(texture.format, texel, table);
        texels += bytes;
    }
    return level;
}

void UseTexture(GrMipMapId_t handle) {
    const Texture& texture = textures[handle];
    Glide.state.texture = handle;
    Glide.state.wrapS = texture.wrapS;
    Glide.state.wrapT = texture.wrapT;
    Glide.hasTexture = texture.isLoaded;
    StateChanged();
}

}  // namespace

void ForgetTextures() {
    textures.clear();
}

FxBool gu3dfGetInfo(const char* gamePath, Gu3dfInfo* info) {
    return ReadGameFile(gamePath, [info](std::FILE* file) { return ReadTextureHeader(file, *info); });
}

FxBool gu3dfLoad(const char* gamePath, Gu3dfInfo* info) {
    const uint32_t room = info->mem_required;
    return ReadGameFile(gamePath, [info, room](std::FILE* file) {
        return ReadTextureHeader(file, *info) && info->mem_required <= room && ReadTexels(file, *info);
    });
}

GrMipMapId_t guTexAllocateMemory(GrChipID_t, GrMipMapLevelMask_t, uint32_t width, uint32_t height,
                                 GrTextureFormat_t format, GrMipMapMode_t, GrLOD_t smallLod, GrLOD_t largeLod,
                                 GrAspectRatio_t aspect, GrTextureClampMode_t s, GrTextureClampMode_t t,
                                 GrTextureFilterMode_t, GrTextureFilterMode_t, float, FxBool) {
    const LevelSize largest = SizeOfLevel(aspect, largeLod);
    if (!Glide.isOpen || textures.size() == GR_MIPMAP_HANDLES || smallLod < largeLod || largest.width != width ||
        largest.height != height)
        return GR_NULL_MIPMAP_HANDLE;
    textures.push_back(
        {format, smallLod, largeLod, aspect, s == GR_TEXTURECLAMP_WRAP, t == GR_TEXTURECLAMP_WRAP, false});
    return static_cast<GrMipMapId_t>(textures.size() - 1);
}

void guTexDownloadMipMap(GrMipMapId_t handle, const void* texels, const GuTexTable* table) {
    if (handle >= textures.size()) return;
    FlushFrame();
    static constexpr GuTexTable NO_TABLE{};
    Texture& texture = textures[handle];
    TextureImage image{texture.largeLod, {}};
    const auto* next = static_cast<const uint8_t*>(texels);
    for (int32_t lod = texture.largeLod; lod <= texture.smallLod; ++lod)
        image.levels.push_back(DecodeLevel(texture, SizeOfLevel(texture.aspect, lod), next, table ? *table : NO_TABLE));
    CurrentBoard->loadTexture(handle, std::move(image));
    texture.isLoaded = true;
    if (handle == Glide.state.texture) Glide.hasTexture = true;
}

void guTexSource(GrMipMapId_t handle) {
    if (handle < textures.size()) UseTexture(handle);
}

void grTexClampMode(GrChipID_t, GrTextureClampMode_t s, GrTextureClampMode_t t) {
    Glide.state.wrapS = s == GR_TEXTURECLAMP_WRAP;
    Glide.state.wrapT = t == GR_TEXTURECLAMP_WRAP;
    StateChanged();
}

void grTexMipMapMode(GrChipID_t, GrMipMapMode_t, FxBool) {}
