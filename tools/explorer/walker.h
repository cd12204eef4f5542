// The player in a level of the game, without a picture: the game's own states, handlers and collision, frame by frame,
// with random numbers as a game that was started with --level draws them as long as nobody fires. So a list of held
// keys leads to the same places here and, as a script, in the game.
//
// The game's tables are global, so there is one walker at a time.
#pragma once

#include "motion/player_files.h"
#include "platform/input.h"
#include "records/actor_record.h"

#include <cstdint>
#include <filesystem>
#include <vector>

struct WalkerLevel {
    std::filesystem::path world;       // .bgm
    std::filesystem::path lightSlots;  // lights.alt, whose flickering lamps draw random numbers; empty: none flicker
    std::filesystem::path character;   // folder
    Vec3 start;
    uint32_t ticks = 1;  // length of each frame in ticks of 16 ms, but for the first, which has none
};

// All that the player's next frame depends on.
struct Body {
    Actor actor;
    float hopSpeed, leapSpeed;  // impulses of the latest jumps, which the handlers leave in the states
    int16_t jumpHeld;
    uint32_t frames;  // played so far

    const Vec3& Position() const { return actor.position; }
};

class Walker {
public:
    // Ends through FatalError when a file is missing or not valid; ContentError for the light slots.
    explicit Walker(const WalkerLevel& level);
    Walker(const Walker&) = delete;
    Walker& operator=(const Walker&) = delete;
    ~Walker();

    void Frame(uint16_t controls);  // CTL_...
    Body Save() const;
    void Restore(const Body& body);
    const Vec3& Position() const { return PlayerActor.position; }
    uint32_t Ticks() const { return ticks_; }

    // The box of all polygons of the world.
    const Vec3& Low() const { return low_; }
    const Vec3& High() const { return high_; }

private:
    int32_t RandomWordOf(uint32_t frame);
    void FindBox();

    std::vector<uint8_t> pool_;
    PlayerFiles player_;
    uint32_t ticks_;
    uint32_t frames_ = 0;
    Vec3 low_{}, high_{};
    std::vector<int32_t> flickerTimers_;
    std::vector<int32_t> randomWords_;  // by frame, as far as they were asked for
};
