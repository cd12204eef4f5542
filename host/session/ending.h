// The orderly end of the process.
#pragma once

// What EndRun does first: session/run.cpp's FinishRun. It returns false when a file of the run is not complete.
extern bool (*FinishBeforeEnd)();

// The files of the run are completed, the machine stops, the process exits, by a signal if that is what asked for the
// end. The status is EXIT_FAILURE when a file is not complete.
[[noreturn]] void EndRun(int status);
