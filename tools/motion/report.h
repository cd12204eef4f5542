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

// Tables of text, for the character's files in a folder.
std::string MotionReport(const std::filesystem::path& folder);
