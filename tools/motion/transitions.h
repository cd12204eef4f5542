// Every change from one of the player's states into another that the game's handlers allow. They are found by trying
// every combination of keys in each frame of each state.
#pragma once

#include "motion/stage.h"

#include <map>
#include <utility>

// Distances in world units. A step is how far a point moves from one frame to the next, seen from the actor's position.
struct Measures {
    double largest = 0;  // largest step of any point
    double mean = 0;     // step of all points, in the frame where that is greatest
    double slide = 0;    // how far a foot slides over the floor that is down in both frames
    double depth = 0;    // depth of a point below the floor, while the character stands on it
};

Measures Measure(const Stage& stage, const Moment& before, const Moment& after);
void Raise(Measures& worst, const Measures& other);

struct Transition {
    Measures worst;                 // the worst of all departures
    std::vector<Moment> worstCase;  // the frames of the one with the largest step, beginning before the change
    uint32_t departure = 0;         // time in the state that was left, for worstCase
    size_t worstFrame = 0;          // index into worstCase of the frame with the largest step
};

using StatePair = std::pair<int32_t, int32_t>;  // from, to

struct Movement {
    std::map<int32_t, Measures> states;           // while a state plays on, without a blend
    std::map<StatePair, Transition> transitions;  // from poses that are not blends
    std::map<StatePair, Transition> broken;       // while the blend into `from` was under way
};

// BETWEEN_BLENDS takes half the time and leaves `broken` all but empty.
enum class Changes { ALL, BETWEEN_BLENDS };
Movement Explore(Stage& stage, uint32_t ticks, Changes changes = Changes::ALL);
