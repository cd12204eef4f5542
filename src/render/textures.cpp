#include "render/textures.h"

#include "app/app_tables.h"
#include "memory/fatal.h"
#include "memory/files.h"
#include "memory/pool.h"
#include "platform/display.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "world/world_tables.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace {

// Offset of page 0 from the start of the file.
uint32_t TexelStart() {
    return TEXTURE_RECORDS_OFFSET + TextureCount * static_cast<uint32_t>(sizeof(TextureRecord));
}

bool IsTextureSide(uint8_t texels) {
    return texels == 0 || std::has_single_bit(texels);
}

bool LiesInPage(const TextureRecord& texture, uint32_t pageCount) {
    return texture.page < pageCount && texture.x + texture.width <= 256 && texture.y + texture.height <= 256 &&
           IsTextureSide(texture.width) && IsTextureSide(texture.height);
}

void CheckTextureFile(uint32_t size, const char* path) {
    const char* const invalid = "Not a valid texture file";
    if (size < TEXTURE_RECORDS_OFFSET) FatalError(0, invalid, path);
    TextureCount = static_cast<uint32_t>(TextureImage[0] | TextureImage[1] << 8);
    if (TextureCount < 1 || TextureCount > TEXTURES_MAX) FatalError(0, "No Texture File Found", path);
    if (size < TexelStart()) FatalError(0, invalid, path);
    const uint32_t pageCount = (size - TexelStart()) / TEXTURE_PAGE_BYTES;
    for (uint32_t i = 0; i < TextureCount; ++i) {
        if (!LiesInPage(TextureRecords()[i], pageCount)) FatalError(0, invalid, path);
    }
}

int32_t CountTransparentTexels(const TextureRecord& texture) {
    const uint8_t* row = TextureImage + texture.texelOffset;
    ptrdiff_t count = 0;
    for (int y = 0; y < texture.height; y++, row += TEXTURE_PAGE_PITCH)
        count += std::count(row, row + texture.width, 0);
    return static_cast<int32_t>(count);
}

void PrepareTextures() {
    for (uint32_t i = 0; i < TextureCount; ++i) {
        TextureRecord& texture = TextureRecords()[i];
        texture.texelOffset =
            TexelStart() + texture.page * TEXTURE_PAGE_BYTES + texture.y * TEXTURE_PAGE_PITCH + texture.x;
        const int32_t transparent = CountTransparentTexels(texture);
        texture.isTransparent = transparent > 0 ? 1 : 0;
        texture.isEmpty = transparent == texture.width * texture.height ? 1 : 0;
    }
}

bool LeavesTexture(const PolyVertex& corner, const TextureRecord& texture) {
    return corner.u < 0 || corner.v < 0 || corner.u > static_cast<float>(texture.width * 256) ||
           corner.v > static_cast<float>(texture.height * 256);
}

void ConvertToGlideUnits(const PolyRecord& polygon, const TextureRecord& texture) {
    const float width = texture.width;
    const float height = texture.height;
    const char* const path = LevelTable[LoadedLevel].textureFile;
    if (width == 0) FatalError(-1, "L_CreateGlideUVs - tm_width  = 0.0", path);
    if (height == 0) FatalError(-1, "L_CreateGlideUVs - tm_height = 0.0", path);
    const float larger = std::max(width, height);
    for (uint32_t i = polygon.firstVertex; i < uint32_t{polygon.firstVertex} + polygon.cornerCount; ++i) {
        float s = WorldGeometry.alternateVertices[i].u / 256;
        float t = WorldGeometry.alternateVertices[i].v / 256;
        if ((polygon.flags & POLY_WRAPS) == 0) {
            if (s == width - 1) s = width;
            if (t == height - 1) t = height;
        }
        // Kept as it is: a repeat is 255/256 of the texture long.
        WorldGeometry.polyVertices[i].u = s * 255 / larger;
        WorldGeometry.polyVertices[i].v = t * 255 / larger;
    }
}

}  // namespace

int LoadTextureFile(int32_t level) {
    const char* path = LevelTable[level].textureFile;
    const int32_t size = FileSize(path);
    TextureImage = static_cast<uint8_t*>(LoadMalloc(path));
    // Kept as it is: a missing texture file ends the program with exit status 0.
    if (TextureImage == nullptr) FatalError(0, "No Texture File Found", path);
    CheckTextureFile(static_cast<uint32_t>(size), path);
    PrepareTextures();
    ComputeWrapFlags();
    BuildFadePalette();
    BuildTextureRemap();
    if (GlideHardwareReady != 0) L_LoadGlideTexture(level);
    return 0;
}

void BuildTextureRemap() {
    TextureRemap = static_cast<uint8_t*>(PoolMalloc(TextureCount));
    if (TextureRemap == nullptr) FatalError(1, "No memory for the texture remap table");
    for (uint32_t i = 0; i < TextureCount; ++i)
        TextureRemap[i] = static_cast<uint8_t>(i);
}

void ComputeWrapFlags() {
    for (uint32_t i = 0; i < WorldGeometry.used.polygons; ++i) {
        PolyRecord& polygon = WorldGeometry.polygons[i];
        if (polygon.texture >= TextureCount) continue;
        const TextureRecord texture = TextureRecords()[polygon.texture];
        const PolyVertex* corners = WorldGeometry.polyVertices + polygon.firstVertex;
        const bool wraps = std::any_of(corners, corners + polygon.cornerCount,
                                       [&](const PolyVertex& corner) { return LeavesTexture(corner, texture); });
        polygon.flags = static_cast<uint8_t>(wraps ? polygon.flags | POLY_WRAPS : polygon.flags & ~POLY_WRAPS);
    }
}

void SetTexturePalette() {
    if (DisplayState != DISPLAY_NONE && TextureImage != nullptr)
        SetPaletteRange(TextureImage + TEXTURE_PALETTE_OFFSET, Display, 0, 255);
}

void L_CreateGlideUVs() {
    for (uint32_t i = 0; i < WorldGeometry.used.polygons; ++i) {
        const PolyRecord polygon = WorldGeometry.polygons[i];
        if (polygon.texture < TextureCount) ConvertToGlideUnits(polygon, TextureRecords()[polygon.texture]);
    }
    std::printf("L_CreateGlideUVs Finished!\n\n");
}

uint8_t RemappedTexture(uint8_t texture) {
    return texture < TextureCount ? TextureRemap[texture] : texture;
}

const TextureRecord* PolygonTexture(const PolyRecord& polygon) {
    const uint8_t index = RemappedTexture(polygon.texture);
    if (index >= TextureCount) return nullptr;
    const TextureRecord* texture = TextureRecords() + index;
    return texture->width == 0 || texture->height == 0 ? nullptr : texture;
}
