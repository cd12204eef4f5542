#include "app/app_tables.h"

HINSTANCE AppInstance;
HWND MainWindow;
int32_t AppActive = 1;
uint8_t GameMode = MODE_LEAVE;
uint8_t UseGlide = 1;
int32_t CurrentLevel;

namespace {

constexpr uint32_t TEXTURE_COLOUR = 0x00404040;
constexpr uint32_t DUSK_FOG = 0x00FA821E;

// DIRECTORY and WORLD are literals, so that each path is one literal.
#define LEVEL(DIRECTORY, WORLD, X, Y, Z, SKIN, SKY, TICKS, FOG)                                                        \
    {                                                                                                                  \
        "game\\data\\levels\\" DIRECTORY "\\texture.bin", "game\\data\\levels\\" DIRECTORY "\\" WORLD,                 \
            "game\\data\\levels\\" DIRECTORY "\\sky.sob", "game\\data\\levels\\" DIRECTORY "\\lights.lmp",             \
            "game\\data\\levels\\" DIRECTORY "\\lights.alt", 0, 0.9f, 0.33f, {X, Y, Z}, SKIN, SKY, TICKS,              \
            TEXTURE_COLOUR, 0.0f, 5000.0f, FOG                                                                         \
    }

}  // namespace

const LevelInfo LevelTable[LEVEL_COUNT] = {
    LEVEL("level1", "assault.bgm", 3837, -1103, 12788, 0, 1, 4, DUSK_FOG),
    LEVEL("level2", "bigone.bgm", 3837, -1103, 12788, 1, 1, 4, 0),
    LEVEL("level3", "house.bgm", 223, 488, -211, 0, 0, 1, 0),
    LEVEL("level4", "soulflum.bgm", 1068, -731, 1663, 1, 0, 1, 0),
    LEVEL("level5", "dside.bgm", -15, 507, 1599, 1, 1, 1, 0),
    LEVEL("level6", "swamp.bgm", 3444, 408, 4976, 0, 1, 2, DUSK_FOG),
    LEVEL("level7", "wild.bgm", 327, -317, -384, 0, 0, 2, 0),
    LEVEL("level8", "assault.bgm", 800, 800, 0, 1, 1, 2, 0),
};
#undef LEVEL

int32_t LoadedLevel;
uint16_t SkyFlag;
