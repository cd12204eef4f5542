#include "texc/level_textures.h"

#include "formats/colour_text.h"
#include "formats/error.h"
#include "formats/files.h"
#include "formats/glide_texture.h"
#include "formats/picture_scale.h"
#include "texc/material.h"
#include "texc/page_packing.h"
#include "texc/palette.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

constexpr Rgba SKIN_COLOUR{176, 160, 144, 255};  // colour of the skin's textures in a level without a skin
constexpr int SKIN_WEIGHT = 4;  // how often the skin's texels count for the palette, since players look at them most

Image LoadPicture(const std::filesystem::path& folder, const std::string& name, int pictures) {
    const std::filesystem::path path = folder / (name + ".png");
    Image image = ReadPng(path);
    if (!IsTextureSide(image.width) || image.height % pictures != 0 || !IsTextureSide(image.height / pictures)) {
        Refuse(path.string(), 0, fmt::format("is {} x {} texels", image.width, image.height),
               pictures == 1 ? "make each side 8, 16, 32, 64 or 128"
                             : fmt::format("make it {} such pictures below each other", pictures));
    }
    return image;
}

// The character's, of any size: charc reads them in the same way.
Image LoadSkin(const std::filesystem::path& folder, const std::string& name) {
    return ScaledToTexture(ReadPng(folder / (name + ".png")));
}

Image CutPicture(const Image& strip, int index) {
    Image picture(strip.width, strip.height / ANIMATION_PICTURES);
    const auto first = strip.pixels.begin() + static_cast<std::ptrdiff_t>(strip.Index(0, index * picture.height));
    std::copy_n(first, picture.pixels.size(), picture.pixels.begin());
    return picture;
}

bool IsHole(const Rgba& pixel) {
    return pixel.a == 0;
}

unsigned CutoutFlag(const Image& image) {
    return std::any_of(image.pixels.begin(), image.pixels.end(), IsHole) ? MATERIAL_CUTOUT : 0U;
}

// Sets the mean colour of the texels that are not holes, and their share.
void SetLook(const Image& image, Material& material) {
    unsigned red = 0;
    unsigned green = 0;
    unsigned blue = 0;
    unsigned count = 0;
    for (const Rgba& pixel : image.pixels) {
        if (IsHole(pixel)) continue;
        red += pixel.r;
        green += pixel.g;
        blue += pixel.b;
        ++count;
    }
    material.cover = static_cast<int>(count * 100 / image.pixels.size());
    if (count == 0) return;
    material.colour = {static_cast<uint8_t>(red / count), static_cast<uint8_t>(green / count),
                       static_cast<uint8_t>(blue / count), 255};
}

// Slots by number, and their pictures; several slots may show the same one.
struct Slots {
    std::vector<Image> images;
    std::vector<size_t> imageOfSlot = std::vector<size_t>(SLOT_COUNT, 0);
    std::vector<Material> list;
    size_t firstSkinImage = 0;

    size_t AddImage(Image image) {
        images.push_back(std::move(image));
        return images.size() - 1;
    }
    void Name(int slot, const std::string& name, unsigned flags) {
        const Image& image = images[imageOfSlot[static_cast<size_t>(slot)]];
        Material material{slot, name, image.width, image.height, flags};
        SetLook(image, material);
        list.push_back(material);
    }
};

void AddAnimated(Slots& slots, const LevelTextures& level, const std::filesystem::path& folder) {
    const Image strip = LoadPicture(folder, level.animated, ANIMATION_PICTURES);
    // The first slot's own picture is only shown until the first turn: it takes the last one, which comes before.
    for (int i = 0; i < ANIMATION_PICTURES; ++i) {
        slots.imageOfSlot[static_cast<size_t>(SLOT_FIRST_ANIMATED + 1 + i)] = slots.AddImage(CutPicture(strip, i));
    }
    slots.imageOfSlot[SLOT_FIRST_ANIMATED] = slots.imageOfSlot[SLOT_LAST_ANIMATED];
    slots.Name(SLOT_FIRST_ANIMATED, level.animated, MATERIAL_LIQUID | CutoutFlag(strip));
}

