// One game from the first note to the shut-down, the message pump, and the outer loop.
#include "machine.h"

#include "app/app_tables.h"
#include "app/entry.h"
#include "app/error_box.h"
#include "app/game_loop.h"
#include "app/pump.h"
#include "host/dinput.h"
#include "platform/display.h"
#include "platform/input.h"
#include "platform/timer.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

// --- one game ---

TEST(StartGame, BringsEverythingUpInOrder) {
    CurrentLevel = 5;
    LoadedLevel = 3;
    MouseInput = {1, 2, 30, 40, 3};
    FrameTicks = MeasuredTicks = 9;
    Fake.onCall = [](const std::string& call) {
        if (call.starts_with("InitGraphics")) {
            EXPECT_EQ(LoadedLevel, 0);
        }
        if (call == "UpdateCamera") {
            EXPECT_EQ(MouseInput.xMotion, 0) << "the motion of the game before";
        }
    };
    EXPECT_TRUE(StartGame());
    EXPECT_EQ(
        Fake.Among({"BuildReciprocalTable", "SystemInit", "InitGraphics", "LoadBspWorld", "ResetViewCache",
                    "SwapScreen", "UpdateCamera"}),
        (Calls{"BuildReciprocalTable", "SystemInit", "InitGraphics 0",
               "LoadBspWorld game\\data\\levels\\level6\\swamp.bgm", "ResetViewCache", "SwapScreen", "UpdateCamera"}));
    EXPECT_EQ(LoadedLevel, 5);
    EXPECT_EQ(FrameTicks, 0u);
    EXPECT_EQ(MeasuredTicks, 0u);
}

TEST(RunGame, PlaysUntilEscapeAndShutsDown) {
    Fake.onCall = [](const std::string& call) {
        if (call == "FrameStep" && Fake.Count("FrameStep") == 3) Fake.held = {DIK_ESCAPE};
    };
    EXPECT_EQ(RunGame(), MODE_LEAVE);
    EXPECT_EQ(Fake.Among({"OpenCdAudio", "PlayCdTrack", "InitGraphics", "FrameStep", "StopCd", "CloseCdAudio",
                          "SystemShutdown"}),
              (Calls{"OpenCdAudio", "PlayCdTrack 2", "InitGraphics 0", "FrameStep", "FrameStep", "FrameStep", "StopCd",
                     "CloseCdAudio", "SystemShutdown"}));
    EXPECT_EQ(Fake.Count("ClearSurface"), 0) << "no display is open";
}

TEST(RunGame, PollsBeforeTheFrame) {
    Fake.held = {DIK_ESCAPE};
    RunGame();
    EXPECT_EQ(Fake.Among({"PollKeyboard", "PollMouse", "BuildControls"}),
              (Calls{"PollKeyboard", "PollMouse", "BuildControls"}));
}

TEST(RunGame, WindowsKeysWinOverEscape) {
    for (const int key : {DIK_LWIN, DIK_RWIN, DIK_APPS}) {
        Fake.held = {DIK_ESCAPE, key};
        EXPECT_EQ(RunGame(), MODE_QUIT) << key;
    }
}

TEST(RunGame, QuitsWhenTheHostAsks) {
    Fake.framesUntilHostEnds = 5;
    EXPECT_EQ(RunGame(), MODE_QUIT);
    EXPECT_EQ(Fake.Count("FrameStep"), 5);
    EXPECT_EQ(Fake.Count("SystemShutdown"), 1);
}

TEST(RunGame, EndsOnAQuitMessageStillPlaying) {
    Fake.messages = {WM_QUIT};
    EXPECT_EQ(RunGame(), MODE_PLAYING);
    EXPECT_EQ(Fake.Count("FrameStep"), 0);
    EXPECT_EQ(Fake.Count("SystemShutdown"), 1);
}

TEST(RunGame, BlackensBothBuffersOfAnOpenDisplay) {
    OpenFakeDisplay();
    Fake.held = {DIK_ESCAPE};
    RunGame();
    EXPECT_EQ(Fake.Among({"ClearSurface", "PresentDisplay", "StopCd"}),
              (Calls{"ClearSurface", "PresentDisplay", "ClearSurface", "PresentDisplay", "StopCd"}));
}

TEST(RunGame, ReportsADisplayThatCannotOpenAndShutsDown) {
    Fake.graphicsOpen = false;
    EXPECT_EQ(RunGame(), MODE_PLAYING);
    EXPECT_EQ(Fake.boxes, Calls{"Unable to initialize game."});
    EXPECT_EQ(Fake.Among({"LoadTextureFile", "FrameStep", "StopCd", "CloseCdAudio", "SystemShutdown"}),
              (Calls{"StopCd", "CloseCdAudio", "SystemShutdown"}));
}

