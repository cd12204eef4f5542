// When a shot is fired and when not. How it flies is tested by the recordings.
#include "app/shots.h"

#include "character/character_tables.h"
#include "lights/light_slots.h"
#include "math/random.h"
#include "platform/timer.h"
#include "support/tiny_world.h"
#include "world/bsp.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class ShotsInARoom : public testing::Test {
protected:
    void SetUp() override {
        world_.AddLeaf(RoomSides({-1000, -1000, -1000}, {1000, 100000, 100000}));
        world_.Publish();
        GenerateNodeRadii();
        LoadLightSlots("there is no such file");
        ClearShots();
        FrameCount = 1;
        PlayerActor = {};
    }

    // Plays frames with the key held; returns those in which shots were fired.
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

    TinyWorld world_;
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
