// Sine and cosine that come out the same on every machine.
#pragma once

struct SineCosine {
    double sine = 0;
    double cosine = 1;
};

SineCosine SineCosineOfDegrees(double degrees);  // exact for multiples of 90; otherwise good to 1e-15
