#include "formats/files.h"
#include "formats/material_list.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

const std::filesystem::path LIST = std::filesystem::path(testing::TempDir()) / "textures.list";

}  // namespace

TEST(MaterialList, WhatIsWrittenReadsBackInSlotOrder) {
    WriteMaterialList(LIST, {{{60, "clip", 8, 8, MATERIAL_CLIP},
                              {2, "brick/wall", 128, 64, 0, {1, 2, 255, 255}, 35, 60},
                              {10, "lava", 64, 64, 12}},
                             {{3, 0, 63}}});
    const MaterialList list = ReadMaterialList(LIST);
    EXPECT_EQ(list.dark, (std::array<int, 3>{3, 0, 63}));
    const std::vector<Material>& read = list.materials;
    ASSERT_EQ(read.size(), 3U);
    EXPECT_EQ(read[0].name, "brick/wall");
    EXPECT_EQ(read[0].height, 64);
    EXPECT_EQ(read[0].colour, (Rgba{1, 2, 255, 255}));
    EXPECT_EQ(read[0].cover, 35);
    EXPECT_EQ(read[0].light, 60);
    EXPECT_EQ(read[1].flags, MATERIAL_LIQUID | MATERIAL_CUTOUT);
    EXPECT_EQ(read[2].slot, 60);
}

TEST(MaterialList, BadLinesAreRefusedWithFileAndLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"# all\n\n 1 a 8 8 # one\r\n", "no error"},
        {"1 a 8 8\n2 b 8", "textures.list:2: the line is too short"},
        {"x a 8 8", "textures.list:1: the slot \"x\" is not a number"},
        {"500 a 8 8", "slot 500 of a does not exist"},
        {"1 a 8 256", "a is 8 x 256 texels"},
        {"1 a 8 24", "a is 8 x 24 texels"},
        {"1 a 8 8 water", "unknown flag \"water\""},
        {"1 a 8 8 colour=12345", "\"12345\" is not a colour"},
        {"1 a 8 8 cover=101", "a has a cover of 101 and a light of 0"},
        {"dark 1 2", "textures.list:1: the dark colour needs three numbers"},
        {"dark 1 2 64", "the dark colour has a channel of 64"},
        {"1 a 8 8\n2 a 8 8", "textures.list:2: the material a is listed twice"},
    };
    for (const auto& [text, expected] : cases) {
        WriteWholeFile(LIST, {text, text + std::string(text).size()});
        ExpectRefusal(expected, [] { ReadMaterialList(LIST); });
    }
}
