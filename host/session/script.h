// Input written down: one action a line, `#` begins a comment; at most 16 MiB, with or without a byte-order mark.
//   <when> down|up|tap KEY            KEY: a key of input/keys.h; tap: down for exactly one keyboard poll
//   <when> mouse DX DY                counts, y downwards, -32768..32767 each; they reach one mouse poll
//   <when> button left|right down|up
//   <when> focus lost|gained
//   <when> wait MS                    the host's clock jumps ahead: a long frame
//   <when> shot FILE.png              the picture presented by that frame; with a time, the one last presented
//   <when> photo X Y Z PITCH YAW FILE.png   the latest game frame from another camera: world units, degrees
//   <when> quit                       as the window's close button
// <when> is a game frame counted from 1 (120) or a time of the host's clock (3500ms). A line acts before the keyboard
// poll of its frame, or at the first poll at or after its time; lines for one moment act in their order in the file.
// Frames stand still in the front end and while the game waits for messages without the focus. There the first line
// with a frame that gains the focus or quits acts at once, unless a line with a time is still to do so.
#pragma once

#include "host/host.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class ScriptAction { KeyDown, KeyUp, Tap, Mouse, Button, Focus, Wait, Shot, Photo, Quit };

struct ScriptLine {
    uint32_t when;  // frame or milliseconds
    bool isFrame;
    uint32_t number;  // number of the line in the file, from 1
    ScriptAction action;
    uint8_t code;           // scan code; mouse button 0 or 1
    bool on;                // Button: down; Focus: gained
    int x, y;               // Mouse
    uint32_t milliseconds;  // Wait
    std::string file;       // Shot, Photo
    HostCamera camera;      // Photo
};

struct Script {
    std::vector<ScriptLine> lines;  // in file order
};

// False: `error` is "name:line: what is wrong and what is expected".
bool ParseScript(std::string_view text, const std::string& name, Script& script, std::string& error);
// The same for a file, relative to the caller's folder; also false when it cannot be read.
bool LoadScript(const std::string& file, Script& script, std::string& error);
