// The changes of state of the character as films: what charc --report measures, to look at.
#pragma once

#include "motion/transitions.h"

#include <string>
#include <vector>

struct FilmRow {
    std::string name;
    std::vector<Moment> frames;
};

// Into the states named so, or into all. Of every change the departure with the largest step, at so many ticks a frame.
// Needs the game's tables for itself and leaves them empty.
std::vector<FilmRow> FilmsInto(const std::vector<std::string>& states, uint32_t ticks);

void DrawPlayerAs(const Moment& moment);  // in place of DrawActorAt(0)
