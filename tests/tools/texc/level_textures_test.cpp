#include "formats/binary.h"
#include "support/content_error.h"
#include "texc/level_textures.h"
#include "texc/page_packing.h"
#include "texc/palette.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>

namespace {

const std::filesystem::path FOLDER = std::filesystem::path(testing::TempDir()) / "level_textures";

void Picture(const std::string& name, const Image& image) {
    WritePng(FOLDER / (name + ".png"), image);
}

LevelTextures Level(std::vector<std::string> materials, const std::string& animated = "") {
    return {"textures.toml", {0, 0, 0, 255}, {40, 80, 120, 255}, animated, std::move(materials)};
}

const Material& Find(const std::vector<Material>& list, const std::string& name) {
    return *std::find_if(list.begin(), list.end(), [&](const Material& m) { return m.name == name; });
}

// Mean squared distance of what is shown from what was painted, lit at a level of 64, in 6-bit steps.
double ErrorAtLevel(const Image& image, const Palette& palette, int level) {
    double sum = 0;
    for (const Rgba& p : image.pixels) {
        double best = 1e9;
        for (const auto& entry : palette) {
            double d = 0;
            const int wanted[3] = {p.r * level / 64, p.g * level / 64, p.b * level / 64};
            for (size_t c = 0; c < 3; ++c)
                d += (entry[c] - wanted[c] / 4.05) * (entry[c] - wanted[c] / 4.05);
            best = std::min(best, d);
        }
        sum += best;
    }
    return sum / static_cast<double>(image.pixels.size());
}

}  // namespace

TEST(CompileTextures, AnimatedSlotsShowTheFourPicturesInTurn) {
    Image strip(8, 32);
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 8; ++x)
            strip.At(x, y) = {static_cast<uint8_t>(60 * (y / 8) + 30), 0, 0, 255};
    }
    Picture("flow", strip);
    LevelTextures level = Level({}, "flow");
    level.dark = {96, 60, 20, 255};
    const CompiledTextures compiled = CompileTextures(level, FOLDER);
    EXPECT_EQ(compiled.dark, (std::array<int, 3>{24, 15, 5})) << "in steps of the palette";
    const auto& slots = compiled.textures.slots;
    EXPECT_EQ(slots[10], slots[14]);
    for (size_t i = 0; i < 4; ++i) {
        const auto& colour = compiled.textures.palette[compiled.textures.Texel(slots[11 + i], 2, 2)];
        EXPECT_NEAR(colour[0] * 255 / 63, 60 * static_cast<int>(i) + 30, 6);
    }
    EXPECT_EQ(Find(compiled.list, "flow").slot, 10);
    EXPECT_EQ(Find(compiled.list, "flow").flags, MATERIAL_LIQUID);
}

TEST(CompileTextures, HolesAreIndexZeroAndBlackIsNot) {
    Image image(8, 8, {0, 0, 0, 255});
    image.At(5, 5) = {0, 0, 0, 0};
    Picture("pierced", image);
    Picture("solid", Image(8, 8, {0, 0, 0, 255}));
    const CompiledTextures compiled = CompileTextures(Level({"pierced", "solid"}), FOLDER);
    const auto& textures = compiled.textures;
    const TextureSlot& pierced = textures.slots[0];
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(textures.Texel(pierced, i % 8, i / 8) == 0, i == 45) << i;
        EXPECT_NE(textures.Texel(textures.slots[1], i % 8, i / 8), 0) << i;
        EXPECT_EQ(textures.Texel(textures.slots[SLOT_CLIP], i % 8, i / 8), 0);
        EXPECT_NE(textures.Texel(textures.slots[93], i % 8, i / 8), 0) << "a character without a skin is still seen";
    }
    EXPECT_EQ(Find(compiled.list, "pierced").flags, MATERIAL_CUTOUT);
    EXPECT_EQ(Find(compiled.list, "solid").flags, 0U);
}

TEST(CompileTextures, TheListSaysHowLightTakesAMaterial) {
    Image image(8, 8, {200, 100, 0, 255});
    for (int x = 0; x < 8; ++x) {
        image.At(x, 0) = {0, 0, 0, 0};
        image.At(x, 1) = {10, 100, 19, 255};
        image.At(x, 2) = {10, 100, 19, 255};
    }
    Picture("striped", image);
    LevelTextures level = Level({"striped"});
    level.light["striped"] = 60;
    const Material material = Find(CompileTextures(level, FOLDER).list, "striped");
    EXPECT_EQ(material.colour, (Rgba{(5 * 200 + 2 * 10) / 7, 100, 2 * 19 / 7, 255}));
    EXPECT_EQ(material.cover, 87);
    EXPECT_EQ(material.light, 60);
}

