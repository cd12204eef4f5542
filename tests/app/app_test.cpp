// The whole game in-process on the test machine: keys at each poll, the modes and pictures that follow.
#include "app/app_tables.h"
#include "app/debug_keys.h"
#include "app/entry.h"
#include "app/front_end.h"
#include "app/game_loop.h"
#include "app/pump.h"
#include "app/texture_cycle.h"
#include "camera/camera_tables.h"
#include "input/devices.h"
#include "interfaces/display.h"
#include "interfaces/presentation.h"
#include "math/vectors.h"
#include "memory/system.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "render/render_tables.h"
#include "support/test_window.h"
#include "testing/test_machine.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <tuple>

namespace {

using Keys = std::vector<uint8_t>;

class App : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        SetTestDataFolder(SOURCE_FOLDER "/tests/levels/data");
        TestMachine.onPoll = [this] { Poll(); };
        std::fill(std::begin(KeyState), std::end(KeyState), uint8_t{0});
        GameMode = MODE_LEAVE;
        AppActive = 1;
        CurrentLevel = 0;
        UseGlide = 0;
        testing::internal::CaptureStdout();
    }
    void TearDown() override {
        StopInput(Input);
        testing::internal::GetCapturedStdout();
    }

    void OpenWindow() {
        MainWindow = OpenTestWindow();
        ASSERT_TRUE(StartInput(nullptr, MainWindow, Input));
    }

    // At the polls to come; what is held at the last one stays held.
    void HoldAtPolls(const std::vector<Keys>& keys) {
        polls_ = keys;
        poll_ = 0;
    }

    uint8_t FrontEndWithKeys(std::vector<Keys> keys) {
        keys.insert(keys.begin(), Keys{});
        HoldAtPolls(keys);
        const uint8_t mode = RunFrontEnd();
        EXPECT_EQ(poll_, keys.size()) << "it ended early";
        return mode;
    }

    std::function<void(size_t)> atPoll_;

private:
    void Poll() {
        if (poll_ > 5000) throw std::runtime_error("the program polls for ever");
        if (atPoll_) atPoll_(poll_);
        if (poll_ < polls_.size()) {
            for (int key = 0; key < 256; key++)
                DeviceKey(KeySource::Keyboard, static_cast<uint8_t>(key), false);
            for (const uint8_t key : polls_[poll_])
                DeviceKey(KeySource::Keyboard, key, true);
        }
        poll_++;
    }

    std::vector<Keys> polls_;
    size_t poll_ = 0;
};

uint64_t PictureSum() {
    const Picture* picture = FrontPicture();
    return std::accumulate(picture->pixels, picture->pixels + picture->width * picture->height, uint64_t{0});
}

TEST_F(App, FrontEndLeadsToALevelAndARendererOrOut) {
    constexpr uint8_t DIK_F9 = 0x43, DIK_F10 = 0x44;
    struct Row {
        std::vector<Keys> polls;
        uint8_t mode;
        int level, accelerator;
    };
    const Row rows[] = {
        {{{DIK_SPACE, DIK_ESCAPE}, {DIK_F1}, {DIK_F11}}, MODE_START, 0, 0},
        {{{DIK_SPACE}, {DIK_F7}, {DIK_F11, DIK_F12}}, MODE_START, 6, 1},
        {{{DIK_SPACE}, {DIK_F8, DIK_F4}, {}, {DIK_F11}}, MODE_START, 3, 0},
        {{{DIK_SPACE}, {DIK_F8}, {DIK_F9}, {DIK_F10}, {DIK_F11}, {DIK_F2}, {DIK_F11}}, MODE_START, 1, 0},
        {{{DIK_SPACE}, {DIK_F12, DIK_F1}, {DIK_F12}, {}, {DIK_F12}}, MODE_START, 7, 1},  // F12 is still held
        {{{DIK_SPACE}, {DIK_ESCAPE}, {}, {DIK_SPACE}, {DIK_F7}, {DIK_ESCAPE}, {}, {DIK_SPACE}, {}, {DIK_F4}, {DIK_F11}},
         MODE_START,
         3,
         0},
        {{{DIK_ESCAPE}}, MODE_QUIT, 3, 0},
        {{{DIK_LWIN}}, MODE_QUIT, 3, 0},
    };
    OpenWindow();
    for (const Row& row : rows) {
        EXPECT_EQ(FrontEndWithKeys(row.polls), row.mode);
        EXPECT_EQ(CurrentLevel, row.level);
        EXPECT_EQ(UseGlide, row.accelerator) << row.level;
    }
}

TEST_F(App, FrontEndShowsItsPicturesForEightSecondsEach) {
    OpenWindow();
    for (const uint32_t start : {0u, 0xFFFFF000u}) {  // the clock wraps
        SetTestClock(start);
        TestMachine.clockStep = 500;
        std::vector<uint64_t> shown;
        atPoll_ = [&](size_t poll) {
            if (poll > 0 && (shown.empty() || shown.back() != PictureSum())) shown.push_back(PictureSum());
        };
        std::vector<Keys> keys(36);
        keys.push_back({DIK_ESCAPE});
        FrontEndWithKeys(keys);
        ASSERT_EQ(shown.size(), 5u);
        EXPECT_EQ(shown[4], shown[0]);
    }
}

TEST_F(App, EscapeLeadsOutOfTheLevelAndAWindowsKeyOutOfTheProgram) {
    HoldAtPolls(
        {{}, {DIK_SPACE}, {DIK_F1}, {DIK_F11}, {}, {DIK_ESCAPE}, {}, {DIK_SPACE}, {DIK_F2}, {DIK_F11}, {DIK_APPS}});
    EXPECT_EQ(WinMain(nullptr, nullptr, nullptr, SW_SHOW), 0);
    EXPECT_EQ(LoadedLevel, 1);
    EXPECT_EQ(GameMode, MODE_QUIT);
    EXPECT_TRUE(TestMachine.messageBoxes.empty());
}

