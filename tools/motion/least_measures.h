// What no keys can better under the game's rule of blending: found by showing with the game itself what every choice of
// keys would show.
#pragma once

#include "motion/transitions.h"

#include <vector>

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

// The same for one change of state. `firstSlide`: in the first frame, for whatever pose of the clip that is blended to
// comes first. `slide` and `depth`: in the whole blend, each with the best keys for it alone, of all that there are, if
// all joints have the same and the first pose stays. The worst of all moments of `from` counts. The change that was
// found tells how far the ground moves in each frame.
struct BlendMeasures {
    double firstSlide = 0, slide = 0, depth = 0;
};
BlendMeasures LeastInBlend(Stage& stage, PlayerState from, PlayerState to, const Transition& found);
