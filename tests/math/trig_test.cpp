#include "math/trig.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace {

// The error in units in the last place of a double at `exact`.
double ErrorInUlp(double value, long double exact) {
    const double near = std::abs(static_cast<double>(exact));
    const double ulp = std::nextafter(near, INFINITY) - near;
    return static_cast<double>(std::abs(value - exact)) / ulp;
}

// Multiples of an eighth of a turn, where the reduction cancels most, are as likely as the angles in between.
double RandomAngle(std::mt19937_64& random, double limit) {
    const double angle = std::uniform_real_distribution<double>(-limit, limit)(random);
    if (random() % 2) return angle;
    const double eighth = std::round(angle / 0.7853981633974483) * 0.7853981633974483;
    const double step = std::nextafter(eighth, INFINITY) - eighth;
    return eighth + static_cast<double>(static_cast<int>(random() % 9) - 4) * step;
}

}  // namespace

TEST(Trig, SineAndCosineAreWithinOneUlp) {
    std::mt19937_64 random(7);
    double worst = 0.0;
    for (const double limit : {0.8, 7.0, 100.0, 17453.3, TRIG_LIMIT}) {
        for (int i = 0; i < 60000; ++i) {
            const double angle = RandomAngle(random, limit);
            if (std::abs(angle) >= TRIG_LIMIT) continue;
            worst = std::max(worst, ErrorInUlp(Sin(angle), sinl(angle)));
            worst = std::max(worst, ErrorInUlp(Cos(angle), cosl(angle)));
        }
    }
    EXPECT_LT(worst, 0.8);
}

TEST(Trig, SpecialValues) {
    EXPECT_EQ(ArcCos(1.0), 0.0);
    EXPECT_EQ(ArcCos(-1.0), 3.141592653589793);
    EXPECT_TRUE(std::isnan(ArcCos(std::nextafter(1.0, 2.0))));
    EXPECT_TRUE(std::isnan(ArcCos(NAN)));
    EXPECT_TRUE(std::isnan(Sin(INFINITY)));
    EXPECT_TRUE(std::isnan(Cos(NAN)));
    EXPECT_EQ(Sin(1e30), 0.0);
    EXPECT_EQ(Cos(-1e300), 1.0);
}

// A hash over many results is the same with every compiler, at every optimisation level and on every processor.
TEST(Trig, ResultsHaveTheSameBitsEverywhere) {
    uint64_t hash = 14695981039346656037u;
    const auto add = [&hash](double value) {
        uint64_t bits;
        std::memcpy(&bits, &value, sizeof(bits));
        hash = (hash ^ bits) * 1099511628211u;
    };
    for (int i = -4000; i <= 4000; ++i) {
        add(Sin(i * 0.37));
        add(Cos(i * 0.37));
        add(ArcCos(i / 4000.0));
    }
    EXPECT_EQ(hash, 3924353204200497617u);
}
