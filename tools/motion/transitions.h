// Every change from one of the player's states into another that the game's handlers allow, found by trying: in each
// frame of each state every combination of keys.
#pragma once

#include "motion/stage.h"

#include <map>
#include <utility>

// In units. A step goes from one frame to the next, in the frame of the actor's position.
struct Measures {
    double largest = 0;  // step of any point
    double mean = 0;     // step of all points, in the frame where that is greatest
    double slide = 0;    // over the floor, of a foot that is down in both frames
    double depth = 0;    // of a point below the floor, while the character stands on it
};

Measures Measure(const Stage& stage, const Moment& before, const Moment& after);
void Raise(Measures& worst, const Measures& other);

struct Transition {
    Measures worst;                 // of all departures
    std::vector<Moment> worstCase;  // the frames of the one with the largest step, beginning before the change
    uint32_t departure = 0;         // time of the state left, in that one
    size_t worstFrame = 0;          // of worstCase
};

using StatePair = std::pair<int32_t, int32_t>;  // from, to

struct Movement {
    std::map<int32_t, Measures> states;           // played on, not blending
    std::map<StatePair, Transition> transitions;  // from poses that are not blends
    std::map<StatePair, Transition> broken;       // while the blend into `from` was under way
};

Movement Explore(Stage& stage, uint32_t ticks);
