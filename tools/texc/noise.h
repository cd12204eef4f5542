// Integer hashing and tiling noise. Only + - * / and sqrt on floats, so that every machine gives the same picture.
#pragma once

#include <cstdint>

uint32_t Hash(uint32_t seed, uint32_t a, uint32_t b = 0, uint32_t c = 0);
float HashUnit(uint32_t hash);  // 0 <= value < 1

inline float Clamp01(float value) {
    return value < 0 ? 0 : value > 1 ? 1 : value;
}
inline float Mix(float a, float b, float t) {
    return a + (b - a) * t;
}
float Smooth(float t);                                 // 0..1 to 0..1 with level ends; t outside is clamped
float SmoothStep(float low, float high, float value);  // 0 up to `low`, 1 from `high`; they may stand in either order
int FloorInt(float value);
int WrapInt(int value, int period);          // 0..period-1
float WrapFloat(float value, float period);  // 0 <= result < period

// Gradient noise about 0 (mostly -0.7..0.7) on a lattice that repeats after `columns` and `rows` cells.
float GradientNoise(uint32_t seed, float x, float y, int columns, int rows);

struct FractalShape {
    int columns = 4, rows = 4;  // lattice cells across the picture
    int octaves = 4;            // each twice as fine
    float roughness = 0.5f;     // strength of an octave relative to the one before
    bool ridged = false;        // sharp crests, as of veins and cracks
    int boil = 0;               // different pictures between one animation frame cycle and the next; 0: still
    float phase = 0;            // place in the animation cycle, 0..1
};
// x, y in 0..1 across the picture; result 0..1.
float FractalNoise(uint32_t seed, float x, float y, const FractalShape& shape);
