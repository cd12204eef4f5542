// Texture files, formats, handles and the fog table.
#include "board_fixture.h"

#include "boards/texture_format.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

class TextureFiles : public BoardTest {
protected:
    void SetUp() override {
        BoardTest::SetUp();
        SetTestDataFolder(testing::TempDir());
    }
    static void Write(const std::string& content) {
        std::ofstream(testing::TempDir() + "/a.3df", std::ios::binary) << content;
    }
    static std::string Header(const std::string& format, const std::string& lods, const std::string& aspect) {
        return "3df v1.1\n# made by hand\n" + format + "\nlod range: " + lods + "\naspect ratio: " + aspect + "\n";
    }
    // The texels of a texture file as they are downloaded, or nothing when it is refused.
    static bool Load(Gu3dfInfo& info, std::vector<uint8_t>& texels) {
        if (!gu3dfGetInfo("A.3DF", &info)) return false;
        texels.assign(info.mem_required, 0xEE);
        info.data = texels.data();
        return gu3dfLoad("A.3DF", &info);
    }
};

TEST_F(TextureFiles, HeadersTellSizesAndMemory) {
    const struct {
        const char *format, *lods, *aspect;
        uint32_t width, height, memory;
        GrLOD_t large, small;
    } rows[] = {
        {"argb1555", "1 256", "1 1", 256, 256, 174762, GR_LOD_256, GR_LOD_1},
        {"RGB332", "64 1", "2 1", 64, 32, 2731, GR_LOD_64, GR_LOD_1},
        {"ayiq", "64 64", "1 8", 8, 64, 1024, GR_LOD_64, GR_LOD_64},
        {"p8", "1 4", "8 1", 4, 1, 7, GR_LOD_4, GR_LOD_1},
    };
    for (const auto& row : rows) {
        Write(Header(row.format, row.lods, row.aspect));
        Gu3dfInfo info{};
        ASSERT_TRUE(gu3dfGetInfo("a.3df", &info)) << row.format;
        EXPECT_EQ(info.header.width, row.width);
        EXPECT_EQ(info.header.height, row.height);
        EXPECT_EQ(info.header.large_lod, row.large);
        EXPECT_EQ(info.header.small_lod, row.small);
        EXPECT_EQ(info.mem_required, row.memory);
    }
    Gu3dfInfo info{};
    for (const std::string version : {"3df v10.2", "3DF V1.15", "3df v"}) {
        Write(version + "\nargb1555\nlod range: 1 4\naspect ratio: 1 1\n");
        EXPECT_EQ(gu3dfGetInfo("a.3df", &info) != FXFALSE, version.size() > 5) << version;
    }
}

TEST_F(TextureFiles, EveryFormatGivesItsColourAndAlpha) {
    GuTexTable ncc{};
    ncc.nccTable.y[9] = 100;
    ncc.nccTable.i[2][0] = 200;
    ncc.nccTable.q[1][2] = -150;
    GuTexTable palette{};
    palette.palette.data[0x42] = 0x80123456;
    const GuTexTable none{};
    const struct {
        GrTextureFormat_t format;
        uint32_t texel;
        const GuTexTable& table;
        uint32_t colour;
    } rows[] = {
        {GR_TEXFMT_RGB_332, 0xB1, none, 0xFFB69255},
        {GR_TEXFMT_YIQ_422, 0x99, ncc, 0xFFFF6400},
        {GR_TEXFMT_ALPHA_8, 0x37, none, 0x37373737},
        {GR_TEXFMT_INTENSITY_8, 0x37, none, 0xFF373737},
        {GR_TEXFMT_ALPHA_INTENSITY_44, 0x3A, none, 0x33AAAAAA},
        {GR_TEXFMT_P_8, 0x42, palette, 0xFF123456},
        {GR_TEXFMT_ARGB_8332, 0x12B1, none, 0x12B69255},
        {GR_TEXFMT_AYIQ_8422, 0x1299, ncc, 0x12FF6400},
        {GR_TEXFMT_RGB_565, 0xF810, none, 0xFFFF0084},
        {GR_TEXFMT_ARGB_1555, 0xC210, none, 0xFF848484},
        {GR_TEXFMT_ARGB_1555, 0x7C1F, none, 0x00FF00FF},
        {GR_TEXFMT_ARGB_4444, 0x1234, none, 0x11223344},
        {GR_TEXFMT_ALPHA_INTENSITY_88, 0x1234, none, 0x12343434},
        {GR_TEXFMT_AP_88, 0x1242, palette, 0x12123456},
    };
    for (const auto& row : rows)
        EXPECT_EQ(DecodeTexel(row.format, row.texel, row.table), row.colour) << row.format;
}

