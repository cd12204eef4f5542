// The host's log lines, and where the game's standard output goes.
#pragma once

#include "machine/options.h"

// --log without --verbose: standard output goes to the file from now on. False: it cannot be written; one line on
// standard error has said so.
bool StartLog(const Options& options);
bool FinishLog();  // false: the log or standard output is not complete; one line on standard error has said so
// One line: to the log file when there is one, with --verbose to standard error, else nowhere.
[[gnu::format(printf, 1, 2)]] void HostLog(const char* format, ...);
