// Reading of .map files: what is understood, and where and why the rest is refused.
#include "map_builder.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* FACE = "( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall ";

std::string MapWithFace(const std::string& face) {
    return "{\n\"classname\" \"worldspawn\"\n{\n" + face + "\n}\n}\n";
}

}  // namespace

TEST(MapText, BadTextIsRefusedWithItsLine) {
    const std::pair<std::string, const char*> cases[] = {
        {MapWithFace("( 0 0 0 ) ( 0 1 0 ) ( 0 zero 1 ) wall 0 0 0 1 1"), "test.map:4: \"zero\" is not a number"},
        {MapWithFace("( 0 0 0 ) ( 0 1 0 ) wall 0 0 0 1 1"), "test.map:4: \"wall\" instead of \"(\""},
        {MapWithFace("( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) ( 1 0 0 ) wall"), "test.map:4: a face in a form"},
        {MapWithFace(std::string(FACE) + "[ 0 1 0 8 ] 0 0 0 1 1"), "test.map:4: \"0\" instead of \"[\""},
        {MapWithFace("patchDef2\n{"), "test.map:4: \"patchDef2\" where a face should begin"},
        {"{\n\"classname\" \"worldspawn\n}", "test.map:2: a quoted text has no end"},
        {"{\n\"classname\"\n}", "test.map:3: a key without a value"},
        {"{\n\"classname\" \"worldspawn\"\n{\n", "the file ends too early"},
        {"{\nclassname worldspawn\n}", "test.map:2: \"classname\" where a key"},
        {"worldspawn", "test.map:1: \"worldspawn\" instead of \"{\""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_NE(RefusalOf(text).find(expected), std::string::npos) << RefusalOf(text);
    }
}

TEST(MapText, BadKeysAreRefusedWithTheirLine) {
    const auto withKey = [](const std::string& name, const std::string& value) {
        return RefusalOf(MapBuilder().Key(name, value).Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64"));
    };
    EXPECT_EQ(withKey("ambient", "30"), "accepted");
    EXPECT_NE(withKey("ambient", "bright").find("test.map:3: the key ambient is \"bright\""), std::string::npos);
    EXPECT_NE(withKey("ambient", "128").find("use 0 to 127"), std::string::npos);
    EXPECT_NE(withKey("dark_color", "1 2").find("give it three numbers"), std::string::npos);
    EXPECT_NE(withKey("dark_color", "1 2 255").find("a channel of 255"), std::string::npos);
    const auto darkOf = [](const MapBuilder& map) {
        return CompileMap(ParseMap(map.Text(), "dark.map"), {TestMaterials(), {{1, 2, 3}}}, 0).light.darkColour;
    };
    const auto room = [] { return MapBuilder().Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64"); };
    EXPECT_EQ(darkOf(room()), (std::array<int16_t, 3>{1, 2, 3}));
    EXPECT_EQ(darkOf(room().Key("dark_color", "1 2 3")), (std::array<int16_t, 3>{1, 2, 3}));
    EXPECT_THROW(darkOf(room().Key("dark_color", "1 2 4")), ContentError);
    EXPECT_NE(withKey("subdivide", "64").find("use 0, or 128 and more"), std::string::npos);
}
