// The levels of the game, one row each. Everything that names a level takes it from here: the game's table of levels
// and its keys, the host's --level, the map compiler, the checker and the benches; content/CMakeLists.txt reads the
// rows as text. A new level is a row here, a folder content/levels/level<number>, and its picture on the page of
// choices; what the documents tell of levels is held against the rows by tests/architecture.
//
// The columns, of which the start, the floor and the fog colour are written as the game's tables hold them:
//   number  1, 2, 3 ... in order; files lie in game/data/levels/level<number>, sources in content/levels/level<number>
//   world   name of the map (<world>.map) and of the world file (<world>.bgm)
//   start   x, y, z: where the player appears, world units
//   floor   height of the floor that the map compiler puts below the start, world units
//   skin    ZERO or TARNWICK, the character's (below)
//   sky     OPEN: sky.toml is made into a sky, which is drawn in every frame; CLOSED: there is none
//   ticks   least length of a frame: 1, 2 or 4 ticks of 16 ms
//   fog     colour of the accelerator's fog, 0x00RRGGBB
//   track   of the CD
//   key     that chooses it, a DIK_ name without DIK_
#pragma once

#include <cstdint>

// clang-format off
#define GAME_LEVELS(LEVEL)                                                            \
    /*   number world     start                floor  skin      sky     ticks fog       track key */ \
    LEVEL(1,    assault,  3837, -1103, 12788,  -1216, ZERO,     OPEN,   4,    0xFA821E, 2,    F1)    \
    LEVEL(2,    bigone,   3837, -1103, 12788,  -1216, TARNWICK, OPEN,   4,    0x000000, 3,    F2)    \
    LEVEL(3,    house,    223,  488,   -211,   376,   ZERO,     CLOSED, 1,    0x000000, 2,    F3)    \
    LEVEL(4,    soulflum, 1068, -731,  1663,   -848,  TARNWICK, CLOSED, 1,    0x000000, 3,    F4)    \
    LEVEL(5,    dside,    -15,  507,   1599,   392,   TARNWICK, OPEN,   1,    0x000000, 2,    F5)    \
    LEVEL(6,    swamp,    3444, 408,   4976,   296,   ZERO,     OPEN,   2,    0xFA821E, 3,    F6)    \
    LEVEL(7,    wild,     327,  -317,  -384,   -432,  ZERO,     CLOSED, 2,    0x000000, 2,    F7)    \
    LEVEL(8,    assault,  800,  800,   0,      688,   TARNWICK, OPEN,   2,    0x000000, 3,    F12)
// clang-format on

// The skins: their names in the column above, and their files in game/data/anims.
#define LEVEL_SKINS(SKIN)                                                                                              \
    SKIN(ZERO, "zero.tuv")                                                                                             \
    SKIN(TARNWICK, "tarnwick.tuv")

enum class LevelSkin : uint16_t {
#define SKIN(NAME, FILE) NAME,
    LEVEL_SKINS(SKIN)
#undef SKIN
};

inline constexpr const char* LEVEL_SKIN_FILES[] = {  // by LevelSkin
#define SKIN(NAME, FILE) FILE,
    LEVEL_SKINS(SKIN)
#undef SKIN
};

enum class LevelSky : uint16_t { CLOSED = 0, OPEN = 1 };

struct LevelRow {
    int number;
    const char* world;
    int start[3];
    int floor;
    LevelSkin skin;
    LevelSky sky;
    int ticks;
    uint32_t fog;
    int track;
    const char* key;
};

inline constexpr LevelRow LEVEL_ROWS[] = {
#define LEVEL(NUMBER, WORLD, X, Y, Z, FLOOR, SKIN, SKY, TICKS, FOG, TRACK, KEY)                                        \
    {NUMBER, #WORLD, {X, Y, Z}, FLOOR, LevelSkin::SKIN, LevelSky::SKY, TICKS, FOG, TRACK, #KEY},
    GAME_LEVELS(LEVEL)
#undef LEVEL
};

constexpr int LEVEL_COUNT = sizeof LEVEL_ROWS / sizeof LEVEL_ROWS[0];

// number: 1 to LEVEL_COUNT.
constexpr const LevelRow& LevelRowOf(int number) {
    return LEVEL_ROWS[number - 1];
}
