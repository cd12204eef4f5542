// The real game in a real window, played with real keys.
#include "window/desktop.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

namespace {

class Window : public testing::Test {
protected:
    void SetUp() override {
        if (!Desktop::Possible()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
        desktop = std::make_unique<Desktop>();
    }

    void StartLevel() {
        desktop->StartGame({"--window", "640x480"});
        desktop->ChooseFirstLevel();
    }

    std::string Output() {
        std::ifstream file(desktop->OutputFile());
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void AwaitFrames(size_t count) {
        const size_t frames = desktop->TracedFrames();
        EXPECT_TRUE(WaitFor([&] { return desktop->TracedFrames() > frames + count; }));
    }

    // The camera's yaw in degrees, once its swing has died down.
    double Yaw() {
        double yaw = 0, before = 0;
        EXPECT_TRUE(WaitFor([&] {
            AwaitFrames(30);
            before = std::exchange(yaw, LatestYaw());
            return std::abs(yaw - before) < 1;
        }));
        return yaw;
    }

    double LatestYaw() {
        const std::string angles = Traced("\"angles\"");
        return angles.empty() ? 1e9 : std::stod(angles.substr(angles.find(',') + 1));
    }

    // The latest frame's line from behind the text on; empty: there is no frame yet.
    std::string Traced(const std::string& text) {
        std::ifstream trace(desktop->TraceFile());
        std::string found;
        for (std::string line; std::getline(trace, line);)
            if (line.ends_with('}')) found = line.substr(line.find(text) + text.size());
        return found;
    }

    // The picture fills exactly the given area of the screen; all else is black.
    bool PictureFills(int left, int top, int right, int bottom) {
        const ScreenPicture screen = desktop->Screen();
        const int width = Desktop::WIDTH, height = Desktop::HEIGHT;
        return screen.Black(0, 0, width, top) && screen.Black(0, top, left, bottom) &&
               screen.Black(right, top, width, bottom) && screen.Black(0, bottom, width, height) &&
               !screen.Black(left, top, left + 1, bottom) && !screen.Black(right - 1, top, right, bottom) &&
               !screen.Black(left, top, right, top + 1) && !screen.Black(left, bottom - 1, right, bottom);
    }

    std::unique_ptr<Desktop> desktop;
};

}  // namespace

TEST_F(Window, KeysLeadThroughALevelAndOutAgain) {
    StartLevel();
    desktop->Key("F8");
    EXPECT_TRUE(desktop->GameRuns());
    desktop->Key("Escape");
    EXPECT_TRUE(desktop->GameRuns()) << "Escape leads out of the level, not out of the program";
    EXPECT_TRUE(WaitFor([&] {
        if (desktop->GameRuns()) desktop->Key("Escape");
        return !desktop->GameRuns();
    }));
    EXPECT_EQ(desktop->GameStatus(), 0);
    EXPECT_NE(Output().find("Camera Coords"), std::string::npos) << Output();
}

TEST_F(Window, MouseTurnsTheFreeCameraAsFarAsItMoves) {
    StartLevel();
    desktop->Key("F6");
    desktop->Input("mousedown 1");
    const double before = Yaw();
    for (int i = 0; i < 20; ++i)
        desktop->Input("mousemove_relative 100 0");  // would leave the screen if the pointer were not held
    EXPECT_NEAR(before - Yaw(), 20 * 100 / 8, 20);   // each frame loses the remainder of its motion divided by 8
    desktop->Input("mouseup 1");
}

TEST_F(Window, HoldsThePointerOnlyWhereTheMouseSteersAndLetsGoForAltAndF9) {
    const auto becomes = [&](bool held, const char* input) {
        if (*input) desktop->Input(input);
        return WaitFor([&] { return desktop->PointerHeld() == held; });
    };
    desktop->StartGame({});
    Rest(500);
    EXPECT_FALSE(desktop->PointerHeld()) << "in the front end";
    desktop->ChooseFirstLevel();
    EXPECT_TRUE(becomes(true, "")) << "full screen";
    EXPECT_TRUE(becomes(false, "keydown alt"));
    EXPECT_TRUE(becomes(true, "keyup alt"));
    EXPECT_TRUE(becomes(false, "key F9"));
    EXPECT_TRUE(becomes(true, "key F9"));
    EXPECT_TRUE(WaitFor([&] {
        if (desktop->GameRuns()) desktop->PressCloseButton();  // not heard at once after Alt
        return !desktop->GameRuns();
    }));
    EXPECT_EQ(desktop->GameStatus(), 0);
    StartLevel();
    EXPECT_FALSE(desktop->PointerHeld());
    EXPECT_TRUE(becomes(true, "mousemove 640 400 mousedown 1"));
    EXPECT_TRUE(becomes(false, "mouseup 1"));
    EXPECT_TRUE(becomes(true, "key F6"));
}

TEST_F(Window, PWritesScreenshotsIntoThePicturesFolder) {
    const std::string folder = testing::TempDir() + "/shots";
    std::filesystem::create_directories(folder);
    std::ofstream(testing::TempDir() + "/user-dirs.dirs") << "# mine\nXDG_PICTURES_DIR=\"" << folder << "\"\n";
    StartLevel();
    EXPECT_TRUE(std::filesystem::is_empty(folder));
    desktop->Key("p");
    desktop->Key("p");
    EXPECT_TRUE(WaitFor([&] {
        return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()) == 2;
    }));
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        EXPECT_EQ(file.path().extension(), ".png");
        EXPECT_GT(file.file_size(), 1000u);
    }
}

