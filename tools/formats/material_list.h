// The materials that a map may use and the texture slot each name stands for. texc writes the list, mapc reads it.
//
// Text, one material a line, '#' starts a comment:
//     slot name width height [word...]
//     17 brick/wall 128 64 colour=7a3c28
//     12 fence 64 64 colour=707070 cover=35 cutout
//     60 clip 8 8 clip
//     dark 3 2 1
// slot: 0..499; brushes of a world may use 0..92 only. name: any text without blanks, as the map writes it, used once.
// width, height: texels, a power of two, 8..128. Several names may share a slot. The other words are flags, and how the
// material looks to light: its mean colour (red, green, blue; grey when missing), the percentage of its texels that are
// not hole (100), and the light byte that it sheds (0..1000, 0 when missing) on a surface that sees nothing else.
// dark: the colour that unlit and far surfaces fade to, red, green and blue, 0..63; the palette is made for it.
#pragma once

#include "formats/image.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

constexpr unsigned MATERIAL_CLIP = 1;  // "clip": never drawn (every texel transparent), but collides
constexpr unsigned MATERIAL_SKY =
    2;  // "sky": the face is left out, so that the sky shows; still keeps the world closed
constexpr unsigned MATERIAL_LIQUID = 4;  // "liquid": the animated slots, walked on like a floor
constexpr unsigned MATERIAL_CUTOUT = 8;  // "cutout": has transparent texels, so what lies behind it stays visible

struct Material {
    int slot = 0;
    std::string name;
    int width = 0;
    int height = 0;
    unsigned flags = 0;  // MATERIAL_*
    Rgba colour{128, 128, 128, 255};
    int cover = 100;
    int light = 0;
};

struct MaterialList {
    std::vector<Material> materials;
    std::optional<std::array<int, 3>> dark = {};
};

MaterialList ReadMaterialList(const std::filesystem::path& path);  // in file order
// Ordered by slot, then name. A list that could not be read back is refused.
void WriteMaterialList(const std::filesystem::path& path, const MaterialList& list);
