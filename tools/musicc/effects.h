// Effects on sound that has no end. Each runs over the loop's last part before it gives anything, so that its tail from
// the end sounds on at the start.
#pragma once

#include "musicc/score.h"
#include "musicc/voice.h"

void AddEcho(const Echo& echo, float tempo, const Loop& sent, Loop& out);  // from side to side
void AddReverb(const Reverb& reverb, const Loop& sent, Loop& out);
void Overdrive(float amount, Loop& sound);

// The whole piece made ready: without what lies below hearing, its mean level at `loudness` dB, rounded off where it
// is loudest, and nowhere above a peak of -1 dB.
void Master(float loudness, Loop& sound);
