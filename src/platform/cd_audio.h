// The music of a level: a track of the CD, played again whenever it ends. Nothing here reports a failure to the user;
// without a drive, a disc or the track the game runs on without music.
#pragma once

#include "host/win32.h"

#include <cstdint>

extern uint32_t CdTrack;  // the track to play; only the low byte is used; set by RunGame

bool OpenCdAudio();             // true: the drive is open, perhaps already before; false: none, or no disc
void PlayCdTrack(HWND window);  // CdTrack from its start to its end, of which `window` gets MM_MCINOTIFY; also the
                                // answer to that message, whatever its code. A failure closes the drive.
void StopCd(HWND window);       // a failure closes the drive
void CloseCdAudio();
