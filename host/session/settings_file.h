// The file of the player's settings (machine/settings.h): --settings names it, --portable has it beside the program,
// and otherwise it is tarnwick/settings.txt in the user's configuration folder. A run without a window has none unless
// --settings names one.
#pragma once

#include "machine/options.h"

// Reads the file, if there is one, and lets the command line go before it. One line on standard error for each that is
// not understood.
void LoadSettings(Options& options);
// Writes what the player has changed. False: one line on standard error says why.
bool SaveSettings();
