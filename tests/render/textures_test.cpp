#include "render/textures.h"

#include "memory/pool.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "support/throwing_fatal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace {

class Textures : public testing::Test {
protected:
    void SetUp() override {
        MakeWorld();
        std::fill_n(DarkColour, 3, int16_t{0});
        std::fill_n(BrightColour, 3, int16_t{63});
        PlainBrightening = 0;
    }
};

std::string LoadError(const std::vector<uint8_t>& file) {
    const FatalThrown fatal = CatchFatal([&] { LoadTextures(file); });
    EXPECT_EQ(fatal.path.empty(), fatal.text.empty());
    return fatal.text;
}

std::vector<uint8_t> TwoTextures() {
    return MakeTextureFile({{0, 0, 0, 16, 8}, {1, 248, 252, 8, 4}}, 2);
}

TEST_F(Textures, RecordsGetTheirTexelsAndTransparency) {
    std::vector<uint8_t> file = TwoTextures();
    const size_t texels = TEXTURE_RECORDS_OFFSET + 2 * 12;
    std::fill(file.begin() + texels, file.end(), uint8_t{5});
    file[texels + 65536 + 252 * 256 + 247] = 0;  // just left of the second texture
    file[texels + 7 * 256 + 15] = 0;             // last texel of the first
    ASSERT_EQ(LoadError(file), "");
    EXPECT_EQ(+TextureRecords()[0].texelOffset, texels);
    EXPECT_EQ(+TextureRecords()[1].texelOffset, texels + 65536 + 252 * 256 + 248);
    EXPECT_EQ(+TextureRecords()[0].isTransparent, 1);
    EXPECT_EQ(+TextureRecords()[1].isTransparent, 0);
    EXPECT_EQ(+TextureRecords()[0].isEmpty, 0);
    for (int row = 252; row < 256; ++row)
        std::fill_n(file.begin() + texels + 65536 + row * 256 + 248, 8, uint8_t{0});
    ASSERT_EQ(LoadError(file), "");
    EXPECT_EQ(+TextureRecords()[1].isEmpty, 1);
}

TEST_F(Textures, APolygonWrapsWhenACornerLeavesItsTexture) {
    const std::tuple<float, float, bool> rows[] = {{0, 0, false},   {4096, 2048, false}, {4097, 0, true},
                                                   {0, 2049, true}, {-1, 0, true},       {0, -1, true}};
    for (const auto& [u, v, wraps] : rows) {
        const int32_t polygon = AppendPolygon({{0, 0, 1, u, v, 0}});
        ASSERT_EQ(LoadError(TwoTextures()), "");
        EXPECT_EQ(WorldGeometry.polygons[polygon].flags == POLY_WRAPS, wraps) << u << ' ' << v;
    }
}

TEST_F(Textures, TruncatedFilesAndBadRecordsAreRefused) {
    const std::vector<uint8_t> file = TwoTextures();
    for (const size_t size : {size_t{0}, size_t{1}, size_t{2}, size_t{770}, size_t{793}, size_t{794}, file.size() - 1})
        EXPECT_NE(LoadError({file.begin(), file.begin() + static_cast<ptrdiff_t>(size)}), "") << size << " bytes";
    const std::string none = "No Texture File Found", bad = "Not a valid texture file";
    const struct {
        size_t offset;
        uint8_t value;
        std::string message;
    } cases[] = {{0, 0, none},    {1, 2, none},   {777, 2, bad}, {778, 241, bad},
                 {779, 249, bad}, {780, 17, bad}, {781, 3, bad}, {780, 0, ""}};  // an empty texture is drawn as nothing
    for (const auto& c : cases) {
        std::vector<uint8_t> altered = file;
        altered[c.offset] = c.value;
        EXPECT_EQ(LoadError(altered), c.message) << "byte " << c.offset;
    }
}

TEST_F(Textures, TheRemapTableHasAnEntryForEachTextureAndOthersHaveNone) {
    LoadTextures(TwoTextures());
    const uint32_t before = PoolFreeTotal();
    BuildTextureRemap();
    EXPECT_EQ(before - PoolFreeTotal(), 64u) << "a granule and a header";
    TextureRemap[0] = 1;
    EXPECT_EQ(PolygonTexture({3, 0, 0, 0, 0, 0, 0}), TextureRecords() + 1);
    for (const uint8_t texture : {uint8_t{2}, uint8_t{255}})
        EXPECT_EQ(PolygonTexture({3, texture, 0, 0, 0, 0, 0}), nullptr) << +texture;
}

TEST_F(Textures, AnEmptyOneStopsTheAcceleratorAndNamesItsFile) {
    std::vector<uint8_t> file = TwoTextures();
    file[TEXTURE_RECORDS_OFFSET + 10] = 0;  // the first one's width
    LoadTextures(file);
    AppendPolygon({{0, 0, 1, 0, 0, 0}, {0, 1, 1, 0, 0, 0}, {1, 0, 1, 0, 0, 0}});
    const FatalThrown fatal = CatchFatal(L_CreateGlideUVs);
    EXPECT_EQ(fatal.text, "L_CreateGlideUVs - tm_width  = 0.0");
    EXPECT_TRUE(fatal.path.ends_with("texture.bin")) << fatal.path;
}

TEST_F(Textures, BlackBrightensOnlyWhereBrighteningIsPlain) {
    std::vector<uint8_t> file = TwoTextures();
    for (size_t i = 0; i < 256; ++i)
        std::fill_n(file.begin() + static_cast<ptrdiff_t>(TEXTURE_PALETTE_OFFSET + 3 * i), 3, uint8_t(i % 64));
    ASSERT_EQ(LoadError(file), "");
    EXPECT_EQ(ShadeTable[127 * 256], 0);
    PlainBrightening = 1;
    BuildFadePalette();
    EXPECT_EQ(ShadeTable[127 * 256], 62);
}

}  // namespace
