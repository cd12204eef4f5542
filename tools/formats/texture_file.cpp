#include "formats/texture_file.h"

#include "formats/binary.h"
#include "formats/error.h"

#include <fmt/format.h>

#include <bit>

namespace {

constexpr size_t RECORD_UNUSED_BYTES = 7;  // address and transparency, which the game works out itself
const char* const REMEDY = "the file is damaged; build it again";

TextureSlot ReadSlot(ByteReader& in, size_t index, size_t pageCount) {
    in.Take(RECORD_UNUSED_BYTES);
    TextureSlot slot{in.U8(), in.U8(), in.U8(), in.U8(), in.U8()};
    if (!IsTextureSide(slot.width) || !IsTextureSide(slot.height)) {
        Refuse(in.File(), 0, fmt::format("texture {} is {} x {} texels", index, slot.width, slot.height), REMEDY);
    }
    if (slot.page >= pageCount || slot.x + slot.width > TEXTURE_PAGE_SIDE || slot.y + slot.height > TEXTURE_PAGE_SIDE) {
        Refuse(in.File(), 0, fmt::format("texture {} lies outside the pages", index), REMEDY);
    }
    return slot;
}

}  // namespace

bool IsTextureSide(int side) {
    return side >= TEXTURE_SIDE_MIN && side <= TEXTURE_SIDE_MAX && std::has_single_bit(static_cast<unsigned>(side));
}

std::vector<uint8_t> EncodeTextureFile(const TextureFile& file) {
    ByteWriter out;
    out.U16(static_cast<uint32_t>(file.slots.size()));
    for (const auto& colour : file.palette)
        out.Append(colour.data(), colour.size());
    for (const TextureSlot& slot : file.slots) {
        out.Zeros(RECORD_UNUSED_BYTES);
        for (const uint8_t byte : {slot.page, slot.x, slot.y, slot.width, slot.height})
            out.U8(byte);
    }
    for (const auto& page : file.pages)
        out.Append(page.data(), page.size());
    return out.bytes;
}

TextureFile DecodeTextureFile(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    TextureFile file;
    const size_t count = in.U16();
    if (count == 0 || count > TEXTURE_COUNT_MAX) {
        Refuse(fileName, 0, fmt::format("says it has {} textures", count), REMEDY);
    }
    for (auto& colour : file.palette) {
        for (uint8_t& level : colour) {
            level = in.U8();
            if (level > 63) Refuse(fileName, 0, "has a palette level above 63", REMEDY);
        }
    }
    const size_t recordBytes = count * 12;
    const size_t pageBytes = in.Left() < recordBytes ? 0 : in.Left() - recordBytes;
    if (pageBytes == 0 || pageBytes % TEXTURE_PAGE_SIZE != 0 || pageBytes / TEXTURE_PAGE_SIZE > TEXTURE_PAGES_MAX) {
        Refuse(fileName, 0, "does not end with 1 to 12 whole pages", REMEDY);
    }
    const size_t pageCount = pageBytes / TEXTURE_PAGE_SIZE;
    for (size_t i = 0; i < count; ++i)
        file.slots.push_back(ReadSlot(in, i, pageCount));
    for (size_t i = 0; i < pageCount; ++i) {
        const uint8_t* page = in.Take(TEXTURE_PAGE_SIZE);
        file.pages.emplace_back(page, page + TEXTURE_PAGE_SIZE);
    }
    return file;
}
