// One game from the first note to the shut-down, the message pump, and the outer loop.
#include "machine.h"

#include "app/app_tables.h"
#include "app/entry.h"
#include "app/error_box.h"
#include "app/game_loop.h"
#include "app/pump.h"
#include "host/dinput.h"
#include "platform/cd_audio.h"
#include "platform/input.h"
#include "platform/timer.h"

#include <gtest/gtest.h>

namespace {

// --- one game ---

TEST(RunGame, BringsEverythingUpPlaysUntilEscapeAndShutsDown) {
    CurrentLevel = 5;
    LoadedLevel = 3;
    MouseInput.xMotion = 30;
    FrameTicks = MeasuredTicks = 9;
    Fake.onCall = [](const std::string& call) {
        if (call == "InitGraphics 0") Fake.calls.push_back("of level " + std::to_string(LoadedLevel));
        if (call == "UpdateCamera") Fake.calls.push_back("by " + std::to_string(MouseInput.xMotion));
        if (call == "PollKeyboard") Fake.calls.push_back("after " + std::to_string(FrameTicks + MeasuredTicks));
        if (call == "BuildControls") Fake.held = {DIK_ESCAPE};
    };
    OpenFakeDisplay();
    EXPECT_EQ(RunGame(), MODE_LEAVE);
    EXPECT_EQ(Fake.Among({"OpenCdAudio", "PlayCdTrack", "BuildReciprocalTable", "SystemInit", "InitGraphics", "of",
                          "LoadBspWorld", "ResetViewCache", "SwapScreen", "UpdateCamera", "by", "PollKeyboard", "after",
                          "FrameStep", "ClearSurface", "PresentDisplay", "StopCd", "CloseCdAudio", "SystemShutdown"}),
              (Calls{"OpenCdAudio",
                     "PlayCdTrack 3",
                     "BuildReciprocalTable",
                     "SystemInit",
                     "InitGraphics 0",
                     "of level 0",
                     "LoadBspWorld game\\data\\levels\\level6\\swamp.bgm",
                     "ResetViewCache",
                     "SwapScreen",
                     "UpdateCamera",
                     "by 0",  // not by the motion of the game before
                     "PollKeyboard",
                     "after 0",
                     "UpdateCamera",
                     "by 0",
                     "SwapScreen",
                     "FrameStep",
                     "ClearSurface",
                     "PresentDisplay",
                     "ClearSurface",
                     "PresentDisplay",  // both buffers
                     "StopCd",
                     "CloseCdAudio",
                     "SystemShutdown"}));
    EXPECT_EQ(LoadedLevel, 5);
}

TEST(RunGame, EndsWithTheModeThatSaysWhy) {
    struct Row {
        Keys held;
        std::deque<UINT> messages;
        bool graphicsOpen;
        uint8_t mode;
        int frames;
    };
    for (const auto& [held, messages, graphicsOpen, mode, frames] :
         {Row{{DIK_ESCAPE, DIK_LWIN}, {}, true, MODE_QUIT, 1}, Row{{DIK_RWIN}, {}, true, MODE_QUIT, 1},
          Row{{DIK_APPS}, {}, true, MODE_QUIT, 1}, Row{{}, {}, true, MODE_QUIT, 5},
          Row{{}, {WM_QUIT}, true, MODE_PLAYING, 0}, Row{{}, {}, false, MODE_PLAYING, 0}}) {
        Fake = {};
        Fake.graphicsOpen = graphicsOpen;
        Fake.messages = messages;
        Fake.held = held;
        Fake.framesUntilHostEnds = 5;
        CurrentLevel = INT32_MAX;
        EXPECT_EQ(RunGame(), mode);
        EXPECT_EQ(LoadedLevel, 0) << "a level outside the table";
        EXPECT_EQ(Fake.Count("FrameStep"), frames);
        EXPECT_EQ(Fake.boxes.size(), graphicsOpen ? 0u : 1u);
        EXPECT_EQ(Fake.Among({"PlayCdTrack", "StopCd", "CloseCdAudio", "SystemShutdown"}),
                  (Calls{"PlayCdTrack 2", "StopCd", "CloseCdAudio", "SystemShutdown"}));
    }
}

// --- the message pump ---

void ThreeSteps() {
    Fake.calls.push_back("step");
    if (Fake.Count("step") == 3) GameMode = MODE_LEAVE;
}

TEST(MessagePump, TakesEveryMessageFirstAndStandsStillWhileAnotherApplicationIsActive) {
    GameMode = MODE_PLAYING;
    AppActive = 0;
    Fake.messages = {WM_SYSKEYDOWN, MM_MCINOTIFY};
    Fake.onCall = [](const std::string&) { AppActive = Fake.Count("WaitMessage") == 2; };
    RunMessagePump(MODE_PLAYING, ThreeSteps);
    EXPECT_EQ(Fake.calls, (Calls{"DispatchMessageA 260", "DispatchMessageA 953", "WaitMessage", "WaitMessage", "step",
                                 "step", "step"}));
    Fake = {};
    GameMode = MODE_FRONTEND;
    Fake.messages = {WM_QUIT, WM_ACTIVATEAPP};
    RunMessagePump(MODE_FRONTEND, ThreeSteps);
    EXPECT_TRUE(Fake.calls.empty()) << "the quit message ends it undispatched";
    EXPECT_EQ(Fake.messages.size(), 1u);
    EXPECT_EQ(GameMode, MODE_FRONTEND);
}

TEST(MessagePump, ExceptionShowsABoxAndEndsTheProcessWithItsCode) {
    OpenFakeDisplay();
    GameMode = MODE_PLAYING;
    Fake.exceptionInStep = EXCEPTION_ACCESS_VIOLATION;
    try {
        RunMessagePump(MODE_PLAYING, ThreeSteps);
        FAIL() << "the process went on";
    } catch (const ExitRequest& exit) {
        EXPECT_EQ(exit.code, EXCEPTION_ACCESS_VIOLATION);
    }
    EXPECT_EQ(Fake.boxes, Calls{"Exception"});
    EXPECT_EQ(Fake.calls, (Calls{"FlipToGDISurface", "MessageBoxA 1", "FlipDisplay", "FlipToGDISurface"}));
}

TEST(ErrorBox, ShowsTheCursorMeanwhileWhateverItsCount) {
    for (const int count : {-5, -1, 0, 3}) {
        Fake.cursorCount = count;
        EXPECT_EQ(ErrorBox("text", MB_OK), IDOK);
        EXPECT_EQ(Fake.calls.back(), "MessageBoxA " + std::to_string(std::max(count + 1, 0)));
        EXPECT_EQ(Fake.cursorCount, -1);
    }
}

TEST(MainWndProc, HandlesItsMessages) {
    constexpr WPARAM VK_F4 = 0x73;
    const auto send = [](UINT message, WPARAM wParam, LPARAM lParam = 0) {
        return MainWndProc(nullptr, message, wParam, lParam);
    };
    EXPECT_EQ(send(WM_ACTIVATEAPP, 0), 0);
    EXPECT_EQ(AppActive, 0);
    EXPECT_EQ(send(WM_ACTIVATEAPP, 5), 0);
    EXPECT_EQ(AppActive, 1);
    EXPECT_EQ(send(WM_SYSKEYDOWN, VK_TAB), 0);  // no display is open
    OpenFakeDisplay();
    CdTrack = 3;
    for (const MSG& message : {MSG{nullptr, WM_SYSKEYDOWN, VK_TAB, 0},
                               {nullptr, WM_SYSKEYDOWN, VK_F4, 0},
                               {nullptr, WM_DISPLAYCHANGE, 16, (480 << 16) | 640},
                               {nullptr, MM_MCINOTIFY, 4, 1},
                               {nullptr, WM_DESTROY, 0, 0}})
        EXPECT_EQ(send(message.message, message.wParam, message.lParam), 0);
    EXPECT_EQ(send(0x0F, 0), 77) << "everything else goes to the system";
    EXPECT_EQ(Fake.calls, (Calls{"FlipToGDISurface", "SetWindowPos 0 0 640 480 4", "PlayCdTrack 3", "PostQuitMessage 0",
                                 "DefWindowProcA"}));
}

// --- the outer loop ---

int RunProgram() {
    return WinMain(nullptr, nullptr, nullptr, SW_SHOW);
}

void QueuePolls(std::initializer_list<Keys> polls) {
    Fake.polls.insert(Fake.polls.end(), polls);
}

// Through the front end into a game that ends with `key`.
void QueueGame(int key) {
    QueuePolls({{}, {DIK_SPACE}, {DIK_F1}, {DIK_F11}, {key}});
}

TEST(WinMain, EscapeReturnsToTheFrontEndAndAWindowsKeyEndsTheProgram) {
    QueueGame(DIK_ESCAPE);
    QueueGame(DIK_RWIN);
    EXPECT_EQ(RunProgram(), 0);
    EXPECT_EQ(Fake.Among({"RegisterClassA", "CreateWindowExA", "ShowWindow", "UpdateWindow", "StartInput",
                          "OpenDisplay", "OpenCdAudio", "StopInput"}),
              (Calls{"RegisterClassA 512 Tarnwick", "CreateWindowExA 8 2156396544 0 0 1024 768", "ShowWindow 5",
                     "UpdateWindow", "StartInput", "OpenDisplay 640 480 16", "OpenCdAudio", "OpenDisplay 640 480 16",
                     "OpenCdAudio", "StopInput"}));
}

TEST(WinMain, AQuitMessageInTheFrontEndLeadsToAGame) {
    Fake.messages = {WM_QUIT};
    QueuePolls({{}, {DIK_LWIN}});
    RunProgram();
    EXPECT_EQ(Fake.Count("OpenCdAudio"), 1);
}

TEST(WinMain, GoesOnUntilNeitherFrontEndNorGameFindsADisplay) {
    Fake.displayOpens = false;
    Fake.held = {DIK_LWIN};
    RunProgram();
    EXPECT_EQ(Fake.Count("FrameStep"), 1) << "a game without the front end's display";
    Fake = {};
    Fake.graphicsOpen = false;
    QueuePolls({{}, {DIK_SPACE}, {DIK_F1}, {DIK_F11}, {}, {DIK_ESCAPE}});
    RunProgram();
    EXPECT_EQ(Fake.Among({"OpenDisplay"}).size(), 2u) << "a failed game leads back to the front end";
    Fake = {};
    GameMode = MODE_LEAVE;
    Fake.displayOpens = Fake.graphicsOpen = false;
    EXPECT_EQ(RunProgram(), 0);
    EXPECT_EQ(Fake.boxes, (Calls{"Unable to initialize DirectDraw", "Unable to initialize game."}));
    EXPECT_EQ(Fake.Count("StopInput"), 1);
}

}  // namespace
