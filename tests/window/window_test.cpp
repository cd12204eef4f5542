// The real game in a real window, played with real keys.
#include "window/desktop.h"

#include "machine/settings.h"
#include "support/sound_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

namespace {

std::string ReadAll(const std::string& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Window : public testing::Test {
protected:
    void SetUp() override {
        if (!Desktop::Has("Xvfb") || !Desktop::Has("xdotool")) GTEST_SKIP() << "Xvfb or xdotool is not installed";
        desktop = std::make_unique<Desktop>();
    }

    void StartLevel() {
        desktop->StartGame({"--window", "640x480"});
        desktop->ChooseFirstLevel();
    }

    std::string Output() { return ReadAll(desktop->OutputFile()); }

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

namespace {

// Rows of the settings screen on a desktop with one display, from the top; actions from the bottom.
enum ActionRow { KEYS = -5, ORIGINAL, COMFORT, PHOTO, LEAVE };

int RowOf(Setting setting) {
    return static_cast<int>(setting) - (setting > Setting::Display ? 1 : 0);
}

class SettingsWindow : public Window {
protected:
    void StartWithSettings(std::vector<std::string> options = {}) {
        file = desktop->TraceFile() + ".settings";
        const std::vector<std::string> usual = {"--settings", file, "--data", SOURCE_FOLDER "/tests/levels/data"};
        options.insert(options.end(), usual.begin(), usual.end());
        desktop->StartGame(options);
    }

    // The top of the row that is marked; -1: no settings are shown.
    int MarkedRow() {
        const ScreenPicture screen = desktop->Screen();
        const auto found = std::find(screen.pixels.begin(), screen.pixels.end(), 0x4A3A18u);
        return found == screen.pixels.end() ? -1 : static_cast<int>(found - screen.pixels.begin()) / Desktop::WIDTH;
    }

    // Presses keys on the settings screen, where nothing else moves, until each is seen to act.
    void Press(const std::vector<std::string>& keys) {
        for (const std::string& key : keys) {
            const ScreenPicture before = desktop->Screen();
            desktop->Input("key " + key);
            EXPECT_TRUE(WaitFor([&] { return desktop->Screen().pixels != before.pixels; })) << key;
        }
    }

    void OpenSettings() {
        desktop->Input("key F10");
        EXPECT_TRUE(WaitFor([&] { return MarkedRow() >= 0; }));
    }

    void CloseSettings() {
        desktop->Input("key Escape");
        EXPECT_TRUE(WaitFor([&] { return MarkedRow() < 0; }));
        AwaitFrames(2);  // keys that were held are the game's again once a frame has seen them up
    }

    // Opens the settings and presses keys at a row.
    void At(int row, const std::vector<std::string>& keys) {
        OpenSettings();
        Press(std::vector<std::string>(static_cast<size_t>(std::abs(row)), row > 0 ? "Down" : "Up"));
        Press(keys);
    }

    bool Kept(const std::string& line) { return ("\n" + ReadAll(file)).find("\n" + line + "\n") != std::string::npos; }

    std::string file;
};

}  // namespace

TEST_F(SettingsWindow, EverySettingActsAtOnceAndIsKept) {
    const std::string sound = testing::TempDir() + "/played", disc = testing::TempDir() + "/disc";
    const std::string motion = testing::TempDir() + "/motion", shots = testing::TempDir() + "/shots";
    std::filesystem::create_directories(disc);
    std::filesystem::create_directories(shots);
    std::ofstream(testing::TempDir() + "/user-dirs.dirs") << "XDG_PICTURES_DIR=\"" << shots << "\"\n";
    for (const char* track : {"/track02.wav", "/track03.wav"})
        WriteSound(disc + track, WAV, 44100, 2, Triangle(441000, 2));
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", sound.c_str(), 1);
    StartWithSettings({"--window", "640x480", "--disc", disc, "--motion", "0,0,0:" + motion});
    desktop->ChooseFirstLevel();
    const auto silent = [&] {
        const std::string all = ReadAll(sound);
        return all.size() > 8192 && all.find_last_not_of('\0') < all.size() - 8192;
    };
    const auto between = [&] {
        const std::string all = ReadAll(motion);
        return std::count(all.begin(), all.end(), '\n') > 0 &&
               all.find(" 0.", all.size() - all.size() / 8) != std::string::npos;
    };
    const auto brightness = [&] {
        const std::vector<uint32_t> pixels = desktop->Screen().pixels;
        return std::accumulate(pixels.begin(), pixels.end(), uint64_t{0},
                               [](auto sum, auto pixel) { return sum + (pixel & 0xFF); });
    };
    // By how much the free camera turns while the mouse moves 160 counts to the right and down, in degrees.
    const auto turns = [&](double pitch, double yaw) {
        desktop->Input("mousedown 1");
        AwaitFrames(2);
        const auto turned = [&](const std::string& from) {
            const std::string to = Traced("\"angles\":[");
            const auto yawOf = [](const std::string& text) { return std::stod(text.substr(text.find(',') + 1)); };
            return std::abs(std::stod(to) - std::stod(from) - pitch) + std::abs(yawOf(to) - yawOf(from) - yaw) < 15;
        };
        const std::string before = Traced("\"angles\":[");
        for (int i = 0; i < 4; ++i)
            desktop->Input("mousemove_relative 40 40");
        const bool reached = WaitFor([&] { return turned(before); });
        desktop->Input("mouseup 1");
        return reached;
    };
    // Leaves the level and plays it again, until a screenshot is so wide.
    const auto draws = [&](const char* renderer, size_t width) {
        desktop->Key("Escape");
        return WaitFor([&] {
            for (const char* key : {"space", "F1", renderer, "p"})
                desktop->Key(key);
            const std::filesystem::directory_iterator files(shots);
            return std::any_of(begin(files), end(files), [&](const auto& shot) {
                const std::string png = ReadAll(shot.path());
                const auto byte = [&](size_t at) { return static_cast<uint8_t>(png[at]); };
                return png.size() > 24 && size_t{byte(18)} * 256 + byte(19) == width;
            });
        });
    };
    const auto bordered = [&] { return desktop->Screen().Black(240, 100, 320, 700); };  // twice 320 x 240 in it
    const auto always = [] { return true; };
    desktop->Key("F6");
    OpenSettings();
    const size_t frames = desktop->TracedFrames();
    const uint64_t bright = brightness();
    Press(std::vector<std::string>(static_cast<size_t>(RowOf(Setting::Brightness)), "Down"));
    Press({"Left", "Left"});
    EXPECT_LT(brightness(), bright * 98 / 100) << "the settings' own panel stays as bright";
    Rest(500);
    EXPECT_EQ(desktop->TracedFrames(), frames) << "the game stands still";
    CloseSettings();
    EXPECT_TRUE(Kept("brightness = 80"));
    const auto small = [&] { return desktop->GamePlace() == std::array{240, 100, 800, 600}; };
    const auto asAtFirst = [&] { return !silent() && !bordered() && small(); };
    const auto stopsInBackground = [&] {
        desktop->TakeFocus();
        const bool stopped = WaitFor(silent);
        desktop->GiveFocus();
        return stopped && WaitFor([&] { return !silent(); });
    };
    const auto runsByW = [&] {
        desktop->Input("key F5 keydown w");
        const bool ran = WaitFor([&] { return !Traced("\"vel\":").starts_with("[0,0,0]"); });
        desktop->Input("keyup w");
        return ran;
    };
    const auto turnsTwice = [&] { return turns(40, -40); };
    const auto turnsUp = [&] { return turns(-40, -40); };
    const auto drawsLarge = [&] { return draws("F11", 640); };
    const auto drawsTwice = [&] { return draws("F12", 1280); };
    const struct {
        int row;
        std::vector<std::string> keys, kept;  // lines of the file
        std::function<bool()> acts;
    } rows[] = {
        {RowOf(Setting::WindowSize), {"Left"}, {"window_size = 800x600"}, small},
        {RowOf(Setting::Scaling), {"Right"}, {"scaling = integer"}, bordered},
        {RowOf(Setting::SmoothPictures), {"Right"}, {"smooth = on"}, between},
        {RowOf(Setting::SteadyLamps), {"Return"}, {"steady_lamps = on"}, always},
        {RowOf(Setting::MouseSpeed), {"Right", "Right", "Right", "Right"}, {"mouse_speed = 200"}, turnsTwice},
        {RowOf(Setting::MouseInverted), {"Right"}, {"mouse_inverted = on"}, turnsUp},
        {RowOf(Setting::Volume), std::vector<std::string>(10, "Left"), {"volume = 0"}, silent},
        {RowOf(Setting::Volume), {"Right"}, {"volume = 10"}, [&] { return !silent(); }},
        {RowOf(Setting::MusicStops), {"Right"}, {"music_stops = on"}, stopsInBackground},
        {RowOf(Setting::SoftwareSize), {"Left"}, {"software_size = 640x480"}, drawsLarge},
        {RowOf(Setting::Board), {"Right"}, {"board = gpu"}, always},
        {RowOf(Setting::AcceleratorSize), {"Right", "Right"}, {"board_scale = 2"}, drawsTwice},
        {COMFORT, {"Return"}, {"board_scale = fit", "scaling = sharp", "volume = 10"}, always},
        {ORIGINAL, {"Return"}, {"board_scale = 1", "smooth = off", "volume = 100"}, asAtFirst},
        {KEYS, {"Return", "Return", "w", "Escape"}, {"key_run = W"}, runsByW},
        {KEYS, {"Return", "Up", "Up", "Return", "Escape"}, {"key_run = usual"}, always},
    };
    for (const auto& row : rows) {
        At(row.row, row.keys);
        CloseSettings();
        EXPECT_TRUE(WaitFor(row.acts)) << row.kept.front();
        for (const std::string& line : row.kept)
            EXPECT_TRUE(Kept(line)) << line << " in " << ReadAll(file);
    }
    At(LEAVE, {});
    desktop->Input("key Return");
    EXPECT_EQ(desktop->GameStatus(), 0);
    unsetenv("SDL_AUDIODRIVER");
}

TEST_F(SettingsWindow, FullScreenAndMinimisingWorkUnderAWindowManager) {
    if (!Desktop::Has("openbox")) GTEST_SKIP() << "openbox is not installed";
    desktop->StartManager();
    StartWithSettings({"--window", "640x480"});
    desktop->ChooseFirstLevel();
    const std::array<int, 4> plain = desktop->GamePlace(), whole = {0, 0, Desktop::WIDTH, Desktop::HEIGHT};
    EXPECT_EQ(plain[2], 640);
    const auto becomes = [&](const std::array<int, 4>& place) {
        return WaitFor([&] { return desktop->GamePlace() == place; });
    };
    desktop->Input("key alt+Return");
    EXPECT_TRUE(becomes(whole));
    desktop->Input("key alt+Return");
    EXPECT_TRUE(becomes(plain));
    At(RowOf(Setting::FullScreen), {"Right"});
    EXPECT_TRUE(becomes(whole));
    CloseSettings();
    EXPECT_TRUE(Kept("full_screen = on"));
    desktop->Input("search --name '^Tarnwick$' windowminimize");
    size_t frames = 0;
    EXPECT_TRUE(WaitFor([&] {
        frames = desktop->TracedFrames();
        Rest(500);
        return desktop->TracedFrames() == frames;
    }));
    // It sleeps: it neither wakes up often nor computes much.
    const auto switches = [&] {
        const std::string status = ReadAll(desktop->GameProcess() + "status");
        return std::stol(status.substr(status.find("\nvoluntary_ctxt_switches:") + 25));
    };
    const long before = switches();
    Rest(2000);
    EXPECT_LT(switches() - before, 100) << "one each 100 ms, and what the desktop says";
    desktop->Input("search --name '^Tarnwick$' windowactivate");
    EXPECT_TRUE(WaitFor([&] { return desktop->TracedFrames() > frames + 5; }));
}

TEST_F(SettingsWindow, PlaysOnWaylandAndFillsItsScreen) {
    if (!Desktop::Has("weston")) GTEST_SKIP() << "weston is not installed";
    desktop->StartWayland();
    StartWithSettings({"--window", "640x480"});
    desktop->ChooseFirstLevel();
    OpenSettings();
    const auto marked = [&] {  // pixels of the marked row
        const ScreenPicture screen = desktop->Screen();
        return std::count(screen.pixels.begin(), screen.pixels.end(), 0x4A3A18u);
    };
    const auto inWindow = marked();
    Press({"Right"});
    EXPECT_TRUE(WaitFor([&] { return marked() > inWindow * 2; })) << "full screen, and all the larger";
    Press({"Left"});
    EXPECT_TRUE(WaitFor([&] { return marked() < inWindow * 3; }));
    CloseSettings();
    EXPECT_TRUE(Kept("full_screen = off"));
    EXPECT_EQ(desktop->GamePlace()[2], 0) << "it has no window of X";
    At(LEAVE, {});
    desktop->Input("key Return");
    EXPECT_EQ(desktop->GameStatus(), 0);
}

TEST_F(SettingsWindow, SSwitchesSmoothPicturesAndCFreezesTheGameForPhotos) {
    StartWithSettings({"--window", "640x480"});
    desktop->ChooseFirstLevel();
    for (const char* line : {"smooth = on", "smooth = off"}) {
        desktop->Key("s");
        EXPECT_TRUE(WaitFor([&] { return Kept(line); })) << line;
    }
    desktop->Key("c");
    size_t frames = 0;
    EXPECT_TRUE(WaitFor([&] {
        frames = desktop->TracedFrames();
        Rest(500);
        return desktop->TracedFrames() == frames;
    }));
    const auto ahead = [&] {  // how far zero stands along the level
        const std::string place = Traced("\"pos\":[");
        return std::stod(place.substr(place.find(',', place.find(',') + 1) + 1));
    };
    const double place = ahead();
    const ScreenPicture before = desktop->Screen();
    desktop->Input("keydown Up");
    EXPECT_TRUE(WaitFor([&] { return desktop->Screen().pixels != before.pixels; }));
    desktop->Input("keyup Up");
    desktop->Input("key Escape");
    EXPECT_TRUE(WaitFor([&] { return desktop->TracedFrames() > frames; }));
    EXPECT_NEAR(ahead(), place, 1) << "what was pressed for the photo moves nobody";
}

#ifdef SCRIPTED_PAD
TEST_F(SettingsWindow, AControllerAloneLeadsFromTheTitleThroughALevelAndTheSettingsOut) {
    const std::string commands = desktop->TraceFile() + ".pad";
    std::ofstream pad(commands);
    setenv("SCRIPTED_PAD", commands.c_str(), 1);
    setenv("LD_PRELOAD", SCRIPTED_PAD, 1);
    StartWithSettings({"--window", "640x480"});
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
    press({RIGHT_SHOULDER});
    for (int row = 0; row < RowOf(Setting::Brightness); ++row)
        press({DOWN});
    press({LEFT, BACK});
    EXPECT_TRUE(WaitFor([&] { return Kept("brightness = 90"); }));
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
    EXPECT_NE(ReadAll(file).find(" 480x400\n"), std::string::npos) << ReadAll(file);
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
