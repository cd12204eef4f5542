// Three 32-bit floats. World units (1 unit is about 1 cm), x right, y up, z forward (left-handed).
#pragma once

struct Vec3 {
    float x, y, z;
};
