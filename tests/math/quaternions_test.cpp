#include "math/quaternions.h"

#include "math/matrix_stack.h"
#include "math/vectors.h"
#include "support/throwing_fatal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

Quat RandomUnit(std::mt19937& random) {
    std::uniform_real_distribution<double> component(-1.0, 1.0);
    Quat q = {component(random), component(random), component(random), component(random)};
    QuatNormalize(q);
    return q;
}

double Distance(const Quat& a, const Quat& b) {
    return std::fabs(a.w - b.w) + std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z);
}

TEST(Quaternions, MatrixFormsRotateLikeTheQuaternion) {
    std::mt19937 random(7);
    for (int i = 0; i < 200; ++i) {
        Quat q = RandomUnit(random);
        if (i % 2) q.w = 0.0;  // a half turn, where the square roots come near 0
        QuatNormalize(q);
        const double v[3] = {1.5, -2.25, 3.0};
        double turned[3];
        QuatRotateVector(q, v, turned);
        double rows[9];
        QuatToMatrix(q, rows);
        double byRow[3] = {v[0], v[1], v[2]};
        RotateDVector(byRow, rows);
        for (int k = 0; k < 3; ++k)
            ASSERT_NEAR(byRow[k], turned[k], 1e-13);

        Quat back;
        MatrixToQuat(rows, back);
        const Quat opposite = {-q.w, -q.x, -q.y, -q.z};  // describes the same turn
        ASSERT_LT(std::min(Distance(back, q), Distance(back, opposite)), 1e-12);
        ASSERT_GE(back.w, 0.0);
    }
}

TEST(Quaternions, SlerpClampsAndTakesTheStraightLineAtTheEnds) {
    std::mt19937 random(5);
    const Quat a = RandomUnit(random);
    const Quat b = RandomUnit(random);
    Quat q;
    QuatSlerp(a, b, q, 1.5);
    EXPECT_LT(Distance(q, b), 1e-14);
    QuatSlerp(a, b, q, -0.2);
    EXPECT_LT(Distance(q, a), 1e-14);
    const Quat x = {1.0, 0.0, 0.0, 0.0};
    QuatSlerp(x, {-1.0, 0.0, 0.0, 0.0}, q, 0.25);
    EXPECT_EQ(q.w, 0.5);
    QuatSlerp(x, {0.0, 0.0, 1.0, 0.0}, q, 0.5);
    EXPECT_LT(Distance(q, {std::sqrt(0.5), 0.0, std::sqrt(0.5), 0.0}), 1e-15);
}

TEST(MatrixStack, IsFatalToPassAtEitherEnd) {
    Transform saved[MATRIX_STACK_SIZE];
    for (int i = 0; i < MATRIX_STACK_SIZE; ++i) {
        TransformIdentity(saved[i]);
        saved[i].t[0] = i;
        PushMatrix(saved[i]);
    }
    EXPECT_EQ(FatalOf([&] { PushMatrix(saved[0]); }), "1: Matrix stack overflow.");
    for (int i = MATRIX_STACK_SIZE - 1; i >= 0; --i) {
        Transform popped;
        PopMatrix(popped);
        ASSERT_EQ(popped.t[0], i);
    }
    EXPECT_EQ(FatalOf([&] { PopMatrix(saved[5]); }), "1: Matrix stack underflow");
    EXPECT_EQ(saved[5].t[0], 5.0);
}

}  // namespace
