// The music of a level: a track of the CD, played again whenever it ends.
// No music yet: the drive cannot be opened, and the other calls have nothing to do.
#pragma once

#include "host/win32.h"

#include <cstdint>

extern uint32_t CdTrack;  // the track to play, of which the low byte is used; set by RunGame

bool OpenCdAudio();  // false: no drive; the game runs without music
void PlayCdTrack(HWND window);
void StopCd(HWND window);
void CloseCdAudio();
