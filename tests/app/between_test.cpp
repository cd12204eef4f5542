// Pictures besides those of the game frames, in-process: held against the frames' own.
#include "app/app_tables.h"
#include "app/between.h"
#include "app/game_frame.h"
#include "app/game_loop.h"
#include "app/host_game.h"
#include "boards/boards.h"
#include "boards/cpu/cpu_board.h"
#include "character/character_tables.h"
#include "input/devices.h"
#include "interfaces/presentation.h"
#include "lights/light_slots.h"
#include "machine/game.h"
#include "machine/settings.h"
#include "math/vector_operators.h"
#include "memory/shutdown.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "records/character_records.h"
#include "support/test_window.h"
#include "testing/test_machine.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <utility>
#include <vector>

namespace {

constexpr uint8_t RENDERERS = 2;
constexpr int FRAMES = 40;

class Between : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        TestMachine.clockStep = 70;  // more than a frame: the host has no time for pictures of its own
        SetTestDataFolder(SOURCE_FOLDER "/tests/levels/data");
        CurrentGame = &GameForHost;
        CurrentBoard = &CpuBoard;
        SetSetting(Setting::SmoothPictures, 1);
        GameMode = MODE_PLAYING;
        CurrentLevel = UseGlide = 0;
        MainWindow = OpenTestWindow();
        testing::internal::CaptureStdout();
        ASSERT_TRUE(StartInput(nullptr, MainWindow, Input));
    }
    void TearDown() override {
        StopInput(Input);
        CurrentBoard = nullptr;
        const std::string output = testing::internal::GetCapturedStdout();
        if (HasFailure()) std::cout << output;
        ResetSettings();
        CurrentGame = before_;
    }

    static void Start(uint8_t accelerator) {
        UseGlide = accelerator;
        ASSERT_TRUE(StartGame());
    }

    void PlayFrame() {
        PollKeyboard(Input);
        PollMouse(Input);
        GameFrame();
    }

    static void Hold(uint8_t key, bool down = true) { DeviceKey(KeySource::Keyboard, key, down); }

    static std::vector<uint32_t> Shown() {
        const Picture* const picture = FrontPicture();
        return {picture->pixels, picture->pixels + static_cast<ptrdiff_t>(picture->width) * picture->height};
    }

    static std::vector<float> CharacterPoints() {
        std::vector<float> numbers;
        const MeshRecord& mesh = *PlayerActor.mesh;
        for (int i = 0; i < mesh.pointCount; ++i) {
            const ViewPoint& point = WorldGeometry.viewPoints[mesh.firstPoint + i];
            numbers.insert(numbers.end(), {point.x, point.y, point.z, IntensityCache[mesh.firstPoint + i]});
        }
        return numbers;
    }

private:
    const HostGame* const before_ = CurrentGame;
};

TEST_F(Between, TheWayBeginsAndEndsWithThePicturesOfTheFramesAndLeavesTheCharacterAsItWas) {
    for (uint8_t accelerator = 0; accelerator < RENDERERS; ++accelerator) {
        Start(accelerator);
        std::vector<uint32_t> last;
        int middles = 0;
        for (int frame = 1; frame <= FRAMES; ++frame) {
            Hold(DIK_UP, frame > 20);
            Hold(DIK_LEFT, frame > 25);
            Hold(DIK_RCONTROL, frame > 22);
            PlayFrame();
            const std::vector<uint32_t> own = Shown();
            const std::vector<float> points = CharacterPoints();
            if (frame > 20) {
                EXPECT_TRUE(DrawBetween(1.0f));
                EXPECT_TRUE(Shown() == own) << frame;
                DrawBetween(0.0f);
                EXPECT_TRUE(Shown() == last) << frame;
                DrawBetween(0.5f);
                middles += Shown() != own && Shown() != last;
                EXPECT_EQ(CharacterPoints(), points) << frame;
            }
            last = own;
        }
        EXPECT_EQ(middles, FRAMES - 20);
        SystemShutdown();
    }
}