TEST(RunGame, PlaysTrackTwoOnEvenAndThreeOnOddLevels) {
    for (const auto& [level, track] : {std::pair{0, "PlayCdTrack 2"}, {1, "PlayCdTrack 3"}, {7, "PlayCdTrack 3"}}) {
        Fake.calls.clear();
        CurrentLevel = level;
        Fake.held = {DIK_ESCAPE};
        RunGame();
        EXPECT_EQ(Fake.Among({"PlayCdTrack"}), Calls{track});
    }
}

TEST(RunGame, TakesALevelOutsideTheTableAsTheFirst) {
    for (const int32_t level : {-1, 8, INT32_MAX}) {
        CurrentLevel = level;
        Fake.held = {DIK_ESCAPE};
        RunGame();
        EXPECT_EQ(LoadedLevel, 0);
    }
}

// --- the message pump ---

int StepsDone;
void CountStep() {
    StepsDone++;
    if (StepsDone == 3) GameMode = MODE_LEAVE;
}

TEST(MessagePump, TakesEveryMessageBeforeTheNextStep) {
    StepsDone = 0;
    GameMode = MODE_PLAYING;
    Fake.messages = {WM_SYSKEYDOWN, WM_ACTIVATEAPP};
    Fake.onCall = [](const std::string&) { EXPECT_EQ(StepsDone, 0); };
    RunMessagePump(MODE_PLAYING, CountStep);
    EXPECT_EQ(Fake.calls, (Calls{"DispatchMessageA 260", "DispatchMessageA 28"}));
    EXPECT_EQ(StepsDone, 3);
}

TEST(MessagePump, StandsStillWhileAnotherApplicationIsActive) {
    StepsDone = 0;
    GameMode = MODE_PLAYING;
    AppActive = 0;
    Fake.messages = {MM_MCINOTIFY};
    Fake.onCall = [](const std::string& call) {
        if (call != "WaitMessage") return;
        EXPECT_EQ(StepsDone, 0);
        if (Fake.Count("WaitMessage") == 2) AppActive = 1;
    };
    RunMessagePump(MODE_PLAYING, CountStep);
    EXPECT_EQ(Fake.calls, (Calls{"DispatchMessageA 953", "WaitMessage", "WaitMessage"}));
}

TEST(MessagePump, QuitMessageEndsItUndispatched) {
    StepsDone = 0;
    GameMode = MODE_FRONTEND;
    Fake.messages = {WM_QUIT, WM_ACTIVATEAPP};
    RunMessagePump(MODE_FRONTEND, CountStep);
    EXPECT_TRUE(Fake.calls.empty());
    EXPECT_EQ(Fake.messages.size(), 1u);
    EXPECT_EQ(GameMode, MODE_FRONTEND);
}

TEST(MessagePump, ExceptionShowsABoxAndEndsTheProcessWithItsCode) {
    OpenFakeDisplay();
    GameMode = MODE_PLAYING;
    Fake.exceptionInStep = EXCEPTION_ACCESS_VIOLATION;
    try {
        RunMessagePump(MODE_PLAYING, CountStep);
        FAIL() << "the process went on";
    } catch (const ExitRequest& exit) {
        EXPECT_EQ(exit.code, EXCEPTION_ACCESS_VIOLATION);
    }
    EXPECT_EQ(Fake.boxes, Calls{"Exception"});
    EXPECT_EQ(Fake.calls, (Calls{"FlipToGDISurface", "MessageBoxA 1", "FlipDisplay", "FlipToGDISurface"}));
}

TEST(ErrorBox, ShowsTheCursorMeanwhileWhateverItsCount) {
    for (const int count : {-5, -1, 0, 3}) {
        Fake.calls.clear();
        Fake.cursorCount = count;
        EXPECT_EQ(ErrorBox("text", MB_OK), IDOK);
        EXPECT_EQ(Fake.calls, Calls{"MessageBoxA " + std::to_string(std::max(count + 1, 0))});
        EXPECT_EQ(Fake.cursorCount, -1);
    }
}

// --- window procedure ---

TEST(MainWndProc, HandlesItsMessages) {
    const auto send = [](UINT message, WPARAM wParam, LPARAM lParam) {
        Fake.calls.clear();
        return MainWndProc(nullptr, message, wParam, lParam);
    };
    EXPECT_EQ(send(WM_ACTIVATEAPP, 0, 0), 0);
    EXPECT_EQ(AppActive, 0);
    EXPECT_EQ(send(WM_ACTIVATEAPP, 5, 0), 0);
    EXPECT_EQ(AppActive, 1);
    EXPECT_EQ(send(WM_DESTROY, 0, 0), 0);
    EXPECT_EQ(Fake.calls, Calls{"PostQuitMessage 0"});
    EXPECT_EQ(send(WM_DISPLAYCHANGE, 16, (480 << 16) | 640), 0);
    EXPECT_EQ(Fake.calls, Calls{"SetWindowPos 0 0 640 480 4"});
    EXPECT_EQ(send(MM_MCINOTIFY, 4, 1), 0);
    EXPECT_EQ(Fake.Among({"PlayCdTrack"}).size(), 1u);
    EXPECT_EQ(send(0x0F, 0, 0), 77) << "everything else goes to the system";
    EXPECT_EQ(Fake.calls, Calls{"DefWindowProcA"});
}

