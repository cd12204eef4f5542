// Sine, cosine and arc cosine that give the same bits on every processor: fixed polynomials in double precision,
// error below one unit in the last place. Radians.
#pragma once

double Sin(double radians);
double Cos(double radians);
double ArcCos(double cosine);  // 0..pi; NaN outside -1..1
