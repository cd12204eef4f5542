// Sine, cosine and arc cosine that give the same bits on every processor and compiler: fixed polynomials in double
// precision, error below one unit in the last place. Radians. The C library's own differ between machines and are
// not used anywhere in the game.
#pragma once

// Angles from here on (94 million degrees, where a float steps by whole degrees) count as 0.
constexpr double TRIG_LIMIT = 1647099.0;

double Sin(double radians);  // NaN for an infinity or NaN, as Cos
double Cos(double radians);
double ArcCos(double cosine);  // 0..pi; NaN outside -1..1