TEST_F(App, EndsWhenNeitherFrontEndNorGameFindsADisplay) {
    SetScreenModes({});
    EXPECT_EQ(WinMain(nullptr, nullptr, nullptr, SW_SHOW), 0);
    EXPECT_EQ(TestMachine.messageBoxes,
              (std::vector<std::string>{"Unable to initialize DirectDraw", "Unable to initialize game."}));
}

TEST_F(App, AQuitMessageEndsTheGameAndALevelOutsideTheTableIsTheFirst) {
    OpenWindow();
    PostQuitMessage(0);
    CurrentLevel = INT32_MAX;
    EXPECT_EQ(RunGame(), MODE_PLAYING);
    EXPECT_EQ(LoadedLevel, 0);
}

TEST_F(App, ALevelBeginsWithNormalsForZeroAndWithoutTheAcceleratorsFog) {
    OpenWindow();
    FogNearDistance = 77;
    ASSERT_TRUE(StartGame());
    EXPECT_EQ(FogNearDistance, 0);
    const Vec3& normal = WorldGeometry.points[PlayerMesh.firstPoint].normal;
    const Vec3 before = normal;
    GenerateVertexNormals();
    EXPECT_EQ(std::memcmp(&normal, &before, sizeof before), 0);
    SystemShutdown();
}

TEST_F(App, StampsAreClearedWhenTheFrameCounterWrapsAndPassesItsMiddle) {
    OpenWindow();
    const auto expectAt = [](int count, int stamps) {
        EXPECT_EQ(FrameCount, count);
        const WorldGeometryTables& world = WorldGeometry;
        for (const uint32_t stamp : {uint32_t{world.leaves[0].frameStamp}, world.viewPoints[0].transformStamp,
                                     world.viewPoints[0].projectionStamp, uint32_t{world.pointLightStamps[0]},
                                     uint32_t{world.characterStamps[0]}, uint32_t{world.cornerLightStamps[0]},
                                     uint32_t{IntensityCacheStamps[0]}})
            EXPECT_EQ(stamp, static_cast<uint32_t>(stamps));
    };
    atPoll_ = [&](size_t poll) {
        if (poll == 1) FrameCount = 0xFFFF;
        if (poll == 2) expectAt(0, 0xFFFF);
        if (poll == 2) FrameCount = 0x7FFF;
        if (poll == 3) expectAt(0x8000, 0);
        DeviceKey(KeySource::Keyboard, DIK_ESCAPE, poll == 3);
    };
    EXPECT_EQ(RunGame(), MODE_LEAVE);
}

TEST_F(App, AnExceptionInAStepEndsTheProcess) {
    OpenWindow();
    GameMode = MODE_PLAYING;
    const auto step = [] { throw std::runtime_error("step"); };
    EXPECT_EXIT(RunMessagePump(MODE_PLAYING, step), testing::ExitedWithCode(EXCEPTION_UNHANDLED & 0xFF), "");
}

TEST_F(App, DevelopmentKeysStepDistancesWhileHeldAndLightOnceAStroke) {
    struct Row {
        uint8_t key;
        int frames;
        float& value;
        float before, after;
    };
    const Row rows[] = {
        {DIK_O, 3, FarDistance, 5000, 5300},     {DIK_L, 3, FarDistance, 150, 1},
        {DIK_I, 3, FadeDistance, 4000, 4300},    {DIK_K, 3, FadeDistance, 1150, 1000},  // not below the near distance
        {DIK_U, 3, FogNearDistance, 1000, 1300}, {DIK_J, 20, FogNearDistance, 1000, -1000},
        {DIK_Y, 3, LightLevel, 1, 0.98f},        {DIK_H, 3, LightLevel, 1, 1.02f},
        {DIK_T, 3, LightContrast, 1, 0.98f},     {DIK_G, 3, LightContrast, 1, 1.02f},
    };
    OpenWindow();
    for (const Row& row : rows) {
        FogNearDistance = 1000;
        row.value = row.before;
        HoldAtPolls({{}, {row.key}});
        for (int frame = 0; frame <= row.frames; frame++) {
            PollKeyboard(Input);
            DebugKeys();
        }
        EXPECT_FLOAT_EQ(row.value, row.after) << +row.key;
    }
}

TEST_F(App, TexturesTurnEverySevenTicksAndStepOverAnEqualNeighbour) {
    using Entries = std::array<uint8_t, 5>;
    const std::tuple<uint32_t, uint8_t, Entries> rows[] = {
        {7, 15, {12, 12, 13, 14, 12}}, {7, 15, {13, 13, 14, 12, 13}},  {7, 15, {14, 14, 12, 13, 14}},
        {6, 15, {14, 14, 12, 13, 14}}, {12, 15, {12, 12, 13, 14, 12}},  // once, however long the frame
        {7, 14, {12, 12, 13, 14, 12}}};                                 // a level with few textures
    std::array<uint8_t, 256> remap;
    TextureRemap = remap.data();
    TextureCount = 15;
    FrameTicks = 12;  // whatever an earlier test left counted
    TextureCycle();
    std::iota(remap.begin(), remap.end(), uint8_t{0});
    remap[11] = 10;
    for (const auto& [ticks, textures, expected] : rows) {
        FrameTicks = ticks;
        TextureCount = textures;
        TextureCycle();
        EXPECT_EQ((Entries{remap[10], remap[11], remap[12], remap[13], remap[14]}), expected);
    }
    TextureRemap = nullptr;
}

}  // namespace
