// For animators: how evenly a character moves in every state and from one state to another.
#pragma once

#include "motion/transitions.h"

#include <string>

const char* NameOf(int32_t state);

struct LoopMeasures {
    double closing = 0;   // largest distance from the end's pose to the start's
    double symmetry = 0;  // largest distance of a joint from its mirrored twin half a cycle later
};
LoopMeasures MeasureLoop(Stage& stage, PlayerState state);

// A state that is entered without a blend shows its first pose at once, whatever moment of the states before it was
// shown last. However that pose is chosen, some point makes a step as long as this in some frame: the radius of the
// smallest ball around all places of a point in those states, for the point with the largest.
double LeastStepFrom(Stage& stage, const std::vector<PlayerState>& states);

// A blend moves a foot by a share of the way towards the place it has in the next key, in nearly a straight line. The
// ground moves by the same length whatever moment a change comes at, so a foot that stays down slides somewhere between
// its first and its last place on the ground. In the least favourable moment it slides by this much in the first frame,
// whatever the pose that is blended to: half the way over which a foot is down in the state, by the frames of the
// blend.
double LeastSlideFrom(Stage& stage, PlayerState state, int blendFrames);

// Tables of text, for the character's files in a folder.
std::string MotionReport(const std::filesystem::path& folder);
