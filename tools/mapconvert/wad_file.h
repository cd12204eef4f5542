// Reads the pictures of WAD2 and WAD3 files, in which map editors keep textures. A file is a header ("WAD2" or "WAD3",
// how many entries, where their list begins), the entries' bytes, and the list, 32 bytes an entry: where its bytes
// begin, how many, how many when unpacked, a letter for its kind, whether it is packed, two unused bytes, and a name of
// 16 bytes. All numbers are little-endian.
//
// A picture (kind D in WAD2, C in WAD3) is a name of 16 bytes, width, height, the places of four pictures of halving
// size, and a byte a pixel for each of those. In WAD3 a number of 16 bits and so many colours of three bytes follow; a
// WAD2's colours are those of its entry of kind @, or of a file of their own: 256 of three bytes.
#pragma once

#include "formats/image.h"

#include <array>
#include <optional>

using Palette = std::array<Rgba, 256>;

struct WadEntry {
    std::string name;  // as it stands there
    size_t offset = 0;
    size_t size = 0;
};

struct WadFile {
    std::string name;
    std::vector<uint8_t> content;
    std::vector<WadEntry> pictures;
    bool hasColours = false;  // WAD3: each picture its own
    std::optional<Palette> palette;
};

constexpr size_t WAD_ENTRIES_MAX = 65536;
constexpr int WAD_PICTURE_SIDE_MAX = 4096;

// Entries that are packed, reach beyond the file or are no pictures are left out. ContentError for what is no such
// file.
WadFile ReadWad(std::vector<uint8_t> content, const std::string& name);
// The largest of the four. Where the name begins with '{', the last colour is a hole. palette: for a WAD2 without one.
// ContentError for a picture whose bytes do not suffice.
Image DecodeWadPicture(const WadFile& wad, const WadEntry& entry, const Palette& palette);

Palette ReadPalette(const std::filesystem::path& path);  // ContentError for less than 768 bytes
Palette GreyPalette();
