#include "transforms/angles.h"

#include <cmath>
#include <numbers>

SineCosine SineCosineOfDegrees(double degrees) {
    const double turns = std::floor(degrees / 90 + 0.5);
    const double x = (degrees - turns * 90) * (std::numbers::pi / 180);  // -pi/4 .. pi/4
    SineCosine result{0, 0};
    double term = 1;  // x^n / n!
    for (int n = 0; n < 20; n += 2) {
        const double sign = n % 4 == 0 ? 1 : -1;
        result.cosine += sign * term;
        term = term * x / (n + 1);
        result.sine += sign * term;
        term = term * x / (n + 2);
    }
    const double quarter = turns - std::floor(turns / 4) * 4;
    if (quarter == 1) return {result.cosine, -result.sine};
    if (quarter == 2) return {-result.sine, -result.cosine};
    if (quarter == 3) return {-result.cosine, result.sine};
    return result;
}
