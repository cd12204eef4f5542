// A board: the record of functions behind the accelerator's calls. What is drawn is collected in a BoardFrame and
// handed over in whole; a board keeps its order.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

constexpr int32_t BOARD_WIDTH = 640;
constexpr int32_t BOARD_HEIGHT = 480;
constexpr int32_t BOARD_LODS = 9;  // longer sides 256, 128 .. 1

constexpr uint32_t NO_BOARD_TEXTURE = 0xFFFFFFFF;

struct BoardVertex {
    float x, y;        // pixels, finite, -2048..2047
    float oow;         // 1 / W
    float sow, tow;    // s / W, t / W; s or t runs from 0 to 256 along the longer side
    float r, g, b, a;  // 0..255
};

struct FogTable {
    std::array<uint8_t, 64> entries;
    uint32_t colour;  // 0x00RRGGBB
    bool operator==(const FogTable&) const = default;
};

struct BoardState {
    uint32_t texture = NO_BOARD_TEXTURE;  // number of a loaded texture; triangles only
    bool wrapS = false, wrapT = false;    // repeats; otherwise the texels at the edge go on
    bool addsAlpha = false;               // texture x colour + alpha
    bool testsAlpha = false;              // draws only where the texture's alpha is alphaReference
    uint8_t alphaReference = 0;
    bool testsDepth = false;  // draws only what is nearer; otherwise depth is neither read nor written
    bool writesDepth = false;
    bool hasFog = false;
    FogTable fog{};
    bool operator==(const BoardState&) const = default;
};

enum class BoardAction { Triangles, Lines, ClearColour, ClearDepth };

struct BoardRun {
    BoardAction action;
    uint32_t first, count;  // vertices of Triangles and Lines
    uint32_t state;         // number of the state, for Triangles
    uint32_t value;         // to clear with: 0x00RRGGBB or depth
};

struct BoardFrame {
    std::vector<BoardVertex> vertices;
    std::vector<BoardState> states;
    std::vector<BoardRun> runs;
};

// One mip level, 0xAARRGGBB, rows top to bottom without gaps.
struct TextureLevel {
    uint32_t width, height;  // powers of two
    std::vector<uint32_t> texels;
};

struct TextureImage {
    int32_t firstLod;  // LOD of the largest level: its longer side is 256 >> firstLod
    std::vector<TextureLevel> levels;
};

struct Board {
    const char* name;
    bool (*suits)(std::string& why);   // false: the choice `auto` passes it over; null: it always suits
    bool (*open)(std::string& error);  // false: it cannot be used
    void (*close)();
    void (*loadTexture)(uint32_t texture, TextureImage image);  // 0..1023; replaces it for all later frames
    void (*draw)(const BoardFrame& frame);                      // into the back buffer
    void (*finish)();                                           // waits until all is drawn
    void (*swap)();
    uint32_t (*scale)();  // how many times BOARD_WIDTH x BOARD_HEIGHT its picture is
    // The front buffer, 0x00RRGGBB, rows of `pitch` pixels. It stays as it is until the next swap.
    const uint32_t* (*front)(uint32_t& pitch);
    // The front buffer as an OpenGL texture, upper row first. Null: the board has none.
    uint32_t (*frontTexture)();
};
