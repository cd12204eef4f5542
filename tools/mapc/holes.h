// The separate holes of a level that leaks: the smallest openings that would have to be closed to part the player's
// start from the outside. A minimum cut finds them, with a price for each opening that grows with the square of its
// area: many small holes in the outer walls are closed rather than one wide doorway between the start and them. (Y.
// Dinitz, "Algorithm for solution of a problem of maximum flow in a network with power estimation", 1970.)
#pragma once

#include "mapc/geometry.h"

#include <vector>

struct Opening {
    int space[2];  // the two empty spaces that it joins
    double area;   // above 0
    Box box;
};

// The numbers of the openings of each hole, the widest hole first; openings that touch are one hole. isOutside: for
// each space. Empty when the start itself is outside, or sealed.
std::vector<std::vector<int>> FindHoles(const std::vector<Opening>& openings, const std::vector<char>& isOutside,
                                        int start);
