// Shots in a corridor, with the real world, lights and collision below them.
#include "app/shots.h"

#include "character/character_tables.h"
#include "lights/light_slots.h"
#include "math/random.h"
#include "platform/timer.h"
#include "support/tiny_world.h"
#include "world/bsp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace {

constexpr float DEGREE = 3.14159265f / 180.0f;

// The player stands in a room that ends `ahead` in front of him.
class ShotsInARoom : public testing::Test {
protected:
    void SetUp() override { BuildRoom(100000); }

    void BuildRoom(float ahead) {
        world_.emplace();
        world_->AddLeaf(RoomSides({-1000, -1000, -1000}, {1000, 100000, ahead}));
        world_->Publish();
        ComputePolyFrames();
        GenerateNodeRadii();
        LoadLightSlots("there is no such file");
        ClearShots();
        FrameCount = 1;
        PlayerActor = {};
    }

    static long Flying() {
        return std::count_if(std::begin(Shots), std::end(Shots),
                             [](const Shot& shot) { return shot.state == SHOT_FLYING; });
    }

    static long Lights() {
        return std::count_if(std::begin(LightSlots), std::end(LightSlots),
                             [](const LightSlot& slot) { return slot.type != LIGHT_FREE; });
    }

    // As a level runs with the key held; the frames in which shots were fired.
    static std::vector<int> HoldKey(int frames) {
        std::vector<int> fired;
        for (int i = 0; i < frames; ++i, ++FrameCount) {
            const uint32_t before = RandState;
            FireShot();
            if (RandState != before) fired.push_back(FrameCount);
            UpdateShots();
        }
        return fired;
    }

    std::optional<TinyWorld> world_;
};

TEST_F(ShotsInARoom, AreFiredInTheFirstFrameAndEveryTwentiethWhileTheKeyIsHeld) {
    EXPECT_EQ(HoldKey(50), (std::vector<int>{1, 21, 41}));
    ClearShots();
    FrameCount = 1;
    EXPECT_EQ(HoldKey(22), (std::vector<int>{1, 21})) << "in the next level as well";
    for (const uint16_t nearWrap : {uint16_t{32760}, uint16_t{65530}}) {
        FrameCount = nearWrap;
        EXPECT_EQ(HoldKey(45).size(), 3u);
    }
}

TEST_F(ShotsInARoom, FlyAheadAndUpwardsForThirtyFrames) {
    PlayerActor.position = {1, 2, 3};
    FireShot();
    EXPECT_EQ(int32_t{LightSlots[1].type}, LIGHT_DYNAMIC);
    for (int frame = 1; frame <= 30; ++frame)
        UpdateShots();
    const Shot shot = Shots[0];
    EXPECT_EQ(shot.state, SHOT_FLYING);
    EXPECT_NEAR(shot.position.x, 1.0f, 0.1f);
    EXPECT_NEAR(shot.position.y, 2.0f + 2250.0f * std::sin(8.0f * DEGREE), 0.1f);
    EXPECT_NEAR(shot.position.z, 3.0f + 2250.0f * std::cos(8.0f * DEGREE), 0.1f);
    const Vec3 light = LightSlots[1].position;
    EXPECT_EQ(light.z, shot.position.z);
    UpdateShots();
    EXPECT_EQ(Flying() + Lights(), 0);
}

TEST_F(ShotsInARoom, EndAtTheFirstWall) {
    BuildRoom(400);
    FireShot();
    int frames = 0;
    for (; Flying() == 1; ++frames)
        UpdateShots();
    EXPECT_EQ(frames, 6) << "5 moves of 74.3 bring it within 50 of the wall";
    EXPECT_EQ(Lights(), 0);
    PlayerActor.position.z = 380.0f;
    FrameCount += 20;
    FireShot();
    UpdateShots();
    EXPECT_EQ(Flying(), 0);
    EXPECT_EQ(Shots[0].position.z, 380.0f) << "it ends before it moves";
}

TEST_F(ShotsInARoom, AFullTableFiresNothing) {
    for (Shot& shot : Shots)
        shot = {{}, {}, -1, 1000, SHOT_FLYING, 0};
    EXPECT_TRUE(HoldKey(1).empty());
    Shots[7].state = SHOT_FREE;
    while (SpawnLight() >= 0) {
    }
    EXPECT_TRUE(HoldKey(1).empty()) << "nor does one without a light";
    FreeLight(149);
    EXPECT_EQ(HoldKey(1).size(), 1u) << "and what fired nothing does not count";
    EXPECT_EQ(Shots[7].light, 149);
}

}  // namespace
