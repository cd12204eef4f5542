// The machine the game believes it runs on: options, devices, clock. main() calls this and nothing else.
#pragma once

#include "host/win32.h"

#include <cstdint>
#include <span>

struct HostCamera {
    float position[3];  // world units
    float angles[3];    // degrees: pitch, yaw, roll
};

// What a key does in a level, for people to see and to change.
struct HostKey {
    const char* name;   // in the settings file
    const char* label;  // on the screen
    uint8_t key;        // DIK_ code that the game hears
    uint8_t others[3];  // keys of the keyboard that are as good as `key`; 0: no more
};

// Everything that the machine knows about the game. Keys are DIK_ codes.
//
// --level and --renderer go through the screens before a level by keys: attract pictures, choice of the level, choice
// of the renderer. Their display mode tells them from a level; the attract pictures take messages between two polls of
// the keyboard, the choices take none, and each choice begins with two flips.
struct HostGame {
    const char* program;                 // begins each message on standard error
    const char* title;                   // title of the message boxes that the machine shows
    uint32_t frontEndBits;               // bits a pixel of the display before a level; a level's has others
    uint8_t startKey;                    // leads from the attract pictures to the choice of the level
    std::span<const uint8_t> levelKeys;  // choose level 1, 2 ...: as many as there are levels
    uint8_t softwareKey;                 // chooses the software renderer
    uint8_t acceleratorKey;              // chooses the accelerator
    std::span<const HostKey> keys;       // of a level; what is in neither list cannot be changed
    std::span<const HostKey> moreKeys;   // of a level, for who develops: told last

    // Pictures besides those of the game frames. Asked for only while the game reads the clock or the keyboard between
    // two frames of a level, and only if HostWantsViews was true at these frames. They change nothing in the game.
    //
    // The way from the frame before the last one, 0, to the last one, 1. False: nothing is drawn, because the two do
    // not belong together: a level's first frame, a change of camera, a step that is no movement. 1 is drawn all the
    // same.
    bool (*drawBetween)(float way);
    // The last frame from another camera, which is moved to its own right, upwards and ahead first. False: there is no
    // frame, or it is an outline drawing.
    bool (*drawFrom)(HostCamera& camera, const float (&move)[3]);
    // Where a point of the world was in the latest picture of either kind or of a frame, in pixels. False: behind the
    // eye.
    bool (*pointOnScreen)(const float (&point)[3], float (&pixel)[2]);
};

using GameMain = int (*)(HINSTANCE instance, HINSTANCE previousInstance, char* commandLine, int showCommand);

// Reads the options, opens a machine (a window, or the headless one), runs the game by calling `gameMain`. The
// process's exit status: the game's own; 2 for a wrong option, script or replay file. `game` must stay until the
// process ends.
int HostMain(int argumentCount, char** arguments, const HostGame& game, GameMain gameMain);