void AddSkin(Slots& slots, const LevelTextures& level, const std::filesystem::path& folder) {
    slots.firstSkinImage = slots.images.size();
    const size_t plain = slots.AddImage(Image(TEXTURE_SIDE_MIN, TEXTURE_SIDE_MIN, SKIN_COLOUR));
    for (size_t i = SLOT_FIRST_SKIN; i < SLOT_COUNT; ++i)
        slots.imageOfSlot[i] = plain;
    for (size_t i = 0; i < level.skin.size(); ++i)
        slots.imageOfSlot[SLOT_FIRST_SKIN + i] = slots.AddImage(LoadSkin(folder, level.skin[i]));
}

Slots FillSlots(const LevelTextures& level, const std::filesystem::path& folder) {
    Slots slots;
    const size_t nothing = slots.AddImage(Image(TEXTURE_SIDE_MIN, TEXTURE_SIDE_MIN, {0, 0, 0, 0}));
    std::fill(slots.imageOfSlot.begin(), slots.imageOfSlot.end(), nothing);
    if (!level.animated.empty()) AddAnimated(slots, level, folder);
    int slot = 0;
    for (const std::string& name : level.materials) {
        if (slot == SLOT_FIRST_ANIMATED) slot = SLOT_LAST_ANIMATED + 1;
        if (slot > SLOT_LAST_WORLD) {
            Refuse(level.file, 0, fmt::format("'{}' finds no free slot", Shown(name)), "use fewer materials");
        }
        Image image = LoadPicture(folder, name, 1);
        const unsigned flags = CutoutFlag(image);
        slots.imageOfSlot[static_cast<size_t>(slot)] = slots.AddImage(std::move(image));
        slots.Name(slot++, name, flags);
    }
    slots.Name(SLOT_CLIP, "clip", MATERIAL_CLIP);
    slots.Name(SLOT_CLIP, "sky", MATERIAL_SKY);
    AddSkin(slots, level, folder);
    return slots;
}

void CopyTexels(const std::vector<uint8_t>& texels, const TextureSlot& slot, std::vector<std::vector<uint8_t>>& pages) {
    if (pages.size() <= slot.page) pages.resize(slot.page + 1U, std::vector<uint8_t>(TEXTURE_PAGE_SIZE, 0));
    for (size_t y = 0; y < slot.height; ++y) {
        std::copy_n(texels.begin() + static_cast<std::ptrdiff_t>(y * slot.width), slot.width,
                    pages[slot.page].begin() + static_cast<std::ptrdiff_t>((slot.y + y) * TEXTURE_PAGE_SIDE + slot.x));
    }
}

void ReadAccelerator(const TomlTable& text, LevelTextures& level) {
    const std::set<std::string> materials(level.materials.begin(), level.materials.end());
    for (const TomlTable& accelerator : text.Tables("accelerator")) {
        level.acceleratorBrightness = accelerator.Number("brightness", 1, 1, 4);
        for (const std::string& name : accelerator.Texts("unchanged")) {
            if (!materials.contains(name)) {
                accelerator.RefuseKey("unchanged", fmt::format("'{}' is no material of this level", Shown(name)),
                                      "remove it or list it under materials");
            }
            level.acceleratorUnchanged.insert(name);
        }
        accelerator.Finish();
    }
}

// Dark texels become `factor` times as bright, bright ones less, so that none loses its colour.
Image Brightened(Image image, float factor) {
    for (Rgba& pixel : image.pixels) {
        const int brightest = std::max({pixel.r, pixel.g, pixel.b});
        if (brightest == 0) continue;
        const float wanted = 255 * (1 - std::pow(1 - static_cast<float>(brightest) / 255, factor));
        const auto scaled = [&](uint8_t channel) {
            return static_cast<uint8_t>(
                std::lround(static_cast<float>(channel) * wanted / static_cast<float>(brightest)));
        };
        pixel = {scaled(pixel.r), scaled(pixel.g), scaled(pixel.b), pixel.a};
    }
    return image;
}

}  // namespace

