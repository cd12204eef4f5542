// The character's changes of state as films: pictures of what charc --report measures.
#pragma once

#include "motion/transitions.h"

#include <string>
#include <vector>

struct FilmRow {
    std::string name;
    std::vector<Moment> frames;
};

// The changes into the named states, or into all. Each film shows the departure with the largest step, at `ticks` ticks
// a frame. No Stage may exist meanwhile, and the game's tables are left empty.
std::vector<FilmRow> FilmsInto(const std::vector<std::string>& states, uint32_t ticks);

void DrawPlayerAs(const Moment& moment);  // to be called in place of DrawActorAt(0)
