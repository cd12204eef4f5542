// What the eye sees of the sky and the distance. The game takes these numbers from here, and so do the tools that make
// skies and check them. Data only. World units.
#pragma once

constexpr float SKY_EYE_HEIGHT = 77.0f;  // height of the eye above the sky's own origin

// What the accelerator uses instead of the level's distances.
constexpr float GLIDE_FOG_NEAR = 2000.0f;
constexpr float GLIDE_FADE_DISTANCE = 9196.0f;
constexpr float GLIDE_FAR_DISTANCE = 5796.0f;
constexpr float GLIDE_DEPTH_RANGE = 63000.0f;  // the depth that FAR_DISTANCE becomes; the depth buffer ends at 65535
