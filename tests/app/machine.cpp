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
#include <stdexcept>

FakeMachine Fake;

std::vector<std::string> FakeMachine::Among(const std::set<std::string>& names) const {
    std::vector<std::string> found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
                 [&](const std::string& call) { return names.count(call.substr(0, call.find(' '))) != 0; });
    return found;
}

int FakeMachine::Count(const std::string& name) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), name));
}

namespace {

constexpr int POLL_LIMIT = 1000;

void Record(const std::string& call) {
    Fake.calls.push_back(call);
    if (Fake.onCall) Fake.onCall(call);
}

std::string Numbers(std::initializer_list<intptr_t> values) {
    std::string text;
    for (const intptr_t value : values)
        text += " " + std::to_string(value);
    return text;
}

struct FakeDirectDraw : IDirectDraw {
    DWORD Release() override { return 0; }
    HRESULT SetCooperativeLevel(HWND, DWORD) override { return DD_OK; }
    HRESULT EnumDisplayModes(DWORD, const DDSURFACEDESC*, void*, DDENUMMODESCALLBACK) override { return DD_OK; }
    HRESULT SetDisplayMode(DWORD, DWORD, DWORD) override { return DD_OK; }
    HRESULT CreateSurface(const DDSURFACEDESC*, IDirectDrawSurface**, void*) override { return DDERR_GENERIC; }
    HRESULT CreatePalette(DWORD, const PALETTEENTRY*, IDirectDrawPalette**, void*) override { return DDERR_GENERIC; }
    HRESULT FlipToGDISurface() override {
        Record("FlipToGDISurface");
        return DD_OK;
    }
};
FakeDirectDraw DirectDraw;

struct ResetBeforeEachTest : testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { ResetFakeMachine(); }
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

void ResetFakeMachine() {
    Fake = {};
    AppActive = 1;
    GameMode = MODE_LEAVE;
    CurrentLevel = 0;
    LoadedLevel = 0;
    SkyFlag = 0;
    Display = {};
    DisplayState = DISPLAY_NONE;
    GlideWindowOpen = 0;
    FogSwitch = FOG_SWITCH_ON;
    Controls = 0;
    FrameTicks = 0;
    FrameCount = 1;
    TextureCount = 0;
    PlayerActor = {};
    ActorCount = 0;
}

#define FAKE(name)                                                                                                     \
    void name() {                                                                                                      \
        Record(#name);                                                                                                 \
    }
#define FAKE_LOADER(name)                                                                                              \
    void name(const char* path) {                                                                                      \
        Record(std::string(#name " ") + path);                                                                         \
    }

// --- host ---

ATOM RegisterClassA(const WNDCLASSA* windowClass) {
    Record("RegisterClassA" + Numbers({windowClass->style}) + " " + windowClass->lpszClassName);
    return Fake.classRegisters ? 1 : 0;
}
HWND CreateWindowExA(DWORD exStyle, const char*, const char*, DWORD style, int x, int y, int width, int height, HWND,
                     void*, HINSTANCE, void*) {
    Record("CreateWindowExA" + Numbers({exStyle, style, x, y, width, height}));
    return Fake.windowOpens ? reinterpret_cast<HWND>(&Fake) : nullptr;
}
BOOL ShowWindow(HWND, int command) {
    Record("ShowWindow" + Numbers({command}));
    return TRUE;
}
BOOL UpdateWindow(HWND) {
    Record("UpdateWindow");
    return TRUE;
}
BOOL SetWindowPos(HWND, HWND, int x, int y, int width, int height, UINT flags) {
    Record("SetWindowPos" + Numbers({x, y, width, height, flags}));
    return TRUE;
}
HICON LoadIconA(HINSTANCE, int) {
    return &Fake;
}
HCURSOR LoadCursorA(HINSTANCE, int) {
    return &Fake;
}
HGDIOBJ GetStockObject(int) {
    return &Fake;
}
int GetSystemMetrics(int index) {
    return index == SM_CXSCREEN ? 1024 : 768;
}
int ShowCursor(BOOL show) {
    Fake.cursorCount += show != FALSE ? 1 : -1;
    return Fake.cursorCount;
}
int MessageBoxA(HWND, const char* text, const char*, UINT) {
    Record("MessageBoxA" + Numbers({Fake.cursorCount}));
    Fake.boxes.push_back(text);
    return IDOK;
}
BOOL PeekMessageA(MSG* message, HWND, UINT, UINT, UINT) {
    if (Fake.messages.empty()) return FALSE;
    *message = {nullptr, Fake.messages.front(), 0, 0};
    Fake.messages.pop_front();
    return TRUE;
}
BOOL TranslateMessage(const MSG*) {
    return FALSE;
}
LRESULT DispatchMessageA(const MSG* message) {
    Record("DispatchMessageA" + Numbers({message->message}));
    return 0;
}
LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM) {
    Record("DefWindowProcA");
    return 77;
}
BOOL WaitMessage() {
    Record("WaitMessage");
    return TRUE;
}
void PostQuitMessage(int code) {
    Record("PostQuitMessage" + Numbers({code}));
}
DWORD GetTickCount() {
    return Fake.clock;
}
DWORD HostGuard(void (*step)()) {
    if (Fake.exceptionInStep != 0) return Fake.exceptionInStep;
    step();
    return 0;
}
void ExitProcess(DWORD code) {
    throw ExitRequest{code};
}
bool HostEndOfFrame(const HostFrameReport&) {
    Record("HostEndOfFrame");
    return Fake.framesUntilHostEnds-- == 1;
}

// --- platform ---

InputDevices Input;
MouseInputState MouseInput;
uint16_t Controls;
uint16_t MinFrameTicks;
uint32_t MeasuredTicks, FrameTicks;
uint16_t FrameCount;
DisplayContext Display;
uint8_t DisplayState;
uint8_t* SurfaceMemory;
int32_t SurfacePitch;
uint32_t CdTrack;

bool StartInput(HINSTANCE, HWND, InputDevices&) {
    Record("StartInput");
    return Fake.inputStarts;
}
void StopInput(InputDevices&) {
    Record("StopInput");
}
void PollKeyboard(InputDevices&) {
    Record("PollKeyboard");
    if (Fake.Count("PollKeyboard") > POLL_LIMIT) throw std::runtime_error("the program polls for ever");
    const std::set<int> before = Fake.held;
    if (!Fake.polls.empty()) {
        Fake.held = Fake.polls.front();
        Fake.polls.pop_front();
    }
    Fake.hit.clear();
    for (const int key : Fake.held)
        if (before.count(key) == 0) Fake.hit.insert(key);
}
void PollMouse(InputDevices&) {
    Record("PollMouse");
}
bool KeyDown(uint8_t code) {
    return Fake.held.count(code) != 0;
}
bool KeyHit(uint8_t code) {
    return Fake.hit.count(code) != 0;
}
FAKE(BuildControls)
FAKE(SummariseMouse)
FAKE(FrameLimiter)
FAKE(FrameStep)
bool OpenDisplay(HWND, DisplayContext&, uint32_t width, uint32_t height, uint32_t bits) {
    Record("OpenDisplay" + Numbers({width, height, bits}));
    return Fake.displayOpens;
}
FAKE(CloseDisplay)
int ShowBitmap(const char* path) {
    Record(std::string("ShowBitmap ") + path);
    return 1;
}
HRESULT FlipDisplay(IDirectDrawSurface*) {
    Record("FlipDisplay");
    return DD_OK;
}
void ClearSurface(IDirectDrawSurface*) {
    Record("ClearSurface");
}
FAKE(PresentDisplay)
HRESULT LockSurface() {
    Record("LockSurface");
    return Fake.surfaceLocks ? DD_OK : DDERR_SURFACELOST;
}
FAKE(UnlockSurface)
bool OpenCdAudio() {
    Record("OpenCdAudio");
    return true;
}
void PlayCdTrack(HWND) {
    Record("PlayCdTrack" + Numbers({CdTrack}));
}
void StopCd(HWND) {
    Record("StopCd");
}
FAKE(CloseCdAudio)

// --- the game's own layers ---

int32_t GlideInitialised, GlideHardwareReady, GlideWindowOpen;
uint32_t RandState;
LightSlot LightSlots[LIGHT_SLOT_COUNT];
uint32_t SubmittedPolygons;
uint32_t CharPointBase, CharPolyBase;
MeshRecord PlayerMesh;
StateRecord PlayerStates[PLAYER_STATE_COUNT];
AnimFileEntry PlayerAnimations[1];

bool SystemInit() {
    Record("SystemInit");
    return true;
}
FAKE(SystemShutdown)
bool InitGraphics(int32_t softwareScreenRes) {
    Record("InitGraphics" + Numbers({softwareScreenRes}));
    return Fake.graphicsOpen;
}
FAKE(BuildReciprocalTable)
FAKE(SetupScreen)
FAKE(SwapScreen)
FAKE(ClearFrame)
void SetFogSwitchStates(bool on) {
    Record("SetFogSwitchStates" + Numbers({on}));
}
FAKE(SetupFog)
FAKE(ReloadFogTable)
int LoadTextureFile(int32_t level) {
    Record("LoadTextureFile" + Numbers({level}));
    return 0;
}
FAKE(SetTexturePalette)
FAKE(L_CreateGlideUVs)
FAKE(ResetCurrentTexture)
FAKE(UpdateCamera)
FAKE(GenerateVertexNormals)
FAKE_LOADER(LoadBspWorld)
FAKE_LOADER(LoadStaticObject)
FAKE(SetStaticMarks)
FAKE(ResetViewCache)
void FillStamps(uint16_t value) {
    Record("FillStamps" + Numbers({value}));
}
FAKE_LOADER(LoadLightMap)
FAKE(ApplyLightLevel)
FAKE_LOADER(LoadLightSlots)
FAKE(UpdateLights)
FAKE(DrawSky)
FAKE(RenderWorld)
void LoadMesh(const char* mesh, MeshRecord&, const char* coordinates) {
    Record(std::string("LoadMesh ") + mesh + " " + coordinates);
}
void LoadAnimations(AnimFileEntry*, const MeshRecord&) {
    Record("LoadAnimations");
}
void* LoadWeights(const char* path, const MeshRecord&) {
    Record(std::string("LoadWeights ") + path);
    return &Fake;
}
void AddActor(Actor& actor, MeshRecord*, StateRecord*, int32_t x, int32_t y, int32_t z, AnimFileEntry*) {
    Record("AddActor" + Numbers({x, y, z}));
    actor.position = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}
void UpdateActorBase(Actor&) {
    Record("UpdateActorBase");
}
FAKE(UpdatePlayer)

// --- tested on their own ---

FAKE(ClearShots)
FAKE(FireShot)
FAKE(UpdateShots)