TEST_F(Window, SettingsPauseTheGameActAtOnceAndAreKept) {
    const std::string file = desktop->TraceFile() + ".settings";
    desktop->StartGame({"--window", "640x480", "--settings", file, "--data", SOURCE_FOLDER "/tests/levels/data"});
    desktop->ChooseFirstLevel();
    const auto press = [&](std::initializer_list<const char*> keys) {
        for (const char* key : keys)
            desktop->Key(key);
    };
    press({"F10"});
    size_t frames = 0;
    EXPECT_TRUE(WaitFor([&] {  // the game stands still: keys are the settings' from now on
        frames = desktop->TracedFrames();
        Rest(500);
        return desktop->TracedFrames() == frames;
    }));
    const ScreenPicture before = desktop->Screen();
    press({"Down", "Down", "Down", "Down", "Down", "Down", "Down", "Down", "Left", "Left"});
    EXPECT_TRUE(WaitFor([&] {
        const auto sum = [](const ScreenPicture& screen) {
            uint64_t total = 0;
            for (const uint32_t pixel : screen.pixels)
                total += pixel & 0xFF;
            return total;
        };
        return sum(desktop->Screen()) < sum(before) * 98 / 100;  // the settings' own panel stays as bright
    })) << "brightness 80 %";
    EXPECT_EQ(desktop->TracedFrames(), frames);
    press({"Escape"});
    AwaitFrames(10);  // Escape closed the screen, not the level
    std::ifstream kept(file);
    const std::string text{std::istreambuf_iterator<char>(kept), {}};
    EXPECT_NE(text.find("\nbrightness = 80\n"), std::string::npos) << text;
    press({"F10", "Up", "Up", "Up", "Up", "Up", "Return", "Return", "w", "Escape", "Escape"});  // Keys: run with W
    EXPECT_TRUE(WaitFor([&] {
        desktop->Input("keydown w");
        AwaitFrames(20);
        return !Traced("\"vel\":").starts_with("[0,0,0]");
    }));
    desktop->Input("keyup w");
    press({"F10", "Up", "Return"});  // Leave the program
    EXPECT_EQ(desktop->GameStatus(), 0);
}

