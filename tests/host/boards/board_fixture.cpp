#include "board_fixture.h"

#include "boards/texture_format.h"

GrMipMapId_t BoardTest::MakeTexture(GrTextureFormat_t format, GrLOD_t large, GrLOD_t small, GrAspectRatio_t aspect,
                                    const TexelOf& texel) {
    std::vector<uint8_t> bytes;
    for (int lod = large; lod <= small; ++lod) {
        const LevelSize size = SizeOfLevel(aspect, lod);
        for (uint32_t i = 0; i < size.width * size.height; ++i) {
            const uint16_t value = texel(static_cast<uint32_t>(lod), i % size.width, i / size.width);
            bytes.push_back(static_cast<uint8_t>(value));
            if (TexelBytes(format) == 2) bytes.push_back(static_cast<uint8_t>(value >> 8));
        }
    }
    const LevelSize size = SizeOfLevel(aspect, large);
    const GrMipMapId_t handle = guTexAllocateMemory(
        GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, size.width, size.height, format, GR_MIPMAP_NEAREST, small, large, aspect,
        GR_TEXTURECLAMP_CLAMP, GR_TEXTURECLAMP_CLAMP, GR_TEXTUREFILTER_BILINEAR, GR_TEXTUREFILTER_BILINEAR, 0, FXFALSE);
    guTexDownloadMipMap(handle, bytes.data(), nullptr);
    guTexSource(handle);
    return handle;
}
