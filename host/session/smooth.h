// Smooth pictures (--smooth, the settings, the key S): between two game frames the display's rate is filled with
// pictures of the way from the frame before to the last one, which the game draws when it is asked (host/host.h). So
// everything is shown one game frame later. The game knows nothing of them: the host shows them while the game waits
// for the clock.
//
// With steady lamps (the settings) each frame's picture is drawn a second time for the display, and at once.
//
// A level whose frames are no longer than the display's is shown as ever, and so is a frame that does not belong to the
// one before it, or after which there is no time to draw.
#pragma once

#include "host/probe.h"
#include "machine/options.h"

#include <cstdint>

// False: the file of --motion cannot be written; one line on standard error has said so.
bool StartSmooth(const Options& options);
bool FinishSmooth();  // false: that file is not complete

bool SmoothPictures();                                // they are switched on
bool SteadyLamps();                                   // the same of these
void OfferSmooth(const uint8_t* keys);                // at each poll that reads the keyboard: its key
void DeferFramePicture();                             // before a game frame: its picture is not shown at once
void BeginSmoothWait(const HostFrameReport& report);  // after it: from here on the game reads the clock
void SmoothAtClock();                                 // at each of these readings: shows what is due
