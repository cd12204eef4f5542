#include "app/front_end.h"

#include "app/app_tables.h"
#include "app/error_box.h"
#include "app/pump.h"
#include "platform/bitmap.h"
#include "platform/display.h"
#include "platform/input.h"

namespace {

constexpr uint32_t SCREEN_WIDTH = 640;
constexpr uint32_t SCREEN_HEIGHT = 480;

constexpr DWORD PICTURE_PERIOD = 8000;  // milliseconds
constexpr uint32_t PICTURE_COUNT = 4;
constexpr const char* ATTRACT_PICTURES[PICTURE_COUNT] = {"FrontEnd\\Title.Bmp", "FrontEnd\\Options.Bmp",
                                                         "FrontEnd\\LoadSave.Bmp", "FrontEnd\\Lang.Bmp"};

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
    // Kept as it is: Space held goes before Escape pressed.
    if (KeyDown(START_KEY))
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

// Polls until a level's key goes down, and takes no messages meanwhile. False: Escape went down.
bool ChooseLevel() {
    ShowChoicePicture("FrontEnd\\Select01.bmp");
    CurrentLevel = -1;
    while (CurrentLevel == -1) {
        PollKeyboard(Input);
        if (KeyHit(DIK_ESCAPE)) return false;
        // Kept as it is: of several keys held the last one of the row counts.
        for (int level = 0; level < LEVEL_COUNT; ++level)
            if (KeyDown(LevelKeys[level])) CurrentLevel = level;
    }
    return true;
}

// Only a key that goes down while this runs counts: F12 may still be held from the choice of the level.
bool ChooseRenderer() {
    ShowChoicePicture("FrontEnd\\Select02.bmp");
    for (;;) {
        PollKeyboard(Input);
        if (KeyHit(DIK_ESCAPE)) return false;
        const bool software = KeyHit(SOFTWARE_KEY);
        const bool accelerator = KeyHit(ACCELERATOR_KEY);
        if (!software && !accelerator) continue;
        // Kept as it is: both keys in one poll choose the accelerator.
        UseGlide = accelerator ? 1 : 0;
        return true;
    }
}

}  // namespace

uint8_t RunFrontEnd() {
    if (OpenDisplay(MainWindow, Display, SCREEN_WIDTH, SCREEN_HEIGHT, FRONT_END_BITS)) {
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
