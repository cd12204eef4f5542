// One note of an instrument as sound.
#pragma once

#include "musicc/arrangement.h"

// Stereo sound that has no end: what goes past it comes in again at the start.
struct Loop {
    explicit Loop(int64_t samples)
        : left(static_cast<size_t>(samples), 0.0f), right(static_cast<size_t>(samples), 0.0f) {}
    size_t Size() const { return left.size(); }
    std::vector<float> left, right;
};

void PlaySynth(const Synth& synth, const Note& note, Loop& out);  // adds to `out`
void PlayDrum(const Drum& drum, const Note& note, Loop& out);
