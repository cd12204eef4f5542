#include "app/app_tables.h"

#include "host/dinput.h"

HINSTANCE AppInstance;
HWND MainWindow;
int32_t AppActive = 1;
uint8_t GameMode = MODE_LEAVE;
uint8_t UseGlide = 1;
int32_t CurrentLevel;

namespace {

constexpr uint32_t TEXTURE_COLOUR = 0x00404040;
// The path of a level's file, joined by the preprocessor: the table holds it as one literal.
#define LEVEL_PATH(NUMBER, FILE) "game\\data\\levels\\level" #NUMBER "\\" FILE
#define LEVEL(NUMBER, WORLD, X, Y, Z, FLOOR, SKIN, SKY, TICKS, FOG, TRACK, KEY)                                        \
    {.textureFile = LEVEL_PATH(NUMBER, "texture.bin"),                                                                 \
     .worldFile = LEVEL_PATH(NUMBER, #WORLD ".bgm"),                                                                   \
     .skyFile = LEVEL_PATH(NUMBER, "sky.sob"),                                                                         \
     .lightMapFile = LEVEL_PATH(NUMBER, "lights.lmp"),                                                                 \
     .lightSlotFile = LEVEL_PATH(NUMBER, "lights.alt"),                                                                \
     .unused0 = 0,                                                                                                     \
     .unused1 = 0.9f,                                                                                                  \
     .unused2 = 0.33f,                                                                                                 \
     .start = {X, Y, Z},                                                                                               \
     .skin = static_cast<uint16_t>(LevelSkin::SKIN),                                                                   \
     .hasSky = static_cast<uint16_t>(LevelSky::SKY),                                                                   \
     .minFrameTicks = TICKS,                                                                                           \
     .textureColour = TEXTURE_COLOUR,                                                                                  \
     .unused3 = 0.0f,                                                                                                  \
     .unused4 = 5000.0f,                                                                                               \
     .fogColour = FOG},

}  // namespace

const LevelInfo LevelTable[LEVEL_COUNT] = {GAME_LEVELS(LEVEL)};
#undef LEVEL
#undef LEVEL_PATH

const uint8_t LevelKeys[LEVEL_COUNT] = {
#define LEVEL(NUMBER, WORLD, X, Y, Z, FLOOR, SKIN, SKY, TICKS, FOG, TRACK, KEY) DIK_##KEY,
    GAME_LEVELS(LEVEL)
#undef LEVEL
};

int32_t LoadedLevel;
uint16_t SkyFlag;
