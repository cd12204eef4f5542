// A run: game frames counted, traced and photographed, the script played, the end found.
//
// A run that a script or the headless machine drives ends by itself after RUN_IDLE_END milliseconds of the host's clock
// in which nothing asked for happened: no script line acted, and no game frame was played that --frames, a shot or a
// later line waits for. Lines with a time are always waited for.
#pragma once

#include "core/options.h"
#include "core/script.h"

#include <cstdint>

constexpr uint32_t RUN_IDLE_END = 60000;

// False: the trace cannot be written; one line on standard error has said so.
bool StartRun(const Options& options, Script script);
// Ends the trace and says on standard error how many of the frames asked for were played, if fewer. Only the first
// call of a run does anything. False: a picture, the trace or the log could not be written.
bool FinishRun();
// The orderly end: FinishRun, the machine stops, the process exits, by a signal if that is what asked for the end.
[[noreturn]] void EndRun(int status);

uint32_t FramesPlayed();
// Keyboard polls since the game last took a message; the poll under way counts. 1: the game pumps messages between
// its polls. The polls before the first message count from 2.
uint32_t PollsSincePeek();

// Called by the input and message calls of the game.
void AtKeyboardPoll();  // first thing in every keyboard GetDeviceState
void AtKeyboardRead();  // the state is about to be read: the keyboard is acquired
void AtPeek();
void AtWait();  // each turn of WaitMessage, after the clock was read

void ResetRun();