// A machine on which each picture takes some time.
uint32_t presented, pictureTime, passed;  // the latter two in ms
const Machine* beneath;

class SlowBetween : public Between {
protected:
    void SetUp() override {
        Between::SetUp();
        beneath = CurrentMachine;
        machine_ = *beneath;
        machine_.milliseconds = [] { return beneath->milliseconds() + passed; };
        machine_.present = [](const Picture&) {
            ++presented;
            passed += pictureTime;
        };
        CurrentMachine = &machine_;
        TestMachine.clockStep = 1;
        Start(0);
        PlayFrames(14, 0);
    }
    void TearDown() override {
        SystemShutdown();
        CurrentMachine = beneath;
        Between::TearDown();
    }

    // How many pictures were presented in the last of these frames.
    uint32_t PlayFrames(int count, uint32_t timeOfAPicture) {
        pictureTime = timeOfAPicture;
        for (int frame = 0; frame < count; ++frame) {
            presented = 0;
            PlayFrame();
        }
        return presented;
    }

private:
    Machine machine_{};
};

TEST_F(SlowBetween, SmoothPicturesTakeThePlaceOfTheFramesOwnAndNeverSlowTheGame) {
    EXPECT_EQ(PlayFrames(1, 0), 4u) << "64 ms, a picture each 16";
    PlayFrames(3, 20);
    EXPECT_EQ(PlayFrames(1, 20), 2u);
    EXPECT_EQ(FrameTicks, 4u);
    EXPECT_EQ(PlayFrames(3, 90), 1u);
    EXPECT_EQ(PlayFrames(20, 0), 4u) << "what took long once is tried again";
    SetSetting(Setting::SmoothPictures, 0);
    SetSetting(Setting::SteadyLamps, 1);
    EXPECT_EQ(PlayFrames(2, 0), 1u) << "a frame is not shown with its own lamps before";
    Hold(DIK_UP);
    PlayFrames(8, 0);
    float pixel[2], end[2];
    const float ahead[] = {3837, -1050, 14200};
    ASSERT_TRUE(PointOnScreen(ahead, pixel));
    DrawBetween(1.0f);
    ASSERT_TRUE(PointOnScreen(ahead, end));
    EXPECT_EQ(pixel[1], end[1]) << "steady lamps alone show nothing later";
}

TEST_F(Between, NothingIsBetweenFramesThatDoNotBelongTogether) {
    for (int game = 0; game < 2; ++game) {
        if (game > 0) SystemShutdown();
        Start(0);
        PlayFrame();
        EXPECT_FALSE(DrawBetween(0.5f)) << "the first frame";
        const std::vector<uint32_t> own = Shown();
        EXPECT_TRUE(DrawBetween(1.0f) && Shown() == own) << "a frame alone";
        for (int frame = 0; frame < 20; ++frame)
            PlayFrame();
    }
    EXPECT_TRUE(DrawBetween(0.5f));
    const std::pair<uint8_t, const char*> rows[] = {{DIK_F6, "another camera"}, {DIK_F5, "back"}, {DIK_W, "outlines"}};
    for (const auto& [key, what] : rows) {
        Hold(key);
        PlayFrame();
        Hold(key, false);
        EXPECT_FALSE(DrawBetween(0.5f)) << what;
        PlayFrame();
        EXPECT_EQ(DrawBetween(0.5f), key != DIK_W) << what;
    }
    Hold(DIK_W);
    PlayFrame();
    Hold(DIK_W, false);
    PlayerActor.position.x += 500;
    PlayFrame();
    EXPECT_FALSE(DrawBetween(0.5f)) << "a step that is no movement";
    HostCamera camera = {{3837, -1000, 12500}, {-10, 180, 0}};
    GameMode = MODE_LEAVE;
    EXPECT_FALSE(DrawFrom(camera, {0, 0, 0})) << "the level is left";
    SystemShutdown();
}