TEST(MainWndProc, SwallowsSystemKeysAndShowsTheDesktopOnAltTab) {
    constexpr WPARAM VK_F4 = 0x73;
    for (const WPARAM key : {VK_TAB, VK_F4})
        EXPECT_EQ(MainWndProc(nullptr, WM_SYSKEYDOWN, key, 0), 0);
    EXPECT_TRUE(Fake.calls.empty()) << "no display is open";
    OpenFakeDisplay();
    for (const WPARAM key : {VK_TAB, VK_F4})
        EXPECT_EQ(MainWndProc(nullptr, WM_SYSKEYDOWN, key, 0), 0);
    EXPECT_EQ(Fake.calls, Calls{"FlipToGDISurface"});
}

// --- the outer loop ---

constexpr const char* TITLE = "ShowBitmap FrontEnd\\Title.Bmp";

int RunProgram() {
    return WinMain(nullptr, nullptr, nullptr, SW_SHOW);
}

// The polls that lead through the front end into a game and end it with `key`.
void PlayAGame(int key) {
    for (const std::set<int>& keys : {std::set<int>{}, {DIK_SPACE}, {DIK_F1}, {DIK_F11}, {key}})
        Fake.polls.push_back(keys);
}

void QuitFromTheFrontEnd() {
    for (const std::set<int>& keys : {std::set<int>{}, {DIK_ESCAPE}})
        Fake.polls.push_back(keys);
}

TEST(WinMain, OpensItsWindowOverTheWholeScreen) {
    QuitFromTheFrontEnd();
    EXPECT_EQ(RunProgram(), 0);
    EXPECT_EQ(Fake.Among({"RegisterClassA", "CreateWindowExA", "ShowWindow", "UpdateWindow", "StartInput",
                          "OpenDisplay", "StopInput"}),
              (Calls{"RegisterClassA 512 Tarnwick", "CreateWindowExA 8 2156396544 0 0 1024 768", "ShowWindow 5",
                     "UpdateWindow", "StartInput", "OpenDisplay 640 480 16", "StopInput"}));
}

TEST(WinMain, AFailedSetUpShowsItsBoxAndEndsWithoutStoppingInput) {
    struct Row {
        bool FakeMachine::*answer;
        const char* text;
    };
    for (const Row& row : {Row{&FakeMachine::classRegisters, "Unable to initialise application."},
                           Row{&FakeMachine::windowOpens, "Unable to initialise application."},
                           Row{&FakeMachine::inputStarts, "Unable to initialise DirectInput."}}) {
        Fake = {};
        Fake.*row.answer = false;
        EXPECT_EQ(RunProgram(), 0);
        EXPECT_EQ(Fake.boxes, Calls{row.text});
        EXPECT_EQ(Fake.Count(TITLE) + Fake.Count("StopInput"), 0);
    }
}

TEST(WinMain, EscapeReturnsToTheFrontEndAndAWindowsKeyEndsTheProgram) {
    PlayAGame(DIK_ESCAPE);
    PlayAGame(DIK_RWIN);
    RunProgram();
    EXPECT_EQ(Fake.Among({"OpenDisplay", "OpenCdAudio", "StopInput"}),
              (Calls{"OpenDisplay 640 480 16", "OpenCdAudio", "OpenDisplay 640 480 16", "OpenCdAudio", "StopInput"}));
}

TEST(WinMain, AQuitMessageInTheFrontEndLeadsToAGame) {
    Fake.messages = {WM_QUIT};
    Fake.polls = {{}, {DIK_LWIN}};
    RunProgram();
    EXPECT_EQ(Fake.Count("OpenCdAudio"), 1);
}

TEST(WinMain, TheGameRunsWithoutTheFrontEndsDisplay) {
    Fake.displayOpens = false;
    Fake.held = {DIK_LWIN};
    RunProgram();
    EXPECT_EQ(Fake.boxes, Calls{"Unable to initialize DirectDraw"});
    EXPECT_EQ(Fake.Count("FrameStep"), 1);
}

TEST(WinMain, EndsWhenNeitherFrontEndNorGameFindsADisplay) {
    Fake.displayOpens = false;
    Fake.graphicsOpen = false;
    EXPECT_EQ(RunProgram(), 0);
    EXPECT_EQ(Fake.boxes, (Calls{"Unable to initialize DirectDraw", "Unable to initialize game."}));
    EXPECT_EQ(Fake.Count("StopInput"), 1);
}

TEST(WinMain, AFailedGameAloneReturnsToTheFrontEnd) {
    Fake.graphicsOpen = false;
    Fake.polls = {{}, {DIK_SPACE}, {DIK_F1}, {DIK_F11}};
    QuitFromTheFrontEnd();
    RunProgram();
    EXPECT_EQ(Fake.Count(TITLE), 2);
    EXPECT_EQ(Fake.boxes.size(), 1u);
}

}  // namespace
