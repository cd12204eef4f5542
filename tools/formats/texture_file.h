// texture.bin: one level's palette, texture records and texels. All little-endian.
//   0            u16       N, number of textures
//   2            768       palette: 256 x red, green, blue, each 0..63
//   770          12 x N    records: 4 + 1 + 2 zero bytes, u8 page, x, y, width, height
//   770 + 12N    65536 a page: 256 rows of 256 palette indices
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

constexpr int TEXTURE_PAGE_SIDE = 256;
constexpr size_t TEXTURE_PAGE_SIZE = 65536;
constexpr size_t TEXTURE_PAGES_MAX = 12;
constexpr size_t TEXTURE_COUNT_MAX = 256;  // the animation table has one byte an entry
constexpr int TEXTURE_SIDE_MIN = 8;
constexpr int TEXTURE_SIDE_MAX = 128;

struct TextureSlot {
    uint8_t page = 0, x = 0, y = 0;
    uint8_t width = 0, height = 0;  // powers of two, TEXTURE_SIDE_MIN..TEXTURE_SIDE_MAX
    bool operator==(const TextureSlot&) const = default;
};

struct TextureFile {
    std::array<std::array<uint8_t, 3>, 256> palette{};  // 0..63 each
    std::vector<TextureSlot> slots;
    std::vector<std::vector<uint8_t>> pages;  // TEXTURE_PAGE_SIZE bytes each

    uint8_t Texel(const TextureSlot& slot, int x, int y) const {
        return pages[slot.page][static_cast<size_t>((slot.y + y) * TEXTURE_PAGE_SIDE + slot.x + x)];
    }
    bool operator==(const TextureFile&) const = default;
};

bool IsTextureSide(int side);  // a power of two within the limits

std::vector<uint8_t> EncodeTextureFile(const TextureFile& file);
// Refuses anything that breaks a limit above, a rectangle that leaves its page, and bytes after the last page.
TextureFile DecodeTextureFile(std::vector<uint8_t> content, const std::string& fileName);
