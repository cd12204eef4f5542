#include "app/game_loop.h"

#include "app/app_tables.h"
#include "app/error_box.h"
#include "app/game_frame.h"
#include "app/load_level.h"
#include "app/pump.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "host/probe.h"
#include "memory/shutdown.h"
#include "memory/system.h"
#include "platform/cd_audio.h"
#include "platform/display.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "render/raster.h"
#include "render/screen.h"

#include <cfenv>

namespace {

// Sets rounding to nearest, masks every exception and keeps denormals, since a library may have set them otherwise.
void SetFpuSinglePrecision() {
    std::fesetenv(FE_DFL_ENV);
}

void StartMusic() {
    OpenCdAudio();
    CdTrack = static_cast<uint32_t>(LevelRowOf(CurrentLevel + 1).track);
    PlayCdTrack(MainWindow);
}

// Everything as at a game's start, but the music may go on, and the player and the camera may stay where they are.
void ReloadLevel(const HostReload& reload) {
    const Vec3 position = PlayerActor.position;
    const Vec3 angles = PlayerActor.angles;
    const int32_t cameraMode = CameraMode;
    const Vec3 cameraPosition = CameraPos;
    const Vec3 cameraAngles = CameraAngles;
    SystemShutdown();
    CurrentLevel = reload.level - 1;
    if (reload.musicIsNew) {
        CloseCdAudio();
        StartMusic();
    }
    if (!StartGame()) {
        ErrorBox("Unable to initialize game.", MB_OK);
        GameMode = MODE_QUIT;
        return;
    }
    if (!reload.keepsPlace) return;
    PlayerActor.position = position;
    PlayerActor.angles = angles;
    UpdateActorBase(PlayerActor);
    CameraMode = cameraMode;
    CameraPos = cameraPosition;
    CameraAngles = cameraAngles;
}

void GameStep() {
    PollKeyboard(Input);
    PollMouse(Input);
    const bool hostEnds = GameFrame();
    // Kept as it is: Escape is read after the frame, and the Windows keys after Escape win.
    if (KeyDown(DIK_ESCAPE)) GameMode = MODE_LEAVE;
    if (KeyDown(DIK_LWIN) || KeyDown(DIK_RWIN) || KeyDown(DIK_APPS) || hostEnds) GameMode = MODE_QUIT;
    HostReload reload{};
    if (GameMode == MODE_PLAYING && HostWantsReload(reload)) ReloadLevel(reload);
}

void BlackenBothBuffers() {
    for (int buffer = 0; buffer < 2; ++buffer) {
        ClearSurface(Display.offscreen);
        PresentDisplay();
    }
}

}  // namespace

uint8_t RunGame() {
    GameMode = MODE_PLAYING;
    if (CurrentLevel < 0 || CurrentLevel >= LEVEL_COUNT) CurrentLevel = 0;
    StartMusic();
    if (StartGame()) {
        RunMessagePump(MODE_PLAYING, GameStep);
        if (DisplayState != DISPLAY_NONE) BlackenBothBuffers();
    } else {
        ErrorBox("Unable to initialize game.", MB_OK);
    }
    StopCd(MainWindow);
    CloseCdAudio();
    SystemShutdown();
    return GameMode;
}

bool StartGame() {
    SetFpuSinglePrecision();
    BuildReciprocalTable();
    SystemInit();
    LoadedLevel = 0;  // InitGraphics reads its fog colour
    if (!InitGraphics(HostSoftwareScreen())) return false;
    LoadLevel(CurrentLevel);
    SwapScreen();
    MouseInput = {};  // otherwise the mouse motion of the previous game's last frame would move the camera
    UpdateCamera();
    // Kept as it is: the first frame has 0 ticks, and the time of loading counts into the second.
    MeasuredTicks = 0;
    FrameTicks = 0;
    return true;
}