#ifdef SCRIPTED_PAD
TEST_F(Window, AControllerAloneLeadsFromTheTitleThroughALevelAndTheSettingsOut) {
    const std::string commands = desktop->TraceFile() + ".pad", file = desktop->TraceFile() + ".pad_settings";
    std::ofstream pad(commands);
    setenv("SCRIPTED_PAD", commands.c_str(), 1);
    setenv("LD_PRELOAD", SCRIPTED_PAD, 1);
    desktop->StartGame({"--window", "640x480", "--settings", file, "--data", SOURCE_FOLDER "/tests/levels/data"});
    unsetenv("LD_PRELOAD");
    const auto say = [&](const std::string& command) {
        pad << command << std::endl;
        Rest(200);
    };
    enum { A = 0, BACK = 4, RIGHT_SHOULDER = 10, UP = 11, DOWN = 12, LEFT = 13, RIGHT = 14 };
    const auto press = [&](std::initializer_list<int> buttons) {
        for (const int button : buttons)
            for (const char* down : {" 1", " 0"})
                say("button " + std::to_string(button) + down);
    };
    const auto state = [&] { return std::stoi(Traced("\"state\":")); };
    enum { STANDS = 0, RUNS = 6, WALKS = 19 };  // of PlayerState
    say("attach");
    press({A});                      // the title
    press({RIGHT, RIGHT, LEFT, A});  // the first level
    press({DOWN, A});                // the software renderer
    AwaitFrames(5);
    say("axis 1 -15000");  // the left stick, half up and a little to the side
    say("axis 0 5000");
    EXPECT_TRUE(WaitFor([&] { return state() == WALKS; }));
    say("axis 1 -32767");
    EXPECT_TRUE(WaitFor([&] { return state() == RUNS; }));
    say("detach");
    EXPECT_TRUE(WaitFor([&] { return state() == STANDS; })) << "what it held is let go";
    say("attach");
    press({RIGHT_SHOULDER, DOWN, DOWN, DOWN, DOWN, DOWN, DOWN, DOWN, DOWN, LEFT, BACK});  // brightness
    EXPECT_TRUE(WaitFor([&] {
        std::ifstream kept(file);
        const std::string text{std::istreambuf_iterator<char>(kept), {}};
        return text.find("\nbrightness = 90\n") != std::string::npos;
    }));
    press({BACK});                   // out of the level
    press({RIGHT_SHOULDER, UP, A});  // and out of the program
    EXPECT_EQ(desktop->GameStatus(), 0);
}
#endif

TEST_F(Window, WaitsWithoutTheFocusAndEndsByTheCloseButtonNotByAltF4) {
    StartLevel();
    desktop->TakeFocus();
    size_t frames = 0;
    EXPECT_TRUE(WaitFor([&] {
        frames = desktop->TracedFrames();
        Rest(500);
        return desktop->TracedFrames() == frames;
    }));
    desktop->Input("keydown F8");  // goes to the other window, and is never let go there
    Rest(1500);
    EXPECT_EQ(desktop->TracedFrames(), frames);
    desktop->Input("keyup F8");
    desktop->GiveFocus();
    AwaitFrames(20);
    desktop->PressAltF4();
    AwaitFrames(30);
    desktop->PressCloseButton();
    EXPECT_EQ(desktop->GameStatus(), 0);
    EXPECT_EQ(Output().find("Camera Coords"), std::string::npos);
}

TEST_F(Window, FillsTheScreenByDefaultAndKeepsThePictureInProportionAtEverySize) {
    const std::string data = SOURCE_FOLDER "/tests/levels/data";  // frozen levels, whose pictures have no black edges
    for (const char* board : {"auto", "gpu"}) {  // without a graphics card, and with OpenGL all the same
        desktop->StartGame({"--data", data, "--board", board});
        EXPECT_TRUE(WaitFor([&] { return PictureFills(107, 0, 1173, 800); }));
        desktop->PressCloseButton();
        EXPECT_EQ(desktop->GameStatus(), 0);
        desktop->StartGame({"--window", "640x480", "--data", data, "--board", board});
        desktop->ResizeGame(1000, 600);
        EXPECT_TRUE(WaitFor([&] { return PictureFills(100, 0, 900, 600); }));
        desktop->ResizeGame(400, 700);
        EXPECT_TRUE(WaitFor([&] { return PictureFills(0, 200, 400, 500); }));
        desktop->PressCloseButton();
        EXPECT_EQ(desktop->GameStatus(), 0);
    }
}

