// The orderly end of the process.
#pragma once

// What EndRun does first: session/run.cpp's FinishRun. It returns false when a file of the run is not complete.
extern bool (*FinishBeforeEnd)();

// Completes the files of the run, stops the machine and exits the process, by a signal if a signal asked for the end.
// The status is EXIT_FAILURE when a file is not complete.
[[noreturn]] void EndRun(int status);
