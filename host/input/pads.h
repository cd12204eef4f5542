// Game controllers: the keys of the game that they hold down, and the mouse that their right stick turns. Back ends
// report what each controller does; all of them act together.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The buttons of the usual layout with two sticks; A is the lowest of the four, B the right, X the left, Y the upper
// one. On controllers with + and - they are those that are called so.
enum class PadButton {
    A,
    B,
    X,
    Y,
    Back,
    Start,
    LeftShoulder,
    Up,
    Down,
    Left,
    Right,
    RightShoulder,
    LeftStick,
    RightStick
};

enum class PadAxis { LeftX, LeftY, RightX, RightY, RightTrigger };  // right and down are positive

constexpr int PAD_AXIS_FULL = 32767;  // an axis moved all the way, a trigger pulled; -32768 the other way

// How the buttons are called: A, B, Back, Start; Cross, Circle, Share, Options; A, B, -, +.
enum class PadKind { Letters, Symbols, PlusMinus };

// `pad`: any number that tells the controllers apart, new ones included.
void PadCame(int pad, PadKind kind);  // at least before its names are asked for
void PadPress(int pad, PadButton button, bool down);
void PadMove(int pad, PadAxis axis, int value);
void PadGone(int pad);
void ResetPads();

// What the controller that came last calls the input that is the given key of the game. Empty: no input is, or there is
// no controller.
std::string PadNameOf(uint8_t scanCode);
// A key's name together with the controller's for it, as in "Escape or Back".
std::string WithPadName(std::string_view keyName, uint8_t scanCode);

// Called once a turn: what right sticks have moved since the last call, in milliseconds before.
void TurnWithPads(uint32_t milliseconds);
