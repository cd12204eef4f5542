#include "foreign_map.h"

#include "formats/binary.h"
#include "formats/files.h"
#include "tools/mapc/map_builder.h"

namespace {

void Name(ByteWriter& out, const std::string& name) {
    for (size_t i = 0; i < 16; ++i)
        out.U8(i < name.size() ? static_cast<uint8_t>(name[i]) : 0);
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
}

std::vector<uint8_t> PictureBytes(const WadPicture& picture, bool three) {
    ByteWriter out;
    Name(out, picture.name);
    out.U32(static_cast<uint32_t>(picture.width));
    out.U32(static_cast<uint32_t>(picture.height));
    const auto pixels = static_cast<uint32_t>(picture.width * picture.height);
    uint32_t place = 40;
    for (uint32_t size = pixels; size >= pixels / 64; size /= 4) {
        out.U32(place);
        place += size;
    }
    for (uint32_t i = 0; i < place - 40; ++i)
        out.U8(picture.name[0] == '{' && i % 2 == 1 ? 255 : picture.colour);
    if (!three) return out.bytes;
    out.U16(256);
    for (uint32_t i = 0; i < 768; ++i)
        out.U8(i / 3);
    return out.bytes;
}

// A pillar whose faces show the wall of 96 x 48 texels, a texel a unit.
constexpr const char* PRIMITIVE_PILLAR = R"(brushDef
{
( 800 0 0 ) ( 800 1 0 ) ( 800 0 1 ) ( ( 0.010416666666666667 0 0.5 ) ( 0 0.020833333333333333 0 ) ) base/wall 0 0 0
( 840 0 0 ) ( 840 0 1 ) ( 840 1 0 ) ( ( 0.010416666666666667 0 0 ) ( 0 0.020833333333333333 0 ) ) base/wall 0 0 0
( 0 60 0 ) ( 0 60 1 ) ( 1 60 0 ) ( ( 0.010416666666666667 0 0 ) ( 0 0.020833333333333333 0 ) ) base/wall 0 0 0
( 0 100 0 ) ( 1 100 0 ) ( 0 100 1 ) ( ( 0.010416666666666667 0 0 ) ( 0 0.020833333333333333 0 ) ) base/wall 0 0 0
( 0 0 0 ) ( 1 0 0 ) ( 0 1 0 ) ( ( 0.010416666666666667 0 0 ) ( 0 0.020833333333333333 0 ) ) base/wall 0 0 0
( 0 0 64 ) ( 0 1 64 ) ( 1 0 64 ) ( ( 0.010416666666666667 0 0 ) ( 0 0.020833333333333333 0 ) ) base/wall 0 0 0
}
)";

}  // namespace

std::vector<uint8_t> WadBytes(bool three, const std::vector<WadPicture>& pictures) {
    ByteWriter list, bodies;
    const auto add = [&](const std::string& name, char kind, const std::vector<uint8_t>& body) {
        list.U32(static_cast<uint32_t>(12 + bodies.bytes.size()));
        for (int i = 0; i < 2; ++i)
            list.U32(static_cast<uint32_t>(body.size()));
        list.U8(static_cast<uint8_t>(kind));
        list.Zeros(3);
        Name(list, name);
        bodies.Append(body.data(), body.size());
    };
    for (const WadPicture& picture : pictures)
        add(picture.name, three ? 'C' : 'D', PictureBytes(picture, three));
    std::vector<uint8_t> red(768, 0);
    for (size_t i = 0; i < red.size(); i += 3)
        red[i] = 200;
    if (!three) add("PALETTE", '@', red);
    ByteWriter out;
    out.Append(three ? "WAD3" : "WAD2", 4);
    out.U32(static_cast<uint32_t>(list.bytes.size() / 32));
    out.U32(static_cast<uint32_t>(12 + bodies.bytes.size()));
    out.Append(bodies.bytes.data(), bodies.bytes.size());
    out.Append(list.bytes.data(), list.bytes.size());
    return out.bytes;
}

std::string ForeignMap(bool axes) {
    MapBuilder map;
    map.valve = axes;
    map.Key("wad", "C:\\somewhere\\base.wad;other.wad").Key("sounds", "4").Key("_minlight", "40");
    map.Box({-16, -16, -16}, {1040, 528, 0}, "GROUND1_1").Box({-16, -16, 192}, {512, 528, 208}, "nodraw");
    map.Box({512, -16, 192}, {1040, 528, 208}, "SKY1").Box({1040, -16, -16}, {1056, 528, 208}, "Sky1");
    map.Box({-16, -16, 0}, {0, 528, 192}, "textures/base/wall");
    map.Box({0, -16, 0}, {1040, 0, 192}, "Base/WALL").Box({0, 512, 0}, {1040, 528, 192}, "base/wall");
    map.Box({496, 0, 0}, {512, 224, 192}, "WALL").Box({496, 288, 0}, {512, 512, 192}, "WALL");
    map.Box({496, 224, 96}, {512, 288, 192}, "nowhere/gone");
    map.Box({200, 0, 0}, {210, 512, 192}, "hint").Box({300, 400, 0}, {340, 440, 40}, "common/CLIP");
    map.Box({600, 20, 0}, {700, 120, 20}, "*slime0");
    map.Brush("( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall 0 0 0 2 2\n");  // no volume
    map.Brush(PRIMITIVE_PILLAR);
    map.Brush("patchDef2\n{\nbase/curve\n( 3 3 0 0 0 )\n( ( ( 0 0 0 0 0 ) ) )\n}\n");
    map.BeginEntity("func_wall", "\"rendermode\" \"4\"\n").Box({640, 400, 0}, {720, 408, 96}, "{FENCE");
    map.BeginEntity("func_door", "\"angle\" \"-1\"\n").Box({496, 224, 0}, {512, 288, 96}, "door");
    map.BeginEntity("trigger_once").Box({400, 200, 0}, {420, 300, 96}, "trigger");
    for (const char* x : {"100", "140", "180"})
        map.BeginEntity("monster_large", std::string("\"origin\" \"") + x + " 300 24\"\n");
    map.Light("256 256 150", "\"light\" \"250\"\n\"wait\" \"0.5\"\n\"delay\" \"2\"\n");
    map.Light("100 500 100", "\"_light\" \"255 128 0 200\"\n\"style\" \"10\"\n\"target\" \"t1\"\n");
    map.Light("256 -4 100").Light("256 256 -3000");  // in a wall, and beyond all
    map.BeginEntity("info_player_deathmatch", "\"origin\" \"300 300 30\"\n\"angle\" \"180\"\n");
    map.BeginEntity("info_player_start", "\"origin\" \"-8 64 30\"\n");  // in a wall
    map.BeginEntity("info_player_start", "\"origin\" \"100 256 30\"\n\"angles\" \"0 350 0\"\n");
    std::string text = "\xEF\xBB\xBF" + map.Text();
    ReplaceAll(text, " 2 2\n", " 1 1 134217728 4294967296 0\n");
    return text;
}

void WriteForeignTextures(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder / "textures/Base");
    WritePng(folder / "textures/Base/Wall.png", Image(96, 48, {120, 90, 60, 255}));
    WriteWholeFile(folder / "old.wad", WadBytes(false, {{"ground1_1", 64, 64, 7}, {"sky1", 256, 128, 9}}));
    WriteWholeFile(folder / "New.WAD", WadBytes(true, {{"{fence", 64, 128, 200}, {"unused", 16, 16, 1}}));
}
