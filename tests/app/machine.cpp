#include "machine.h"

#include "app/app_tables.h"
#include "app/shots.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "character/animation.h"
#include "character/mesh.h"
#include "character/skin.h"
#include "host/probe.h"
#include "lights/light_slots.h"
#include "math/random.h"
#include "math/vectors.h"
#include "memory/system.h"
#include "platform/cd_audio.h"
#include "platform/display.h"
#include "platform/image.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "render/fog.h"
#include "render/glide_screen.h"
#include "render/raster.h"
#include "render/screen.h"
#include "render/submit.h"
#include "render/textures.h"
#include "world/bsp.h"
#include "world/draw/render_world.h"
#include "world/light_map.h"
#include "world/static_object.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

FakeMachine Fake;

Calls FakeMachine::Among(const std::set<std::string>& names) const {
    Calls found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
                 [&](const std::string& call) { return names.count(call.substr(0, call.find(' '))) != 0; });
    return found;
}

int FakeMachine::Count(const std::string& call) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
}

namespace {

constexpr int POLL_LIMIT = 1000;

template <typename... Arguments>
void Record(const Arguments&... arguments) {
    std::ostringstream call;
    ((call << arguments << ' '), ...);
    Fake.calls.push_back(call.str().substr(0, call.str().size() - 1));
    if (Fake.onCall) Fake.onCall(Fake.calls.back());
}

struct FakeDirectDraw : IDirectDraw {
    DWORD Release() override { return 0; }
    HRESULT SetCooperativeLevel(HWND, DWORD) override { return DD_OK; }
    HRESULT EnumDisplayModes(DWORD, const DDSURFACEDESC*, void*, DDENUMMODESCALLBACK) override { return DD_OK; }
    HRESULT SetDisplayMode(DWORD, DWORD, DWORD) override { return DD_OK; }
    HRESULT CreateSurface(const DDSURFACEDESC*, IDirectDrawSurface**, void*) override { return DDERR_GENERIC; }
    HRESULT CreatePalette(DWORD, const PALETTEENTRY*, IDirectDrawPalette**, void*) override { return DDERR_GENERIC; }
    HRESULT FlipToGDISurface() override { return Record("FlipToGDISurface"), DD_OK; }
};
FakeDirectDraw DirectDraw;

struct ResetBeforeEachTest : testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        Fake = {};
        AppActive = 1;
        GameMode = MODE_LEAVE;
        FrameCount = 1;
        TextureCount = 0;
        CurrentLevel = GlideWindowOpen = 0;
        Display = {};
        DisplayState = DISPLAY_NONE;
        FrameTicks = 0;
        WorldGeometry = {};
    }
};
const bool listening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new ResetBeforeEachTest);
    return true;
}();

}  // namespace

void OpenFakeDisplay() {
    Display.directDraw = &DirectDraw;
    DisplayState = DISPLAY_FULL_SCREEN;
}

