// The pool use that the checker of the data works out, compared with that of a level that the game has loaded.
#include "app/app_tables.h"
#include "app/game_loop.h"
#include "datacheck/pool_replay.h"
#include "formats/files.h"
#include "formats/texture_file.h"
#include "memory/pool.h"
#include "memory/shutdown.h"
#include "platform/input.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

namespace {

const std::filesystem::path DATA = SOURCE_FOLDER "/tests/levels/data";

double FreeAfterReplay(int number) {
    const std::filesystem::path folder = DATA / ("game/data/levels/level" + std::to_string(number));
    const std::filesystem::path world = folder / (std::string(LevelRowOf(number).world) + ".bgm");
    const TextureFile textures = DecodeTextureFile(ReadWholeFile(folder / "texture.bin"), "texture.bin");
    const PoolUse use = ReplayPool(ReadWorldFile(world), textures.slots.size(), textures.pages.size(),
                                   CharacterBytes(DATA / "game/data/anims"));
    EXPECT_EQ(use.failedFor, nullptr);
    return static_cast<double>(use.free);
}

double FreeAfterLoading(int number) {
    UseTestMachine();
    SetTestDataFolder(DATA);
    CurrentLevel = number - 1;
    UseGlide = 0;
    MainWindow = OpenTestWindow();
    EXPECT_TRUE(StartInput(nullptr, MainWindow, Input));
    testing::internal::CaptureStdout();
    EXPECT_TRUE(StartGame());
    const double free = PoolFreeTotal();
    SystemShutdown();
    StopInput(Input);
    testing::internal::GetCapturedStdout();
    return free;
}

TEST(PoolReplay, LeavesWhatTheGameHasLeft) {
    // The replay does not follow where blocks lie: alignment, and the rest of a hole, may each cost a granule more.
    for (const int number : {1, 2})
        EXPECT_NEAR(FreeAfterReplay(number), FreeAfterLoading(number), 4 * POOL_GRANULE) << "level " << number;
}

}  // namespace
