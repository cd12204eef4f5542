#include "test_level.h"

#include "formats/binary.h"
#include "formats/texture_file.h"
#include "mapc/compile.h"

#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

constexpr int TEXTURE_SIDE = 64;
constexpr int TEXTURES_PER_ROW = TEXTURE_PAGE_SIDE / TEXTURE_SIDE;
constexpr int TEXTURE_COUNT = 16;
constexpr const char* MATERIALS = "0 wall 64 64\n1 floor 64 64\n2 ceiling 64 64\n";

// A checkerboard in two of the colours for each slot.
TextureFile Checkerboards() {
    TextureFile file;
    for (size_t i = 0; i < file.palette.size(); i++)
        file.palette[i] = {static_cast<uint8_t>(i % 64), static_cast<uint8_t>(i * 7 % 64), static_cast<uint8_t>(i / 4)};
    file.pages.emplace_back(TEXTURE_PAGE_SIZE);
    for (int slot = 0; slot < TEXTURE_COUNT; slot++) {
        const int left = slot % TEXTURES_PER_ROW * TEXTURE_SIDE, top = slot / TEXTURES_PER_ROW * TEXTURE_SIDE;
        file.slots.push_back({0, static_cast<uint8_t>(left), static_cast<uint8_t>(top), TEXTURE_SIDE, TEXTURE_SIDE});
        for (int y = 0; y < TEXTURE_SIDE; y++)
            for (int x = 0; x < TEXTURE_SIDE; x++)
                file.pages[0][static_cast<size_t>((top + y) * TEXTURE_PAGE_SIDE + left + x)] =
                    static_cast<uint8_t>(1 + 15 * slot + ((x ^ y) & 16) / 2);
    }
    return file;
}

struct Box {
    int low[3], high[3];
    const char* texture;
};

void WriteBrush(std::ostream& out, const Box& box) {
    const auto [x0, y0, z0] = box.low;
    const auto [x1, y1, z1] = box.high;
    const int faces[6][3][3] = {{{x0, y0, z0}, {x0, y1, z0}, {x0, y0, z1}}, {{x1, y0, z0}, {x1, y0, z1}, {x1, y1, z0}},
                                {{x0, y0, z0}, {x0, y0, z1}, {x1, y0, z0}}, {{x0, y1, z0}, {x1, y1, z0}, {x0, y1, z1}},
                                {{x0, y0, z0}, {x1, y0, z0}, {x0, y1, z0}}, {{x0, y0, z1}, {x0, y1, z1}, {x1, y0, z1}}};
    out << "{\n";
    for (const auto& face : faces) {
        for (const auto& point : face)
            out << "( " << point[0] << ' ' << point[1] << ' ' << point[2] << " ) ";
        out << box.texture << " 0 0 0 2 2\n";
    }
    out << "}\n";
}

std::string MapText() {
    const Box boxes[] = {
        {{-16, -16, -16}, {1616, 816, 0}, "floor"},   {{-16, -16, 400}, {1616, 816, 416}, "ceiling"},
        {{-16, -16, 0}, {0, 816, 400}, "wall"},       {{1600, -16, 0}, {1616, 816, 400}, "wall"},
        {{0, -16, 0}, {1600, 0, 400}, "wall"},        {{0, 800, 0}, {1600, 816, 400}, "wall"},
        {{1000, 0, 0}, {1016, 300, 400}, "wall"},     {{1000, 500, 0}, {1016, 800, 400}, "wall"},
        {{1000, 300, 250}, {1016, 500, 400}, "wall"},  // above the doorway
        {{600, 200, 0}, {664, 264, 400}, "ceiling"},   // the pillar
    };
    std::ostringstream text;
    text << "{\n\"classname\" \"worldspawn\"\n";
    for (const Box& box : boxes)
        WriteBrush(text, box);
    text << "}\n"
            "{\n\"classname\" \"light\"\n\"origin\" \"500 400 300\"\n}\n"
            "{\n\"classname\" \"info_player_start\"\n\"origin\" \"300 400 60\"\n\"angle\" \"0\"\n}\n";
    return text.str();
}

}  // namespace

void WriteTestLevel(const fs::path& dataFolder) {
    const fs::path level = dataFolder / "game/data/levels/level3";
    fs::create_directories(level);
    WriteWholeFile(level / "texture.bin", EncodeTextureFile(Checkerboards()));
    const fs::path map = dataFolder / "test.map", materials = dataFolder / "materials.txt";
    std::ofstream(map) << MapText();
    std::ofstream(materials) << MATERIALS;
    CompileToFiles({map, materials, level, 3});
}