TEST(CompileTextures, FaultsNameTheFileAndTheRemedy) {
    Picture("odd", Image(24, 16));
    for (const auto& [level, text] : {std::pair{Level({"odd"}), "odd.png: is 24 x 16"},
                                      {Level({"nowhere"}), "nowhere.png"},
                                      {Level({}, "odd"), "below each other"}})
        EXPECT_NE(MessageOf([&] { CompileTextures(level, FOLDER); }).find(text), std::string::npos);
}

TEST(CompileTextures, NamesLeadToTheirPicturesAsLongAsThereAreSlots) {
    std::vector<std::string> names;
    for (int i = 0; i < 88; ++i) {
        names.push_back(fmt::format("m{}", i));
        Picture(names.back(), Image(16, 8 << i % 3, {static_cast<uint8_t>(20 * (i % 12) + 10), 80, 0, 255}));
    }
    EXPECT_NE(MessageOf([&] { CompileTextures(Level(names), FOLDER); }).find("'m87' finds no free slot"),
              std::string::npos);
    names.pop_back();
    const CompiledTextures compiled = CompileTextures(Level(names), FOLDER);
    for (int i = 0; i < 87; ++i) {
        const Material& material = Find(compiled.list, names[static_cast<size_t>(i)]);
        EXPECT_TRUE(material.slot < 10 || material.slot > 14) << "an animated slot";
        const TextureSlot& slot = compiled.textures.slots[static_cast<size_t>(material.slot)];
        EXPECT_EQ(slot.height, 8 << i % 3);
        EXPECT_EQ(material.height, slot.height);
        const auto& colour = compiled.textures.palette[compiled.textures.Texel(slot, 3, 3)];
        EXPECT_NEAR(colour[0] * 255 / 63, 20 * (i % 12) + 10, 6) << i;
    }
}

TEST(ReadLevelTextures, RefusesNamesThatWouldClash) {
    for (const char* const text :
         {"dark = '#000000'\nmaterials = ['a', 'b', 'a']\n", "dark = '#000000'\nmaterials = ['sky']\n",
          "dark = '#000000'\nanimated = 'a'\nmaterials = ['a']\n", "materials = ['a']\n",
          "dark = '#000000'\nmaterials = ['a']\nskin = ['b', 'c', 'd']\n",
          "dark = '#000000'\nmaterials = ['a']\n[light]\nb = 60\n"}) {
        WriteWholeFile(FOLDER / "textures.toml", {text, text + std::string(text).size()});
        EXPECT_THROW(ReadLevelTextures(FOLDER / "textures.toml"), ContentError) << text;
    }
}

TEST(ChoosePalette, ServesDimlyLitTexelsToo) {
    Image image(64, 64);
    for (int i = 0; i < 64 * 64; ++i)
        image.pixels[static_cast<size_t>(i)] = {255, static_cast<uint8_t>(i % 64 * 4), static_cast<uint8_t>(i / 64 * 4),
                                                255};
    const Palette palette = ChoosePalette({{{&image, 1}}, {0, 0, 0, 255}, {0, 0, 0, 255}});
    EXPECT_LT(ErrorAtLevel(image, palette, 64), 12);
    EXPECT_LT(ErrorAtLevel(image, palette, 26), 6) << "without shaded copies the only dark colour near would be black";
}

TEST(PackPages, NoTwoOverlapAndNoneLeavesItsPage) {
    EXPECT_EQ(PackPages(std::vector<TextureSize>(48, {128, 128}), "level").back().page, 11) << "nothing is wasted";
    EXPECT_THROW(PackPages(std::vector<TextureSize>(49, {128, 128}), "level"), ContentError);
    std::vector<TextureSize> sizes;
    for (unsigned i = 0; i < 90; ++i)
        sizes.push_back({8 << i * 7 % 5, 8 << i * 11 % 5});
    const std::vector<TextureSlot> slots = PackPages(sizes, "level");
    std::map<std::tuple<int, int, int>, int> taken;
    for (const TextureSlot& slot : slots) {
        EXPECT_LE(slot.x + slot.width, 256);
        EXPECT_LE(slot.y + slot.height, 256);
        for (int texel = 0; texel < slot.width * slot.height; ++texel)
            taken[{slot.page, slot.x + texel % slot.width, slot.y + texel / slot.width}]++;
    }
    EXPECT_TRUE(std::all_of(taken.begin(), taken.end(), [](const auto& entry) { return entry.second == 1; }));
}
