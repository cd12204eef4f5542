// A search through a level for what must not happen to a player, whatever the keys: it plays random keys, and keys held
// for two minutes, from the start and from places that it reached before, the least visited first.
#pragma once

#include "explorer/walker.h"

#include <optional>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

struct HeldKeys {
    uint16_t controls;  // CTL_...
    uint32_t frames;
};
using KeyPlay = std::vector<HeldKeys>;

enum class FaultKind {
    Fall,   // to the ground below the world, or below that, or far outside
    Trap,   // no way on for 600 frames, whatever the keys
    Lift,   // up by more than 80 in one frame
    Creep,  // through a wall, by keys held
};
constexpr const char* FAULT_NAMES[] = {"fall", "trap", "lift", "creep"};

// One place where something goes wrong, and the shortest play found that shows it from the level's start.
struct Fault {
    FaultKind kind;
    Vec3 place;    // where the player last stood, hangs, is lifted from, or goes through the wall
    Vec3 outcome;  // where that leads
    uint32_t frames;
    KeyPlay play;
    int count = 1;
};

struct SearchOptions {
    uint64_t frames = 12'000'000;
    uint32_t seed = 1;
    std::optional<float> net = {};  // height of the hidden ground below everything
};

struct SearchReport {
    std::vector<Fault> faults;  // by kind, then by length
    size_t cells = 0;           // places reached, 64 by 64 by 64 each
    int contacts = 0;           // polygons touched at once, at most
    Vec3 lowest{}, highest{};   // corners of the box around all positions in the world
    uint64_t frames = 0;
};

class Search {
public:
    Search(Walker& walker, const SearchOptions& options);
    SearchReport Run();

private:
    // A piece of a play, whose pieces before it are found by their numbers.
    struct Step {
        int32_t before;  // -1: none
        HeldKeys keys;
    };
    struct Place {
        Body body;
        int32_t step = -1;  // the last one on the way there
        uint32_t visits = 0;
    };
    // From a place on.
    struct Rollout {
        size_t place;
        KeyPlay pending;  // played since
        Vec3 low, high;   // corners of the box around the positions
        Vec3 stood;       // where it last touched something
    };
    enum class Outcome { GoesOn, Over };

    uint32_t Random(uint32_t below) { return static_cast<uint32_t>(random_() % below); }
    bool Chance(uint32_t percent) { return Random(100) < percent; }
    uint32_t FramesOf(uint32_t ticks) const;
    HeldKeys RandomKeys();
    size_t PickPlace();
    Rollout Begin(size_t place);
    bool HasFallen(const Vec3& position) const;
    Outcome Play(Rollout& rollout, const HeldKeys& keys, bool watchWalls);
    void PlayAtRandom();
    void PlayHeld(size_t place, uint32_t turn, uint16_t controls);
    void HoldAtTheStart();
    void KeepPlace(Rollout& rollout);
    bool LeavesBy(const Body& body, const KeyPlay& keys);
    bool IsTrap(const Body& body);
    void CheckTrap(Rollout& rollout);
    void AddFault(FaultKind kind, const Vec3& place, const Rollout& rollout);
    void Note(const Vec3& position);
    KeyPlay PlayTo(const Rollout& rollout) const;

    Walker& walker_;
    SearchOptions options_;
    std::mt19937 random_;
    std::vector<Step> steps_;
    std::vector<Place> places_;
    std::vector<size_t> unvisited_;  // places that were not visited yet, the newest last
    std::unordered_map<uint64_t, size_t> placeOfCell_;
    std::unordered_map<uint64_t, size_t> faultOfCell_;
    std::unordered_map<uint64_t, int> roughCells_;
    SearchReport report_;
};