LevelTextures ReadLevelTextures(const std::filesystem::path& path) {
    const TomlTable text = TomlTable::Load(path);
    LevelTextures level;
    level.file = path.string();
    level.dark = ReadColour(text, "dark");
    level.ground = ReadColour(text, "ground", level.dark);
    level.animated = text.Text("animated", "");
    level.materials = text.Texts("materials");
    std::set<std::string> seen{"clip", "sky", level.animated};
    for (const std::string& name : level.materials) {
        if (!seen.insert(name).second) {
            text.RefuseKey("materials", fmt::format("'{}' stands there twice or is reserved", Shown(name)),
                           "remove it");
        }
    }
    level.skin = text.Texts("skin");
    if (level.skin.size() > SLOT_COUNT - SLOT_FIRST_SKIN) {
        text.RefuseKey("skin", fmt::format("lists {} pictures", level.skin.size()),
                       fmt::format("use at most {}", SLOT_COUNT - SLOT_FIRST_SKIN));
    }
    for (const TomlTable& shining : text.Tables("light")) {
        for (const std::string& name : seen) {
            if (shining.Has(name)) level.light[name] = shining.NeedInt(name, 1, 1000);
        }
        shining.Finish();
    }
    ReadAccelerator(text, level);
    text.Finish();
    return level;
}

CompiledTextures CompileTextures(const LevelTextures& level, const std::filesystem::path& pictures) {
    Slots slots = FillSlots(level, pictures);
    PaletteWishes wishes{{}, level.dark, level.ground};
    std::vector<TextureSize> sizes;
    for (const Image& image : slots.images) {
        const bool isSkin = &image >= &slots.images[slots.firstSkinImage];
        wishes.pictures.push_back({&image, isSkin ? SKIN_WEIGHT : 1});
        sizes.push_back({image.width, image.height});
    }
    const std::vector<TextureSlot> places = PackPages(sizes, level.file);
    CompiledTextures compiled;
    compiled.textures.palette = ChoosePalette(wishes);
    for (size_t i = 0; i < slots.images.size(); ++i) {
        CopyTexels(ToPalette(slots.images[i], compiled.textures.palette), places[i], compiled.textures.pages);
    }
    for (const size_t image : slots.imageOfSlot)
        compiled.textures.slots.push_back(places[image]);
    compiled.acceleratorBrightness.assign(slots.images.size(), level.acceleratorBrightness);
    for (const Material& material : slots.list) {
        if (!level.acceleratorUnchanged.contains(material.name)) continue;
        compiled.acceleratorBrightness[slots.imageOfSlot[static_cast<size_t>(material.slot)]] = 1;
    }
    compiled.list = std::move(slots.list);
    compiled.images = std::move(slots.images);
    compiled.imageOfSlot = std::move(slots.imageOfSlot);
    compiled.dark = {SixBits(level.dark.r), SixBits(level.dark.g), SixBits(level.dark.b)};
    for (Material& material : compiled.list) {
        const auto found = level.light.find(material.name);
        if (found != level.light.end()) material.light = found->second;
    }
    return compiled;
}

void WriteGlideTextures(const std::filesystem::path& folder, const CompiledTextures& compiled) {
    std::vector<std::vector<uint8_t>> files;
    for (size_t i = 0; i < compiled.images.size(); ++i) {
        const Image image = Brightened(compiled.images[i], compiled.acceleratorBrightness[i]);
        files.push_back(EncodeGlideTexture(MakeMipLevels(image)));
    }
    for (size_t slot = 0; slot < compiled.imageOfSlot.size(); ++slot)
        WriteWholeFile(folder / fmt::format("{:02}.3df", slot), files[compiled.imageOfSlot[slot]]);
}
