// Runs the character with the game itself, on a flat floor without end: states, drives, blends and skinning, but no
// picture. What is measured here is what players see.
//
// The game's tables are global, so there is one stage at a time.
#pragma once

#include "motion/player_files.h"
#include "player/player.h"

#include <array>
#include <filesystem>
#include <vector>

// Height of the ground in the frame of the actor's position: minus the recipe's `origin`.
constexpr float GROUND = -110.0f;

constexpr float DOWN = 1.5f;  // a sole counts as down within this distance of the ground, units

// The character in one frame, in the frame of the actor's position: y up, facing -z, the right hand at -x.
struct Moment {
    int32_t state = 0;
    uint32_t time = 0;  // time in its animation
    bool blends = false;
    bool onGround = false;
    Vec3 travel{};  // how far the actor moved over the floor since the moment before
    std::vector<Vec3> points;
    std::array<Transform, BONES_MAX> bones{};
};

struct FrameInput {
    uint16_t controls = 0;  // CTL_...
    int32_t random = 0;     // the random word that the state's handler finds
    bool lands = false;     // the last move is taken to have touched level ground
    bool stopped = false;   // a wall has stopped the character
};

class Stage {
public:
    // The folder holds the character's files. Ends through FatalError when one is missing or not valid.
    explicit Stage(const std::filesystem::path& folder);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    // A frame has two halves. Move: the states, the clocks and the move. Then the pose, which Now() returns.
    void Move(uint32_t ticks, const FrameInput& input);
    void Draw();
    void Frame(uint32_t ticks, const FrameInput& input) {
        Move(ticks, input);
        Draw();
    }
    int32_t State() const;
    // The pose at a time of a state's animation, without moving or blending.
    Moment PoseAt(PlayerState state, uint32_t time);
    // What a blend of `duration` shows at a time, if the clip that it leads to had but one key before the end: at the
    // time `key`, with the pose that the state has at `pose`. It leads there from the pose of `left`.
    struct ClipTime {
        PlayerState state;
        uint32_t time;
    };
    struct BlendTarget {
        ClipTime pose;
        uint32_t key;
    };
    Moment BlendAt(ClipTime left, const BlendTarget& target, uint32_t time, int32_t duration);
    const Moment& Now() const { return now_; }
    uint32_t LengthOf(int32_t state) const;
    std::array<double, 3> PivotOf(size_t bone) const;  // in the mesh at rest

    // What Move changes. The place on the floor is no part of it.
    struct Course {
        Actor actor;
        Vec3 hopImpulse, leapImpulse;
        int16_t jumpHeld;
        Vec3 travel;
    };
    // All that the next frame depends on: what Move and Draw change.
    struct Snapshot {
        Course course;
        std::vector<BoneRecord> bones;
        Moment now;
    };
    Course SaveCourse() const;
    Snapshot Save() const;
    void Restore(const Course& course);
    void Restore(const Snapshot& snapshot);

    const std::vector<size_t>& LeftSole() const { return soles_[0]; }  // points of the mesh at rest on the ground
    const std::vector<size_t>& RightSole() const { return soles_[1]; }

private:
    void LoadFloor();
    void LoadCharacter(const std::filesystem::path& folder);
    void FindSoles();
    Moment Pose() const;
    Moment Show(PlayerState state, uint32_t time, int32_t blendDuration = 0) const;
    AnimRecord& AnimationOf(int32_t state) const;

    std::vector<uint8_t> pool_;
    PlayerFiles player_;
    std::array<std::vector<size_t>, 2> soles_;
    Moment now_;
    Vec3 travel_{};       // how far the actor moved in the latest frame
    Vec3 shownTravel_{};  // the same of the frame before it: what is drawn lags behind by one
};