TEST_F(TextureFiles, TexelsAndTablesAreBigEndian) {
    Gu3dfInfo info{};
    std::vector<uint8_t> texels;
    Write("3df v1.1\r\nArgb4444\r\nlod range: 1 2\r\naspect ratio: 2 1\r\n\x12\x34\x56\x78\x9A\xBC");
    ASSERT_TRUE(Load(info, texels));
    EXPECT_EQ(texels, (std::vector<uint8_t>{0x34, 0x12, 0x78, 0x56, 0xBC, 0x9A}));
    std::string ncc(80, '\0');
    ncc[2 * 3] = '\xFF';
    ncc[2 * 3 + 1] = '\xFE';
    Write(Header("yiq422", "1 1", "1 1") + ncc + "\x30");
    ASSERT_TRUE(Load(info, texels));
    EXPECT_EQ(info.table.nccTable.y[3], -2);
}

TEST_F(TextureFiles, DamagedFilesAreRefused) {
    Gu3dfInfo info{};
    const std::string damaged[] = {
        "",
        "3df v1.1",
        "BM v1.1\nrgb565\nlod range: 1 2\naspect ratio: 1 1\n",
        Header("rgb555", "1 2", "1 1"),
        Header("rgb565", "1 512", "1 1"),
        Header("rgb565", "3 4", "1 1"),
        Header("rgb565", "99999999999 4", "1 1"),
        Header("rgb565", "1 2", "2 2"),
        "3df v1.1\n#" + std::string(100000, 'x'),
    };
    for (const std::string& content : damaged) {
        Write(content);
        EXPECT_FALSE(gu3dfGetInfo("a.3df", &info)) << content.substr(0, 80);
    }
    std::vector<uint8_t> texels;
    Write(Header("rgb565", "1 2", "1 1") + "123456789");
    EXPECT_FALSE(Load(info, texels)) << "a byte is missing";
    Write(Header("p8", "1 2", "1 1") + std::string(1000, 'x'));
    EXPECT_FALSE(Load(info, texels)) << "a table is missing";
    std::filesystem::remove(testing::TempDir() + "/a.3df");
    EXPECT_FALSE(gu3dfGetInfo("a.3df", &info));
}

TEST_F(TextureFiles, HandlesCountUpToTheirLimit) {
    for (GrMipMapId_t i = 0; i < GR_MIPMAP_HANDLES; ++i)
        ASSERT_EQ(MakePlain(0), i);
    EXPECT_EQ(MakePlain(0), GR_NULL_MIPMAP_HANDLE);
    BoardTest::SetUp();
    EXPECT_EQ(MakePlain(0), 0U) << "a newly opened screen has none";
}

TEST(Fog, TablesFollowDepth) {
    EXPECT_FLOAT_EQ(guFogTableIndexToW(3), 1.6f);
    EXPECT_FLOAT_EQ(guFogTableIndexToW(63), 52428.8f);
    GrFog_t table[GR_FOG_TABLE_SIZE];
    guFogGenerateLinear(table, 2000.0f * 63000 / 5796, 9196.0f * 63000 / 5796);
    EXPECT_EQ(std::vector<int>(table + 58, table + 64), (std::vector<int>{0, 14, 35, 51, 71, 100}));
    guFogGenerateLinear(table, 16, 16);
    EXPECT_EQ(table[15], 0);
    EXPECT_EQ(table[16], 255);
    guFogGenerateLinear(table, NAN, 4);
    EXPECT_EQ(table[0], table[63]);
}

}  // namespace
