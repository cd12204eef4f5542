#include "formats/files.h"
#include "support/content_error.h"
#include "texc/level_textures.h"
#include "texc/page_packing.h"
#include "texc/palette.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
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

TEST(CompileTextures, OnlyTheAcceleratorsTexturesAreBrighter) {
    const std::filesystem::path list = FOLDER / "brighter.toml";
    std::filesystem::create_directories(FOLDER);
    std::ofstream(list) << "dark = \"#000000\"\nmaterials = [\"wall\", \"stars\"]\n"
                           "[accelerator]\nbrightness = 2\nunchanged = [\"stars\"]\n";
    for (const char* name : {"wall", "stars"})
        Picture(name, Image(8, 8, {64, 32, 16, 255}));
    const CompiledTextures compiled = CompileTextures(ReadLevelTextures(list), FOLDER);
    WriteGlideTextures(FOLDER, compiled);
    const auto texel = [](const char* file) {
        const std::vector<uint8_t> bytes = ReadWholeFile(FOLDER / file);
        return bytes[bytes.size() - 2] * 256 + bytes[bytes.size() - 1];
    };
    EXPECT_EQ(texel("01.3df"), 8 << 10 | 4 << 5 | 2) << "unchanged";
    EXPECT_EQ(texel("00.3df"), 14 << 10 | 7 << 5 | 3) << "nearly twice as bright, of the same hue";
    const auto& textures = compiled.textures;
    EXPECT_EQ(textures.Texel(textures.slots[0], 1, 1), textures.Texel(textures.slots[1], 1, 1)) << "in software";
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

TEST(CompileTextures, FaultsNameTheFileAndTheRemedy) {
    Picture("odd", Image(24, 16));
    const std::pair<LevelTextures, const char*> rows[] = {{Level({"odd"}), "odd.png: is 24 x 16"},
                                                          {Level({"nowhere"}), "nowhere.png"},
                                                          {Level({}, "odd"), "below each other"}};
    for (const auto& row : rows)
        ExpectRefusal(row.second, [&] { CompileTextures(row.first, FOLDER); });
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
