// Reading of .map files: what is understood, and where and why the rest is refused.
#include "map_builder.h"
#include "mapc/texture_axes.h"
#include "support/content_error.h"

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
        {MapWithFace("( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) ( 1 0 0 ) wall"), "test.map:4: \"1\" instead of \"(\""},
        {MapWithFace(std::string(FACE).append("[ 0 1 0 8 ] 0 0 0 1 1")), "test.map:4: \"0\" instead of \"[\""},
        {MapWithFace("patchDef2\n{"), "test.map:4: \"patchDef2\" where a face should begin"},
        {"{\n\"classname\" \"worldspawn\n}", "test.map:2: a quoted text has no end"},
        {"{\n\"classname\"\n}", "test.map:3: a key without a value"},
        {"{\n\"classname\" \"worldspawn\"\n{\n", "the file ends too early"},
        {"{\nclassname worldspawn\n}", "test.map:2: \"classname\" where a key"},
        {"worldspawn", "test.map:1: \"worldspawn\" instead of \"{\""},
    };
    for (const auto& row : cases)
        ExpectRefusal(row.second, [&] { ParseMap(row.first, "test.map"); });
}

// Walls that look east and west, a floor and a slope: each painted with half a unit a texel, moved by 8 texels to the
// right.
TEST(MapText, BrushPrimitivesPaintLikeTexels) {
    const std::pair<const char*, const char*> rows[] = {
        {"( 9 0 0 ) ( 9 0 1 ) ( 9 1 0 ) wall 8 0 0 0.5 0.5", "( ( 0.03125 0 0.125 ) ( 0 0.015625 0 ) )"},
        {"( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall 8 0 0 0.5 0.5", "( ( -0.03125 0 0.125 ) ( 0 0.015625 0 ) )"},
        {"( 0 0 9 ) ( 0 1 9 ) ( 1 0 9 ) wall 8 0 0 0.5 0.5", "( ( 0 0.03125 0.125 ) ( -0.015625 0 0 ) )"},
        {"( 0 0 9 ) ( 0 3 5 ) ( 1 0 9 ) wall [ 1 0 0 8 ] [ 0 -0.6 0.8 0 ] 0 0.5 0.5",
         "( ( -0.03125 0 0.125 ) ( 0 -0.015625 0 ) )"},
    };
    const Material material{0, "wall", 64, 128};
    for (const auto& [texels, matrix] : rows) {
        SCOPED_TRACE(texels);
        const std::string points = std::string(texels).substr(0, std::string(texels).find("wall"));
        const std::string text =
            MapWithFace(std::string("brushDef\n{\n").append(points).append(matrix).append(" wall 0\n}"));
        const MapFace expected = ParseMap(MapWithFace(texels), "texels").entities[0].brushes[0].faces[0];
        const MapFace face = ParseMap(text, "primitives").entities[0].brushes[0].faces[0];
        const auto& [a, b, c] = face.points;
        const Vec3 normal = Cross(c - a, b - a) * (1 / Length(Cross(c - a, b - a)));
        const FaceTexture left = TextureOf(expected, normal, material);
        const FaceTexture right = TextureOf(face, normal, material);
        EXPECT_LT(Length(left.uAxis - right.uAxis), 1e-9);
        EXPECT_LT(Length(left.vAxis - right.vAxis), 1e-9);
        EXPECT_EQ(left.uOffset, right.uOffset);
    }
}

TEST(MapText, BadKeysAreRefusedWithTheirLine) {
    const auto room = [](const std::string& name, const std::string& value) {
        return MapBuilder().Key(name, value).Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64");
    };
    const struct {
        const char *name, *value, *expected;
    } rows[] = {{"ambient", "30", "no error"},
                {"ambient", "bright", "test.map:3: the key ambient is \"bright\""},
                {"ambient", "128", "use 0 to 127"},
                {"dark_color", "1 2", "give it three numbers"},
                {"dark_color", "1 2 255", "a channel of 255"},
                {"subdivide", "64", "use 0, or 128 and more"}};
    for (const auto& row : rows)
        ExpectRefusal(row.expected, [&] { Compile(room(row.name, row.value)); });
    const auto darkOf = [](const MapBuilder& map) {
        return CompileMap(ParseMap(map.Text(), "dark.map"), {TestMaterials(), {{1, 2, 3}}}, 0).light.darkColour;
    };
    EXPECT_EQ(darkOf(room("ambient", "30")), (std::array<int16_t, 3>{1, 2, 3}));
    EXPECT_EQ(darkOf(room("dark_color", "1 2 3")), (std::array<int16_t, 3>{1, 2, 3}));
    EXPECT_THROW(darkOf(room("dark_color", "1 2 4")), ContentError);
}
