#include "mapconvert/wad_file.h"

#include "formats/binary.h"
#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr size_t ENTRY_BYTES = 32;
constexpr size_t NAME_BYTES = 16;
constexpr size_t PALETTE_BYTES = 768;
constexpr uint8_t KIND_PALETTE = '@';

std::string NameIn(ByteReader& in) {
    const uint8_t* first = in.Take(NAME_BYTES);
    return {first, std::find(first, first + NAME_BYTES, uint8_t{0})};
}

Palette TakePalette(ByteReader& in, size_t colours) {
    Palette palette{};
    for (size_t i = 0; i < colours; ++i) {
        const uint8_t* colour = in.Take(3);
        if (i < palette.size()) palette[i] = {colour[0], colour[1], colour[2], 255};
    }
    return palette;
}

ByteReader Part(const WadFile& wad, const WadEntry& entry) {
    const auto first = wad.content.begin() + static_cast<std::ptrdiff_t>(entry.offset);
    return {{first, first + static_cast<std::ptrdiff_t>(entry.size)},
            fmt::format("{}: {}", wad.name, Shown(entry.name))};
}

// The colours of a WAD3's picture stand behind the smallest of its four pictures.
Palette ColoursOf(const WadFile& wad, const WadEntry& entry, size_t smallest, size_t pixels) {
    ByteReader in = Part(wad, entry);
    in.Take(std::min(in.Left(), smallest));
    in.Take(std::min(in.Left(), pixels / 64));
    const size_t colours = in.U16();
    return TakePalette(in, colours);
}

}  // namespace

WadFile ReadWad(std::vector<uint8_t> content, const std::string& name) {
    WadFile wad{name, std::move(content), {}, false, {}};
    ByteReader in(wad.content, name);
    const uint8_t* magic = in.Take(4);
    const bool isKnown = std::equal(magic, magic + 3, "WAD") && (magic[3] == '2' || magic[3] == '3');
    if (!isKnown) Refuse(name, 0, "is neither a WAD2 nor a WAD3 file", "name a file of textures");
    wad.hasColours = magic[3] == '3';
    const uint8_t kind = wad.hasColours ? 'C' : 'D';
    const size_t count = in.U32();
    const size_t list = in.U32();
    if (count > WAD_ENTRIES_MAX || list > wad.content.size() || count * ENTRY_BYTES > wad.content.size() - list)
        Refuse(name, 0, fmt::format("its list of {} entries reaches beyond the file", count), "it was cut short");
    ByteReader entries({wad.content.begin() + static_cast<std::ptrdiff_t>(list), wad.content.end()}, name);
    for (size_t i = 0; i < count; ++i) {
        WadEntry entry;
        entry.offset = entries.U32();
        entry.size = entries.U32();
        entries.U32();
        const uint8_t entryKind = entries.U8();
        const bool packed = entries.U8() != 0;
        entries.U16();
        entry.name = NameIn(entries);
        if (packed || entry.offset > wad.content.size() || entry.size > wad.content.size() - entry.offset) continue;
        if (entryKind == KIND_PALETTE && entry.size >= PALETTE_BYTES) {
            ByteReader colours = Part(wad, entry);
            wad.palette = TakePalette(colours, PALETTE_BYTES / 3);
        } else if (entryKind == kind) {
            wad.pictures.push_back(std::move(entry));
        }
    }
    return wad;
}

Image DecodeWadPicture(const WadFile& wad, const WadEntry& entry, const Palette& palette) {
    ByteReader in = Part(wad, entry);
    in.Take(NAME_BYTES);
    const uint32_t width = in.U32();
    const uint32_t height = in.U32();
    if (width < 1 || height < 1 || width > WAD_PICTURE_SIDE_MAX || height > WAD_PICTURE_SIDE_MAX) {
        Refuse(in.File(), 0, fmt::format("is {} x {} pixels", width, height),
               fmt::format("1 to {} each way are possible", WAD_PICTURE_SIDE_MAX));
    }
    std::array<size_t, 4> places{};
    for (size_t& place : places)
        place = in.U32();
    const size_t pixels = size_t{width} * height;
    ByteReader picture = Part(wad, entry);
    picture.Take(std::min(picture.Left(), places[0]));
    const uint8_t* bytes = picture.Take(pixels);
    Palette colours = wad.hasColours ? ColoursOf(wad, entry, places[3], pixels) : wad.palette.value_or(palette);
    if (entry.name.starts_with('{')) colours.back() = {0, 0, 0, 0};
    Image image(static_cast<int>(width), static_cast<int>(height));
    std::transform(bytes, bytes + pixels, image.pixels.begin(), [&](uint8_t index) { return colours[index]; });
    return image;
}

Palette ReadPalette(const std::filesystem::path& path) {
    ByteReader in(ReadWholeFile(path), path.string());
    return TakePalette(in, PALETTE_BYTES / 3);
}

Palette GreyPalette() {
    Palette palette{};
    for (size_t i = 0; i < palette.size(); ++i) {
        const auto grey = static_cast<uint8_t>(i);
        palette[i] = {grey, grey, grey, 255};
    }
    return palette;
}
