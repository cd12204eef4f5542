// A machine: the record of functions behind the calls in include/host. Each folder of backends/ has one. A function
// pointer may be null where a comment says so.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

class TrackReader;
struct Options;

// A picture as it is shown: 32-bit pixels 0x00RRGGBB, rows top to bottom without gaps.
struct Picture {
    const uint32_t* pixels;
    int width, height;
};

struct Machine {
    const char* name;
    bool (*start)(const Options& options);  // false: not available here, the next one is tried
    void (*stop)();

    // The clock: any start value, wraps. Called once for each GetTickCount, each keyboard poll and each turn of
    // WaitMessage, so a deterministic machine may count these calls; a real one may sleep briefly when it is called
    // again within the same millisecond.
    uint32_t (*milliseconds)();
    // The program only waits until the clock has gone on by so much since it was read last: the machine may sleep, but
    // no longer than that. Null: the naps of `milliseconds` will do.
    void (*sleep)(uint32_t milliseconds);
    void (*beforeKeyboardPoll)();  // pump the devices into input/devices.h; called by the keyboard's GetDeviceState
    void (*pump)();                // the same, called by PeekMessageA
    void (*wait)();                // sleep until a device has something to say, 100 ms at most; called by WaitMessage

    bool (*createWindow)(const char* title);
    void (*desktopSize)(int* width, int* height);
    void (*present)(const Picture& picture);  // show it now; null: nobody looks
    // The same for a picture in an OpenGL texture, upper row first, which stays there until the next picture. False: it
    // cannot be shown from there. Null: this machine never can.
    bool (*presentTexture)(uint32_t texture, int width, int height);
    // Shown over every picture from now on, and stretched over all of it: pixels 0xAARRGGBB. The pointer null: nothing
    // is. The function null: nobody looks.
    void (*showOverlay)(const Picture* overlay);
    // The player has changed machine/settings.h. Null: the machine shows nothing that these settings change.
    void (*applySettings)();
    // What is printed on a key of the user's keyboard, by its scan code; in the characters that machine/overlay.h has.
    // Null: nobody looks.
    std::string (*keyLabel)(uint8_t scanCode);
    void (*setMouseCaptured)(bool captured);  // relative mouse mode, pointer hidden
    // Called before a file of the data folder is opened for reading, for a machine that gets its files from elsewhere.
    // Null: they are all there.
    void (*bringFile)(const char* path);
    // Called after a file of the player's was written, for a machine that keeps its files elsewhere. Null: they stay
    // there.
    void (*keepFile)(const char* path);
    int (*messageBox)(const char* text, const char* caption);
    bool (*hasWindow)();   // a message box can be seen
    int (*refreshRate)();  // pictures a second of the display; 0, and null: not known
    // The pixels of the open window. Null: its size is not to decide how large a picture is drawn.
    void (*windowSize)(int* width, int* height);

    int (*displays)();  // how many there are to show the game on; null: only one

    // The sound of the CD drive. All three null: the drive works all the same, and nobody hears it.
    bool (*openSound)(std::string& problem);
    void (*playSound)(std::shared_ptr<TrackReader> track);  // over and over; null: silence
    void (*closeSound)();
};

// Null until one is started, or a test has set its own. A tool that runs a part of the game by itself has none: what it
// calls then, which is the files and the fatal exit, does without.
extern const Machine* CurrentMachine;
bool HasSettings();  // it shows overlays, and the settings change what it shows

// The first of `machines` that starts becomes CurrentMachine. The last one has no window and always starts; it is the
// only one that is tried when the options ask for none.
void StartMachine(const Options& options, std::span<const Machine* const> machines);
