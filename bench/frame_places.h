// Places from which bench/frames looks at level 3, whose map marks none: ten on the way through it, as far from each
// other as a walk of some minutes reached, with the character's heading at each.
#pragma once

#include "records/vec3.h"

struct FramePlace {
    Vec3 position;  // where the character stands, world units
    float heading;  // degrees; the camera looks the same way from behind
};

constexpr int HOUSE_LEVEL = 3;
inline constexpr FramePlace HOUSE_PLACES[] = {
    {{-1260, 486, 943}, 106}, {{-826, 165, 2758}, 34},  {{-731, 486, 1876}, 324}, {{-545, 485, 365}, 44},
    {{15, 165, 2477}, 210},   {{135, 485, 1477}, 94},   {{811, 165, 2773}, 40},   {{824, 485, 675}, 16},
    {{1609, 485, 9}, 298},    {{1610, 581, 1415}, 252},
};
