#include "app/front_end.h"

#include "app/app_tables.h"
#include "app/error_box.h"
#include "app/pump.h"
#include "platform/display.h"
#include "platform/image.h"
#include "platform/input.h"

namespace {

constexpr uint32_t SCREEN_WIDTH = 640;
constexpr uint32_t SCREEN_HEIGHT = 480;
constexpr uint32_t SCREEN_BITS = 16;

constexpr DWORD PICTURE_PERIOD = 8000;  // milliseconds
constexpr uint32_t PICTURE_COUNT = 4;
constexpr const char* ATTRACT_PICTURES[PICTURE_COUNT] = {"FrontEnd\\Title.Bmp", "FrontEnd\\Options.Bmp",
                                                         "FrontEnd\\LoadSave.Bmp", "FrontEnd\\Lang.Bmp"};
constexpr uint8_t LEVEL_KEYS[LEVEL_COUNT] = {
#define LEVEL(NUMBER, WORLD, X, Y, Z, FLOOR, SKIN, SKY, TICKS, FOG, TRACK, KEY) DIK_##KEY,
    GAME_LEVELS(LEVEL)
#undef LEVEL
};

uint32_t CurrentPicture;
DWORD PictureShownAt;

void ShowAttractPicture(uint32_t picture) {
    CurrentPicture = picture;
    ShowBitmap(ATTRACT_PICTURES[picture]);
    PresentDisplay();
    PictureShownAt = GetTickCount();
}

void AttractStep() {
    PollKeyboard(Input);
    PollMouse(Input);
    if (KeyDown(DIK_SPACE))
        GameMode = MODE_START;
    else if (KeyHit(DIK_ESCAPE) || KeyHit(DIK_LWIN) || KeyHit(DIK_RWIN) || KeyHit(DIK_APPS))
        GameMode = MODE_QUIT;
    else if (GetTickCount() - PictureShownAt >= PICTURE_PERIOD)
        ShowAttractPicture((CurrentPicture + 1) % PICTURE_COUNT);
}

void RunAttract() {
    GameMode = MODE_FRONTEND;
    PollKeyboard(Input);
    PollMouse(Input);
    ShowAttractPicture(0);
    RunMessagePump(MODE_FRONTEND, AttractStep);
}

void ShowBlack() {
    ClearSurface(Display.offscreen);
    PresentDisplay();
}

void ShowChoicePicture(const char* path) {
    ShowBlack();
    ShowBitmap(path);
    PresentDisplay();
}

// The choices poll without taking messages. False: Escape went down.
bool ChooseLevel() {
    ShowChoicePicture("FrontEnd\\Select01.bmp");
    CurrentLevel = -1;
    while (CurrentLevel == -1) {
        PollKeyboard(Input);
        if (KeyHit(DIK_ESCAPE)) return false;
        for (int level = 0; level < LEVEL_COUNT; level++)
            if (KeyDown(LEVEL_KEYS[level])) CurrentLevel = level;
    }
    return true;
}

// Keys must go down here: F12 may still be held from the choice of the level.
bool ChooseRenderer() {
    ShowChoicePicture("FrontEnd\\Select02.bmp");
    for (;;) {
        PollKeyboard(Input);
        if (KeyHit(DIK_ESCAPE)) return false;
        const bool software = KeyHit(DIK_F11);
        const bool accelerator = KeyHit(DIK_F12);
        if (!software && !accelerator) continue;
        UseGlide = accelerator ? 1 : 0;
        return true;
    }
}

}  // namespace

uint8_t RunFrontEnd() {
    if (OpenDisplay(MainWindow, Display, SCREEN_WIDTH, SCREEN_HEIGHT, SCREEN_BITS)) {
        do
            RunAttract();
        while (GameMode == MODE_START && !(ChooseLevel() && ChooseRenderer()));
        if (GameMode == MODE_START) ShowBlack();
    } else {
        ErrorBox("Unable to initialize DirectDraw", MB_OK);
    }
    CloseDisplay();
    return GameMode;
}
