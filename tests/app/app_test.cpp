// The whole game in-process on the test machine: keys at each poll, the modes and pictures that follow.
#include "app/app_tables.h"
#include "app/entry.h"
#include "app/front_end.h"
#include "app/game_loop.h"
#include "app/host_game.h"
#include "app/pump.h"
#include "camera/camera_tables.h"
#include "input/devices.h"
#include "interfaces/display.h"
#include "machine/game.h"
#include "machine/machine.h"
#include "math/world_planes.h"
#include "memory/shutdown.h"
#include "platform/cd_audio.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "records/levels.h"
#include "render/render_tables.h"
#include "session/watch.h"
#include "support/test_window.h"
#include "testing/test_machine.h"
#include "world/light_map.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace {

using Keys = std::vector<uint8_t>;

TEST(Levels, WearTheSkinWhosePicturesTheyHold) {
    for (const LevelRow& row : LEVEL_ROWS) {
        std::ifstream file(SOURCE_FOLDER "/content/levels/level" + std::to_string(row.number) + "/textures.toml");
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(text.find("\"zero_body\"") != std::string::npos, row.skin == LevelSkin::ZERO) << row.number;
        EXPECT_EQ(text.find("\"tarnwick_body\"") != std::string::npos, row.skin == LevelSkin::TARNWICK) << row.number;
    }
}

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

    // Holds these keys at the polls to come; what is held at the last one stays held.
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
            for (int key = 0; key < 256; ++key)
                DeviceKey(KeySource::Keyboard, static_cast<uint8_t>(key), false);
            for (const uint8_t key : polls_[poll_])
                DeviceKey(KeySource::Keyboard, key, true);
        }
        poll_++;
    }

    std::vector<Keys> polls_;
    size_t poll_ = 0;
};

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

float Apart(const Vec3& a, const Vec3& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// The same level compiled anew, then one under another number whose start has moved.
TEST_F(App, AWatchedLevelIsLoadedAnewWhereThePlayerStandsBehindTheOldPicture) {
    namespace fs = std::filesystem;
    const std::string data = SOURCE_FOLDER "/tests/levels/data";
    const fs::path scratch = fs::path(testing::TempDir()) / "watched";
    const std::string news = scratch / "news";
    fs::create_directories(scratch);
    for (const char* name : {"one", "two"})
        fs::create_directory_symlink(data, scratch / name);
    const auto tell = [&](const std::string& text) { std::ofstream(news) << text; };

    static std::vector<bool> blackPictures;  // of those shown
    blackPictures.clear();
    Machine machine = *CurrentMachine;
    machine.present = [](const Picture& picture) {
        const auto end = picture.pixels + picture.width * picture.height;
        blackPictures.push_back(std::count(picture.pixels, end, picture.pixels[0]) == end - picture.pixels);
    };
    const Machine* before = std::exchange(CurrentMachine, &machine);
    const HostGame* gameBefore = std::exchange(CurrentGame, &GameForHost);
    OpenWindow();
    StartWatch(news);
    Vec3 place{}, camera{};
    atPoll_ = [&](size_t poll) {
        DeviceKey(KeySource::Keyboard, DIK_UP, poll < 40);
        if (poll == 60) {
            place = PlayerActor.position;
            EXPECT_GT(Apart(place, LevelTable[0].start), 100);
            camera = CameraPos;
            LightLevel = 77;  // the file's own value must replace it
            tell("data " + (scratch / "one").string() + "\nlevel 1\nplace 0 1\nmusic 2\n");
        }
        if (poll == 61) {
            EXPECT_NE(LightLevel, 77);
            EXPECT_LT(Apart(PlayerActor.position, place), 1);
            EXPECT_LT(Apart(CameraPos, camera), 1);
            EXPECT_FALSE(TestMachine.overlayShown);
            LightLevel = 77;
            tell("data " + (scratch / "one").string() + "\nlevel 1\nplace 0 1\nmusic 2\nmy.map:10: a fault\n");
        }
        if (poll == 62) {
            EXPECT_EQ(LightLevel, 77) << "a fault alone loads nothing";
            EXPECT_TRUE(TestMachine.overlayShown);
            EXPECT_EQ(CdTrack, 2U) << "the music goes on";
            CdTrack = 98;
            tell("data " + (scratch / "two").string() + "\nlevel 2\nplace 0 2\nmusic 3\n");
        }
        if (poll == 63) {
            EXPECT_EQ(LoadedLevel, 1);
            EXPECT_EQ(CdTrack, static_cast<uint32_t>(LEVEL_ROWS[1].track)) << "the music begins anew";
            EXPECT_LT(Apart(PlayerActor.position, LevelTable[1].start), 1);
            EXPECT_FALSE(TestMachine.overlayShown);
        }
        DeviceKey(KeySource::Keyboard, DIK_ESCAPE, poll == 70);
    };
    EXPECT_EQ(RunGame(), MODE_LEAVE);
    CurrentMachine = before;
    CurrentGame = gameBefore;
    StartWatch({});
    const auto first = std::find(blackPictures.begin(), blackPictures.end(), false);
    const auto shown = std::find(blackPictures.rbegin(), blackPictures.rend(), false).base();
    EXPECT_GE(shown - first, 70);
    EXPECT_EQ(std::count(first, shown, true), 0);
}

}  // namespace