TEST_F(Between, LightsAreOnTheirWay) {
    Start(0);
    for (int frame = 0; frame < 20; ++frame)
        PlayFrame();
    const int32_t slot = SpawnLight();
    const Vec3 from = PlayerActor.position, middle = from + Vec3{100, 0, 0}, to = from + Vec3{200, 0, 0};
    LightSlots[slot].position = from;
    LightSlots[slot].intensity = 0.5f;
    PlayFrame();
    LightSlots[slot].position = to;
    LightSlots[slot].intensity = 1.5f;
    PlayFrame();
    ASSERT_TRUE(DrawBetween(0.5f));
    const auto bytes = [] {
        return std::vector<int8_t>(WorldGeometry.pointLight, WorldGeometry.pointLight + WorldGeometry.file.points);
    };
    const std::vector<int8_t> drawn = bytes();
    LightSlots[slot].position = middle;
    LightSlots[slot].intensity = 1.0f;
    RaiseLightBytes(LightSlots);
    int raised = 0;
    for (uint32_t i = 0; i < WorldGeometry.file.points; ++i) {
        if (WorldGeometry.pointLightStamps[i] != FrameCount) continue;
        EXPECT_EQ(WorldGeometry.pointLight[i], drawn[i]) << i;
        ++raised;
    }
    EXPECT_GT(raised, 10);
    SystemShutdown();
}

// Of what is shown, how much the sum of all red parts changes from frame to frame while zero stands in a lamp's light.
uint64_t Unrest(const std::function<void()>& playFrame, const std::function<std::vector<uint32_t>()>& shown) {
    uint64_t unrest = 0;
    int64_t last = 0;
    for (int frame = 0; frame < 60; ++frame) {
        playFrame();
        DrawBetween(1.0f);
        int64_t sum = 0;
        for (const uint32_t pixel : shown())
            sum += pixel >> 16;
        if (frame > 30) unrest += static_cast<uint64_t>(std::abs(sum - last));
        last = sum;
    }
    return unrest;
}

TEST_F(Between, SteadyLampsFlickerLess) {
    constexpr int NO_LAMP = 0, LAMP = 1, STEADY_LAMP = 2;
    uint64_t unrest[3];
    for (int run = 0; run < 3; ++run) {
        SetSetting(Setting::SteadyLamps, run == STEADY_LAMP ? 1 : 0);
        Start(0);
        LightSlots[3] = {};
        LightSlots[3].type = run == NO_LAMP ? LIGHT_FREE : LIGHT_FLICKER;
        LightSlots[3].position = PlayerActor.position + Vec3{60, 0, -60};
        LightSlots[3].radius = 300;
        LightSlots[3].radiusSquared = 90000;
        unrest[run] = Unrest([this] { PlayFrame(); }, Shown);
        SystemShutdown();
    }
    // zero breathes, too
    EXPECT_GT(unrest[LAMP] - unrest[NO_LAMP], 2 * (unrest[STEADY_LAMP] - unrest[NO_LAMP]))
        << unrest[LAMP] << " " << unrest[STEADY_LAMP] << " " << unrest[NO_LAMP];
}

TEST_F(Between, APhotoIsTakenAheadOfTheCamera) {
    Start(0);
    for (int frame = 0; frame < 3; ++frame)
        PlayFrame();
    HostCamera camera = {{3837, -1000, 12500}, {0, 180, 0}};
    ASSERT_TRUE(DrawFrom(camera, {0, 0, 0}));
    const std::vector<uint32_t> far = Shown();
    float pixel[2];
    EXPECT_FALSE(PointOnScreen({3837, -1000, 12600}, pixel)) << "behind";
    ASSERT_TRUE(PointOnScreen({3837, -1000, 12400}, pixel));
    EXPECT_NEAR(pixel[0], 160, 0.1);
    EXPECT_NEAR(pixel[1], 120, 0.1);
    ASSERT_TRUE(DrawFrom(camera, {0, 10, 50}));
    EXPECT_NEAR(camera.position[1], -990, 0.1);
    EXPECT_NEAR(camera.position[2], 12450, 0.1);
    EXPECT_NE(Shown(), far);
    SystemShutdown();
}

}  // namespace
