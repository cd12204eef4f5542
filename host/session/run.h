// A run: game frames counted, traced and photographed, the script played, the end found.
//
// A run that a script or the headless machine drives ends by itself after RUN_IDLE_END milliseconds of the host's clock
// in which nothing asked for happened: no script line acted, and no game frame was played that --frames, a shot or a
// later line waits for. Lines with a time are always waited for.
#pragma once

#include "machine/options.h"
#include "session/script.h"

#include <cstdint>

constexpr uint32_t RUN_IDLE_END = 60000;

// False: the trace cannot be written; one line on standard error has said so.
bool StartRun(const Options& options, Script script);
// Ends the trace and says on standard error how many of the frames asked for were played, if fewer. Only the first
// call of a run does anything. False: a picture, the trace or the log could not be written.
bool FinishRun();
// No run is under way. Devices and interfaces call this session from now on (input/session_hooks.h).
void ResetRun();
