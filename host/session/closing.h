// A request to end the program, by the window's close button, a script, the end of a run or a signal
// (machine/process.h).
#pragma once

void RequestClose();
bool CloseRequested();
void CloseAtPoll();  // before each keyboard read: presses the left Windows key at every second one
void CloseAtWait();  // a game that waits for messages looks at no key: ends the process
void ResetClosing();