TEST_F(Window, OpensWhereItWasUnlessThatIsOnNoDisplayAnyMore) {
    const std::string file = desktop->TraceFile() + ".place_settings";
    const std::vector<std::string> options = {"--settings", file, "--data", SOURCE_FOLDER "/tests/levels/data"};
    std::ofstream(file) << "full_screen = off\nwindow_place = 300,100 500x360\n";
    desktop->StartGame(options);
    EXPECT_TRUE(WaitFor([&] { return PictureFills(310, 100, 790, 460); }));
    desktop->ResizeGame(480, 400);
    EXPECT_TRUE(WaitFor([&] { return PictureFills(0, 20, 480, 380); }));
    desktop->PressCloseButton();
    EXPECT_EQ(desktop->GameStatus(), 0);
    std::ifstream kept(file);
    const std::string text{std::istreambuf_iterator<char>(kept), {}};
    EXPECT_NE(text.find(" 480x400\n"), std::string::npos) << text;
    std::ofstream(file) << "full_screen = off\nwindow_size = 640x480\nwindow_place = 1250,100 480x400\n";
    desktop->StartGame(options);
    EXPECT_TRUE(WaitFor([&] { return PictureFills(320, 160, 960, 640); }));
}

TEST_F(Window, ShowsTheGpuBoardsPictureAtEverySizeAndWhenTheFocusComesBack) {
    desktop->StartGame(
        {"--window", "640x480", "--level", "1", "--renderer", "accelerator", "--board", "gpu", "--board-scale", "2"});
    const auto shown = [&] {
        const ScreenPicture screen = desktop->Screen();
        return screen.Black(0, 0, 100, 600) && screen.Black(900, 0, 1000, 600) && !screen.Black(110, 10, 120, 590) &&
               !screen.Black(880, 10, 890, 590);
    };
    EXPECT_TRUE(WaitFor([&] { return desktop->TracedFrames() > 5; })) << Output();
    desktop->ResizeGame(1000, 600);
    EXPECT_TRUE(WaitFor(shown));
    desktop->TakeFocus();
    desktop->GiveFocus();
    AwaitFrames(5);
    EXPECT_TRUE(WaitFor(shown));
    desktop->PressCloseButton();
    EXPECT_EQ(desktop->GameStatus(), 0) << Output();
}

TEST_F(Window, WhatWasPlayedReplaysWithoutAWindowAndInOne) {
    const std::string file = desktop->TraceFile() + ".rec";
    desktop->StartGame({"--window", "640x480", "--record", file});
    desktop->ChooseFirstLevel();
    desktop->Input("keydown Up");
    desktop->Key("space");
    desktop->TakeFocus();
    Rest(300);
    desktop->GiveFocus();
    desktop->Key("F6");
    for (int i = 0; i < 20; ++i)
        desktop->Input("mousemove_relative 30 -10");
    desktop->PressCloseButton();
    EXPECT_EQ(desktop->GameStatus(), 0) << Output();
    const std::string replay = BUILD_FOLDER "/tarnwick --replay " + file;
    EXPECT_EQ(std::system((replay + " --headless >/dev/null").c_str()), 0);
    EXPECT_EQ(std::system((replay + " --window 640x480 --from 20 >/dev/null").c_str()), 0);
}

TEST_F(Window, AReplayHearsNoKeyButEscape) {
    const std::string file = desktop->TraceFile() + ".rec", script = desktop->TraceFile() + ".txt";
    std::ofstream(script) << "300000ms tap SPACE\n";  // five minutes of pictures
    const std::string record = BUILD_FOLDER "/tarnwick --headless --script " + script + " --record " + file;
    EXPECT_EQ(std::system((record + " >/dev/null").c_str()), 0);
    desktop->StartGame({"--window", "640x480", "--replay", file});
    desktop->Key("space");
    desktop->Key("F1");
    EXPECT_TRUE(desktop->GameRuns());
    desktop->Key("Escape");
    EXPECT_EQ(desktop->GameStatus(), 0);
    EXPECT_EQ(desktop->TracedFrames(), 0u);
}
