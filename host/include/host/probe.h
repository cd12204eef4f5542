// What the game tells the host at the end of every frame, for traces, digests, scripts and benchmarks. The game knows
// nothing of those.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

struct HostStateSpan {
    const void* data;
    size_t bytes;
};

struct HostFrameReport {
    uint32_t ticks;       // FrameTicks used by this frame
    uint32_t leastTicks;  // how many each frame of this level lasts at least
    int32_t level;        // 1..8
    int32_t state;        // the player's, a PlayerState
    float position[3];    // the player's, world units
    float velocity[3];
    float heading;
    int32_t contact;
    float slope;
    uint32_t time0;  // animation clock of layer 0
    float camera[3];
    float cameraAngles[3];
    bool mouseFlies;    // the free camera: the mouse moves it without a button held
    uint32_t polygons;  // SubmitPolygon calls
    // Polygons and pieces of the character that a table had no room for.
    uint32_t dropped;
    std::span<const float> lights;  // intensities of the lights that animate or move, in the order of their slots
    std::span<const float> shots;   // x, y, z of each that flies; both spans last until HostEndOfFrame returns
    uint32_t random;                // state of the random numbers
    HostStateSpan extra[2];         // further state for the digest: light slots, shots
};

// False: nobody looks at the picture of this frame, and the game may leave out what only fills its pixels. The rest
// goes on as ever, so that the frames after it are the same.
bool HostWantsPicture();

// Whether anybody may ask for pictures besides those of the game frames (host/host.h).
bool HostWantsViews();

bool HostWantsSteadyLamps();  // lamps flicker less in these pictures

// Such a picture of the software renderer: 8 bits a pixel, in the size and the palette of the picture that is shown.
// The pixels must stay until the next picture.
void HostShowPicture(const uint8_t* pixels, int32_t pitch);

// The software renderer's size that the player has chosen: 0, 1 or 2 for 320 x 240, 512 x 384 or 640 x 480.
int32_t HostSoftwareScreen();

// The parts of a frame that benchmarks measure. A part ends where the next begins, the last one at the end of the
// frame; a part may begin several times.
enum class HostStageName { Character, Lights, Sky, World, Present };
void HostStage(HostStageName stage);  // this part begins

// Called right after the picture is presented. True: end the program through the normal way out.
bool HostEndOfFrame(const HostFrameReport& report);

// A level that was compiled anew while it is played (option --watch).
struct HostReload {
    int32_t level;    // 1..8: load this one
    bool keepsPlace;  // the player goes on where he stands; else he begins at the start
    bool musicIsNew;  // there is another disc in the drive: open it and play the level's track
};

// Asked once a frame, after HostEndOfFrame. True: the files of the game are those of a level compiled anew, which is to
// be loaded now. The picture on the screen stays there until the next frame is complete.
bool HostWantsReload(HostReload& reload);
