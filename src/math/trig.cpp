#include "math/trig.h"

#include "math/convert.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

// Argument reduction by a quarter turn kept in pieces, then a Taylor polynomial on the eighth turn that is left; the
// reduced angle carries its rounding error along as a second double. See W. J. Cody and W. Waite, "Software Manual for
// the Elementary Functions" (1980), and T. J. Dekker, "A floating-point technique for extending the available
// precision" (1971).
namespace {

constexpr double TWO_OVER_PI = 0x1.45f306dc9c883p-1;
constexpr double HALF_PI = 0x1.921fb54442d18p+0;
constexpr double HALF_PI_TAIL = 0x1.1a62633145c07p-54;

// A quarter turn in pieces of 33 bits: times any whole number below 2^20 each but the last is exact.
constexpr double QUARTER_TURN[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2e0p-69, 0x1.b839a252049c1p-104};

struct ReducedAngle {
    double head, tail;  // radians, at most an eighth of a turn
    int32_t quarter;    // quarter turns taken off, of which only the lowest two bits matter
};

// Makes head + tail exactly a + b; head is the rounded sum.
void AddExactly(double a, double b, double& head, double& tail) {
    head = a + b;
    const double added = head - a;
    tail = (a - (head - added)) + (b - added);
}

ReducedAngle Reduce(double radians) {
    if (!(std::abs(radians) < TRIG_LIMIT)) return {radians - radians, 0.0, 0};
    const int32_t quarter = RoundToInt(radians * TWO_OVER_PI);
    const double turns = quarter;
    double head, tail, secondTail;
    AddExactly(radians - turns * QUARTER_TURN[0], -turns * QUARTER_TURN[1], head, tail);
    AddExactly(head, -turns * QUARTER_TURN[2], head, secondTail);
    AddExactly(head, tail + secondTail - turns * QUARTER_TURN[3], head, tail);
    return {head, tail, quarter};
}

double SinReduced(const ReducedAngle& angle) {
    const double x = angle.head;
    const double z = x * x;
    double p = -1.0 / 121645100408832000;  // 1 / 19!
    p = p * z + 1.0 / 355687428096000;
    p = p * z - 1.0 / 1307674368000;
    p = p * z + 1.0 / 6227020800;
    p = p * z - 1.0 / 39916800;
    p = p * z + 1.0 / 362880;
    p = p * z - 1.0 / 5040;
    p = p * z + 1.0 / 120;
    p = p * z - 1.0 / 6;
    return x + (x * z * p + angle.tail * (1.0 - 0.5 * z));
}

double CosReduced(const ReducedAngle& angle) {
    const double x = angle.head;
    const double z = x * x;
    double p = -1.0 / 6402373705728000;  // 1 / 18!
    p = p * z + 1.0 / 20922789888000;
    p = p * z - 1.0 / 87178291200;
    p = p * z + 1.0 / 479001600;
    p = p * z - 1.0 / 3628800;
    p = p * z + 1.0 / 40320;
    p = p * z - 1.0 / 720;
    p = p * z + 1.0 / 24;
    const double half = 0.5 * z;
    const double head = 1.0 - half;
    return head + (((1.0 - head) - half) + (z * z * p - x * angle.tail));
}

constexpr int ARC_SIN_TERMS = 26;

// The coefficients of x^3, x^5 and so on in the arcsine's series: 1/2 / 3, (1 3)/(2 4) / 5 ...
constexpr std::array<double, ARC_SIN_TERMS> ARC_SIN_COEFFICIENTS = [] {
    std::array<double, ARC_SIN_TERMS> table = {};
    double ratio = 1.0;
    for (int k = 1; k <= ARC_SIN_TERMS; ++k) {
        ratio *= (2.0 * k - 1.0) / (2.0 * k);
        table[static_cast<size_t>(k - 1)] = ratio / (2.0 * k + 1.0);
    }
    return table;
}();

// arcsin(x) / x - 1 for z = x x <= 1/4.
double ArcSinSeries(double z) {
    double p = 0.0;
    for (size_t k = ARC_SIN_TERMS; k-- > 0;)
        p = (p + ARC_SIN_COEFFICIENTS[k]) * z;
    return p;
}

// Twice the arcsine of sqrt(z), z <= 1/4, with what the square root's rounding lost.
void TwiceArcSinOfRoot(double z, double& head, double& tail) {
    const double root = std::sqrt(z);
    const double start = static_cast<float>(root);  // its square is exact
    const double rest = root > 0.0 ? (z - start * start) / (root + start) : 0.0;
    head = 2.0 * start;
    tail = 2.0 * (root * ArcSinSeries(z) + rest);
}

// (a + aTail) - (b + bTail), a >= b.
double Subtract(double a, double aTail, double b, double bTail) {
    double head, tail;
    AddExactly(a, -b, head, tail);
    return head + (tail + (aTail - bTail));
}

}  // namespace

double Sin(double radians) {
    const ReducedAngle angle = Reduce(radians);
    const double value = angle.quarter & 1 ? CosReduced(angle) : SinReduced(angle);
    return angle.quarter & 2 ? -value : value;
}

double Cos(double radians) {
    const ReducedAngle angle = Reduce(radians);
    const double value = angle.quarter & 1 ? SinReduced(angle) : CosReduced(angle);
    return (angle.quarter + 1) & 2 ? -value : value;
}

double ArcCos(double cosine) {
    if (!(std::abs(cosine) <= 1.0)) return std::numeric_limits<double>::quiet_NaN();
    if (std::abs(cosine) <= 0.5) return Subtract(HALF_PI, HALF_PI_TAIL, cosine, cosine * ArcSinSeries(cosine * cosine));
    double head, tail;
    TwiceArcSinOfRoot(0.5 * (1.0 - std::abs(cosine)), head, tail);
    return cosine > 0.0 ? head + tail : Subtract(2.0 * HALF_PI, 2.0 * HALF_PI_TAIL, head, tail);
}
