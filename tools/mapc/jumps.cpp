#include "mapc/jumps.h"

#include <algorithm>

namespace {

double RiseOf(double speed, double lift, int ticks) {
    double rise = speed;
    for (speed += (lift + double{GRAVITY}) * ticks; speed > 0; speed += double{GRAVITY} * ticks)
        rise += speed;
    return rise;
}

}  // namespace

double JumpHeight(int ticks) {
    return std::max(RiseOf(double{LEAP_IMPULSE}, double{LEAP_LIFT}, ticks),
                    RiseOf(double{HOP_IMPULSE}, double{HOP_LIFT}, ticks));
}
