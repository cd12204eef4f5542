// The matrix families of the game, and the quaternion.
#pragma once

// A 3 x 3 rotation, row by row, used with column vectors: (M v)i = row i . v.
struct Matrix3 {
    float m[9];
};

// A 3 x 4 affine transform used with row vectors: p R + T.
struct Transform {
    double r[9];  // rotation, row by row
    double t[3];  // translation
};

// A rotation; w is the scalar part.
struct Quat {
    double w, x, y, z;
};