// A function that does nothing but write down its name and the arguments after its result.
// clang-format off
#define FAKE(type, name, parameters, result, ...) \
    type name parameters { Record(#name __VA_OPT__(,) __VA_ARGS__); return result; }
#define FAKE_STEP(name) FAKE(void, name, (), void())
#define FAKE_SILENT(type, name, parameters, result) type name parameters { return result; }
// clang-format on

// --- steps of every layer, and shots, which are tested on their own ---

// clang-format off
FAKE_STEP(BuildControls) FAKE_STEP(SummariseMouse) FAKE_STEP(FrameLimiter) FAKE_STEP(FrameStep)
FAKE_STEP(CloseDisplay) FAKE_STEP(PresentDisplay) FAKE_STEP(UnlockSurface) FAKE_STEP(CloseCdAudio)
FAKE_STEP(SystemShutdown) FAKE_STEP(BuildReciprocalTable) FAKE_STEP(SetupScreen) FAKE_STEP(SwapScreen)
FAKE_STEP(ClearFrame) FAKE_STEP(SetupFog) FAKE_STEP(ReloadFogTable) FAKE_STEP(SetTexturePalette)
FAKE_STEP(L_CreateGlideUVs) FAKE_STEP(ResetCurrentTexture) FAKE_STEP(UpdateCamera) FAKE_STEP(GenerateVertexNormals)
FAKE_STEP(SetStaticMarks) FAKE_STEP(ResetViewCache) FAKE_STEP(ApplyLightLevel) FAKE_STEP(UpdateLights)
FAKE_STEP(DrawSky) FAKE_STEP(RenderWorld) FAKE_STEP(UpdatePlayer) FAKE_STEP(ClearShots) FAKE_STEP(FireShot)
FAKE_STEP(UpdateShots)
    // clang-format on

    // --- host ---

    FAKE(ATOM, RegisterClassA, (const WNDCLASSA* made), 1, made->style, made->lpszClassName)
        FAKE(HWND, CreateWindowExA,
             (DWORD top, const char*, const char*, DWORD style, int x, int y, int w, int h, HWND, void*, HINSTANCE,
              void*),
             reinterpret_cast<HWND>(&Fake), top, style, x, y, w,
             h) FAKE(BOOL, ShowWindow, (HWND, int command), TRUE, command) FAKE(BOOL, UpdateWindow, (HWND), TRUE)
            FAKE(BOOL, SetWindowPos, (HWND, HWND, int x, int y, int w, int h, UINT flags), TRUE, x, y, w, h, flags)
                FAKE_SILENT(HICON, LoadIconA, (HINSTANCE, int), &Fake)
                    FAKE_SILENT(HCURSOR, LoadCursorA, (HINSTANCE, int), &Fake)
                        FAKE_SILENT(HGDIOBJ, GetStockObject, (int), &Fake)
                            FAKE_SILENT(int, GetSystemMetrics, (int index), index == SM_CXSCREEN ? 1024 : 768)
                                FAKE_SILENT(int, ShowCursor, (BOOL show), Fake.cursorCount += show != FALSE ? 1 : -1)
                                    FAKE_SILENT(BOOL, TranslateMessage, (const MSG*), FALSE)
                                        FAKE_SILENT(DWORD, GetTickCount, (), Fake.clock)
                                            FAKE(LRESULT, DispatchMessageA, (const MSG* message), 0, message->message)
                                                FAKE(LRESULT, DefWindowProcA, (HWND, UINT, WPARAM, LPARAM), 77)
                                                    FAKE(BOOL, WaitMessage, (), TRUE)
                                                        FAKE(void, PostQuitMessage, (int code), void(), code)
                                                            FAKE(bool, HostEndOfFrame, (const HostFrameReport&),
                                                                 Fake.framesUntilHostEnds-- ==
                                                                     1) int MessageBoxA(HWND, const char* text,
                                                                                        const char*, UINT) {
    Record("MessageBoxA", Fake.cursorCount);
    Fake.boxes.push_back(text);
    return IDOK;
}
BOOL PeekMessageA(MSG* message, HWND, UINT, UINT, UINT) {
    if (Fake.messages.empty()) return FALSE;
    *message = {nullptr, Fake.messages.front(), 0, 0};
    Fake.messages.pop_front();
    return TRUE;
}
DWORD HostGuard(void (*step)()) {
    if (Fake.exceptionInStep == 0) step();
    return Fake.exceptionInStep;
}
void ExitProcess(DWORD code) {
    throw ExitRequest{code};
}

// --- platform ---

InputDevices Input;
MouseInputState MouseInput;
uint16_t Controls, MinFrameTicks, FrameCount;
uint32_t MeasuredTicks, FrameTicks, CdTrack;
DisplayContext Display;
uint8_t DisplayState;
uint8_t* SurfaceMemory;
int32_t SurfacePitch;

void PollKeyboard(InputDevices&) {
    Record("PollKeyboard");
    if (Fake.Count("PollKeyboard") > POLL_LIMIT) throw std::runtime_error("the program polls for ever");
    const Keys before = Fake.held;
    if (!Fake.polls.empty()) {
        Fake.held = Fake.polls.front();
        Fake.polls.pop_front();
    }
    Fake.hit = Fake.held;
    for (const int key : before)
        Fake.hit.erase(key);
}
FAKE(bool, StartInput, (HINSTANCE, HWND, InputDevices&), true)
FAKE(void, StopInput, (InputDevices&), void())
FAKE(void, PollMouse, (InputDevices&), void())
FAKE_SILENT(bool, KeyDown, (uint8_t code), Fake.held.count(code) != 0)
FAKE_SILENT(bool, KeyHit, (uint8_t code), Fake.hit.count(code) != 0)
FAKE(bool, OpenDisplay, (HWND, DisplayContext&, uint32_t w, uint32_t h, uint32_t bits), Fake.displayOpens, w, h, bits)
FAKE(int, ShowBitmap, (const char* path), 1, path)
FAKE(HRESULT, FlipDisplay, (IDirectDrawSurface*), DD_OK)
FAKE(void, ClearSurface, (IDirectDrawSurface*), void())
FAKE(HRESULT, LockSurface, (), Fake.surfaceLocks ? DD_OK : DDERR_SURFACELOST)
FAKE(bool, OpenCdAudio, (), true)
FAKE(void, PlayCdTrack, (HWND), void(), CdTrack)
FAKE(void, StopCd, (HWND), void())

// --- the game's own layers ---

int32_t GlideInitialised, GlideHardwareReady, GlideWindowOpen;
uint32_t RandState, SubmittedPolygons, CharPointBase, CharPolyBase;
LightSlot LightSlots[LIGHT_SLOT_COUNT];
MeshRecord PlayerMesh;
StateRecord PlayerStates[PLAYER_STATE_COUNT];
AnimFileEntry PlayerAnimations[1];

FAKE(bool, SystemInit, (), true)
FAKE(bool, InitGraphics, (int32_t softwareScreenRes), Fake.graphicsOpen, softwareScreenRes)
FAKE(void, SetFogSwitchStates, (bool on), void(), on)
FAKE(int, LoadTextureFile, (int32_t level), 0, level)
FAKE(void, LoadBspWorld, (const char* path), void(), path)
FAKE(void, LoadStaticObject, (const char* path), void(), path)
FAKE(void, FillStamps, (uint16_t value), void(), value)
FAKE(void, LoadLightMap, (const char* path), void(), path)
FAKE(void, LoadLightSlots, (const char* path), void(), path)
FAKE(void, LoadMesh, (const char* mesh, MeshRecord&, const char* coordinates), void(), mesh, coordinates)
FAKE(void, LoadAnimations, (AnimFileEntry*, const MeshRecord&), void())
FAKE(void*, LoadWeights, (const char* path, const MeshRecord&), &Fake, path)
FAKE(void, AddActor, (Actor&, MeshRecord*, StateRecord*, int32_t x, int32_t y, int32_t z, AnimFileEntry*), void(), x, y,
     z)
FAKE(void, UpdateActorBase, (Actor&), void())
