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

// A bone that never moves.
BoneTracks StillBone(double x = 0.0, double y = 0.0, double z = 0.0) {
    return {{x, y, z}, {{10, NO_TURN}}, {{10, {0.0, 0.0, 0.0}}}};
}

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
        actor_.states = states_;
        actor_.animations = entries_;
        states_[0] = {0, &transition_, {}, {}, 0.5f, nullptr, {0, -1, -1}, {PLAY_ONCE, 0, 0}};
        states_[1] = {0,    &stay_,  {0.0f, -0.9f, 2.0f}, {0.0f, 23.4f, 0.0f},
                      0.5f, nullptr, {0, -1, -1},         {PLAY_ONCE, 0, 0}};
        RotationFromAngles(0.0f, 0.0f, 0.0f, actor_.rotation);
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
    StateTransition transition_ = {0, 1, 40, -1};
    StateTransition stay_ = {0, -1, 0, 10};
    StateRecord states_[2];
    Actor actor_{};
};

std::vector<BoneTracks> OneTurningBone() {
    return {{{0.0, 10.0, 0.0}, {{10, NO_TURN}, {110, QUARTER_ABOUT_Y}}, {{10, {0.0, 5.0, 0.0}}, {60, {0.0, 9.0, 0.0}}}},
            StillBone(),
            StillBone()};
}

TEST_F(Animation, KeysInterpolateAndHoldAtBothEnds) {
    Load(AnimationImage(200, {0}, OneTurningBone()));
    const auto yaw = [&] { return 2.0 * std::atan2(bones_[0].rotation.y, bones_[0].rotation.w); };
    PoseAt(60);
    EXPECT_NEAR(yaw(), 3.14159265 / 4.0, 1e-6);
    EXPECT_NEAR(bones_[0].position[1], 9.0, 1e-12);
    PoseAt(35);
    EXPECT_NEAR(bones_[0].position[1], 7.0, 1e-12);
    PoseAt(4);
    EXPECT_NEAR(yaw(), 0.0, 1e-12);
    PoseAt(190);
    EXPECT_NEAR(yaw(), 3.14159265 / 2.0, 1e-6);
    EXPECT_NEAR(bones_[0].position[1], 9.0, 1e-12);
}

TEST_F(Animation, AListThatTheMatrixStackCannotWalkIsRefusedAsTheStackWould) {
    const auto refusal = [&](const std::vector<int32_t>& commands) {
        try {
            Load(AnimationImage(200, commands, OneTurningBone()));
        } catch (const FatalThrown& fatal) {
            EXPECT_FALSE(fatal.path.empty());
            return std::to_string(fatal.code) + fatal.text;
        }
        return std::string();
    };
    const std::vector<int32_t> deepest(MATRIX_STACK_SIZE, COMMAND_PUSH);
    std::vector<int32_t> tooDeep = deepest;
    tooDeep.push_back(COMMAND_PUSH);
    EXPECT_EQ(refusal({0, COMMAND_PUSH, COMMAND_POP, COMMAND_POP}), "1Matrix stack underflow");
    EXPECT_EQ(refusal(tooDeep), "1Matrix stack overflow.");
    EXPECT_EQ(refusal({0, 3}), "0Not a valid animation file") << "a bone that the mesh does not have";
    EXPECT_EQ(refusal({0, -4}), "0Not a valid animation file");
    EXPECT_EQ(refusal(deepest), "");
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
    states_[0].playModes[0] = PLAY_LOOP;
    actor_.layerTimes[0] = 10;
    AdvanceActor(actor_);
    EXPECT_EQ(actor_.layerTimes[0], 25u) << "a loop that never comes back";

    Load(AnimationImage(200, {0, 1, 2}, {StillBone(), OneTurningBone()[0], StillBone()}));
    Load(AnimationImage(200, {0}, {jump}), records_[1]);
    states_[0].animations[1] = 1;
    actor_.layerTimes[1] = 61;
    PoseAt(110);
    EXPECT_NEAR(bones_[0].rotation.w, std::sqrt(0.5), 1e-12) << "from the second layer";
    EXPECT_NEAR(bones_[1].rotation.y, std::sqrt(0.5), 1e-12) << "from the first, the second has no tracks for it";
    EXPECT_NEAR(bones_[2].rotation.w, 1.0, 1e-12);
}

TEST_F(Animation, ABlendStartsFromTheLastUnblendedPoseAndStoresNothing) {
    Load(AnimationImage(200, {0}, OneTurningBone()));
    PoseAt(110);
    const Quat stored = bones_[0].rotation;
    actor_.blendDuration = 90;
    PoseAt(10);
    EXPECT_NEAR(bones_[0].world.r[0], 0.0, 1e-6);  // still the old pose
    PoseAt(50);
    EXPECT_NEAR(std::acos(bones_[0].world.r[0]), 3.14159265 / 4.0, 1e-6);  // half way to key 0
    EXPECT_EQ(bones_[0].rotation.w, stored.w);
    actor_.blendDuration = 210;
    PoseAt(110);
    EXPECT_NEAR(std::acos(bones_[0].world.r[0]), 3.14159265 / 4.0, 1e-6);  // to key 0 until key 1 is past
    actor_.blendDuration = 90;
    PoseAt(90);
    EXPECT_EQ(actor_.blendDuration, 0);
    EXPECT_NE(bones_[0].rotation.w, stored.w);
}

TEST_F(Animation, ClocksLoopHoldAndFollowTheTransitionOfTheStateThatEnded) {
    Load(AnimationImage(400, {0}, OneTurningBone()));
    states_[0].playModes[0] = PLAY_LOOP;
    FrameTicks = 2;
    actor_.layerTimes[0] = 396;
    AdvanceActor(actor_);
    EXPECT_EQ(actor_.layerTimes[0], 16u);

    states_[0].playModes[0] = PLAY_ONCE;
    actor_.layerTimes[0] = 396;
    actor_.onContact = 1;
    AdvanceActor(actor_);
    EXPECT_EQ(actor_.state, 1);
    EXPECT_EQ(actor_.layerTimes[0], 10u);
    EXPECT_EQ(actor_.blendDuration, 40);
    EXPECT_EQ(actor_.ticksInState, 2);
    AdvanceActor(actor_);
    actor_.layerTimes[0] = 399;
    AdvanceActor(actor_);
    AdvanceActor(actor_);
    EXPECT_EQ(actor_.layerTimes[0], 400u);  // no next state: held
    EXPECT_EQ(actor_.state, 1);
}

TEST_F(Animation, AnImpulseStandsAloneInItsFrameAndTheGroundDriveNeedsGround) {
    Load(AnimationImage(100, {0}, OneTurningBone()));
    states_[0].drive = states_[1].drive;
    FrameTicks = 4;
    actor_.onContact = 1;
    actor_.layerTimes[0] = 95;
    AdvanceActor(actor_);
    EXPECT_EQ(actor_.state, 1);
    EXPECT_NEAR(actor_.velocity.y, 23.4f, 1e-5f);
    EXPECT_NEAR(actor_.velocity.z, 0.0f, 1e-5f);
    actor_.onContact = 0;
    actor_.localMove = {0.0f, 0.0f, 0.1f};
    AdvanceActor(actor_);
    EXPECT_NEAR(actor_.velocity.y, 23.4f - 3.6f, 1e-4f);
    EXPECT_NEAR(actor_.velocity.z, 0.4f, 1e-5f);
    EXPECT_EQ(actor_.localMove.z, 0.0f);
}

}  // namespace
