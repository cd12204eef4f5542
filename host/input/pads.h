// Game controllers: the keys of the game that they hold down, and the mouse that their right stick turns. Back ends
// report what each controller does; all of them act together.
#pragma once

#include <cstdint>

// The buttons of the usual layout with two sticks; A is the lowest of the four, B the right, X the left, Y the upper
// one.
enum class PadButton { A, B, X, Y, Back, Start, LeftShoulder, Up, Down, Left, Right, RightShoulder };

enum class PadAxis { LeftX, LeftY, RightX, RightY, RightTrigger };  // right and down are positive

constexpr int PAD_AXIS_FULL = 32767;  // an axis moved all the way, a trigger pulled; -32768 the other way

// `pad`: any number that tells the controllers apart, new ones included.
void PadPress(int pad, PadButton button, bool down);
void PadMove(int pad, PadAxis axis, int value);
void PadGone(int pad);
void ResetPads();

// Called once a turn: what right sticks have moved since the last call, in milliseconds before.
void TurnWithPads(uint32_t milliseconds);
