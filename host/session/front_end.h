// The screens before a level starts, as the host sees them, and the keys that --level and --renderer press there.
#pragma once

#include "machine/options.h"

bool InFrontEnd();  // its display mode is set: game frames stand still

void StartFrontEndKeys(const Options& options);
void WatchFrontEnd();      // at each keyboard poll
void PressFrontEndKeys();  // at each poll that reads the keyboard: each key once, and not at a screen's first poll
