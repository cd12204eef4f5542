// Plays a recording: the game gets the answers that it got then, and each of its frames is held against the recorded
// one. The first difference ends the run with status 1, and standard error names the frame and the field.
//
// In a window the recording plays at the speed at which it was made. Keyboard, mouse and controllers do nothing then,
// but Escape and the window's close button end the run.
#pragma once

#include "host/dinput.h"
#include "host/win32.h"
#include "machine/options.h"
#include "session/frame_fields.h"

#include <optional>

// --replay or --benchmark: reads the recording and settles the options that it decides. True without either. False:
// it cannot be read or is damaged, or another option does not go with it; one line on standard error has said so.
bool LoadReplay(Options& options);
bool Replaying();
// False: the game ended before the recording; a line on standard error says so.
bool FinishReplay(uint32_t framesPlayed);

// The answers. Where the game asks for more than was recorded, it gets the clock going on, and everything else as it
// was: so it comes to the end of its frame, where the difference is named.
uint32_t ReplayClock();
HRESULT ReplayKeys(uint8_t* keys);
HRESULT ReplayMouse(DIMOUSESTATE& state);
bool ReplayMessage(MSG& message);  // false: there was none
void ReplayFile(const char* path, uint32_t digest);

// True: it was the last one, and the program is to end. `pixels` as in the trace; nothing where no picture is drawn.
bool ReplayFrame(uint32_t frame, const FrameFields& fields, uint64_t digest, const std::optional<uint64_t>& pixels);
bool ReplayWantsPixels();  // the recording has the pictures' digests of this frame
void StopReplay();         // a person ends it: status 0
