#include "character/animation.h"

#include "formats/character_files.h"
#include "math/matrix_stack.h"
#include "math/vectors.h"
#include "platform/timer.h"
#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"

#include <array>
#include <cmath>

namespace {

constexpr std::array<double, 4> NO_TURN = {1.0, 0.0, 0.0, 0.0};
const std::array<double, 4> QUARTER_ABOUT_Y = {std::sqrt(0.5), 0.0, std::sqrt(0.5), 0.0};

const BoneTracks STILL = {{}, {{10, NO_TURN}}, {{10, {0.0, 0.0, 0.0}}}};
const BoneTracks TURNING = {{}, {{10, NO_TURN}, {110, QUARTER_ABOUT_Y}}, {{10, {0.0, 5.0, 0.0}}}};

std::vector<uint8_t> AnimationImage(uint32_t length, const std::vector<int32_t>& commands,
                                    const std::vector<BoneTracks>& bones) {
    return EncodeAnimation({length, CHARACTER_NO_HIDDEN_BLOCK, commands, bones});
}

// An actor of up to three bones whose one state plays one animation.
class Animation : public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
        mesh_ = {3, bones_, 0, 0, 0, 0};
        for (BoneRecord& bone : bones_) {
            TransformIdentity(bone.world);
            bone.rotation = {1.0, 0.0, 0.0, 0.0};
        }
        TransformIdentity(actor_.base);
        actor_.mesh = &mesh_;
        actor_.states = &state_;
        actor_.animations = entries_;
        FrameTicks = 1;
    }

    void Load(const std::vector<uint8_t>& image, AnimRecord& record) { LoadAnimation(FileOf(image), record, mesh_); }
    void Load(const std::vector<uint8_t>& image) { Load(image, records_[0]); }

    void PoseAt(uint32_t time) {
        actor_.layerTimes[0] = time;
        PoseActor(actor_);
    }

    BoneRecord bones_[3];
    MeshRecord mesh_;
    AnimRecord records_[2];
    AnimFileEntry entries_[3] = {{"a", &records_[0]}, {"b", &records_[1]}, {nullptr, nullptr}};
    StateRecord state_ = {0, nullptr, {}, {}, 0.5f, nullptr, {0, -1, -1}, {PLAY_LOOP, 0, 0}};
    Actor actor_{};
};

TEST_F(Animation, AListThatTheMatrixStackCannotWalkIsRefusedAsTheStackWould) {
    const auto refusal = [&](const std::vector<int32_t>& commands) {
        return FatalOf([&] { Load(AnimationImage(200, commands, {TURNING, STILL, STILL})); });
    };
    const std::vector<int32_t> deepest(MATRIX_STACK_SIZE, COMMAND_PUSH);
    std::vector<int32_t> tooDeep = deepest;
    tooDeep.push_back(COMMAND_PUSH);
    EXPECT_EQ(refusal({0, COMMAND_PUSH, COMMAND_POP, COMMAND_POP}), "1: Matrix stack underflow");
    EXPECT_EQ(refusal(tooDeep), "1: Matrix stack overflow.");
    EXPECT_EQ(refusal({0, 3}), "0: Not a valid animation file") << "a bone that the mesh does not have";
    EXPECT_EQ(refusal({0, -4}), "0: Not a valid animation file");
    EXPECT_EQ(refusal(deepest), "no fatal error");
    for (int frame = 0; frame < 3; ++frame)
        PoseAt(60);  // what a list leaves on the stack does not pile up
}

TEST_F(Animation, AClipMayHaveNoLengthFewTracksAndKeysOfOneTime) {
    const BoneTracks jump = {{0.0, 0.0, 0.0}, {{10, NO_TURN}, {60, NO_TURN}, {60, QUARTER_ABOUT_Y}}, {{10, {1, 2, 3}}}};
    Load(AnimationImage(0, {0}, {jump}));
    const char* const refused = "0: Not a valid animation file";
    EXPECT_EQ(FatalOf([&] { Load(AnimationImage(0, {1}, {jump}), records_[1]); }), refused) << "a bone without tracks";
    const BoneTracks back = {{}, {{60, NO_TURN}, {10, NO_TURN}}, {{10, {}}}};
    EXPECT_EQ(FatalOf([&] { Load(AnimationImage(0, {0}, {back}), records_[1]); }), refused) << "keys that go back";
    PoseAt(60);
    EXPECT_NEAR(bones_[0].rotation.y, 0.0, 1e-12);
    PoseAt(61);
    EXPECT_NEAR(bones_[0].rotation.w, std::sqrt(0.5), 1e-12);
    actor_.layerTimes[0] = 10;
    AdvanceActor(actor_);
    EXPECT_EQ(actor_.layerTimes[0], 25u) << "a loop that never comes back";

    Load(AnimationImage(200, {0, 1, 2}, {STILL, TURNING, STILL}));
    Load(AnimationImage(200, {0}, {jump}), records_[1]);
    state_.animations[1] = 1;
    actor_.layerTimes[1] = 61;
    PoseAt(110);
    EXPECT_NEAR(bones_[0].rotation.w, std::sqrt(0.5), 1e-12) << "from the second layer";
    EXPECT_NEAR(bones_[1].rotation.y, std::sqrt(0.5), 1e-12) << "from the first, the second has no tracks for it";
    EXPECT_NEAR(bones_[2].rotation.w, 1.0, 1e-12);
}

}  // namespace
