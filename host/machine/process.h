// How the program behaves as a process: its standard streams go where they were sent, and a signal that asks for the
// end gets an orderly one.
#pragma once

// Opens /dev/null for each standard stream that is closed: the next file opened would get what is written to it.
// Called before any file is opened.
void OpenStandardStreams();

// From now on SIGHUP, SIGINT and SIGTERM ask the game to close (EndingSignal), except those that the program was
// started with to ignore. Another one, a second or more after the first, ends the process at once.
void WatchSignals();
int EndingSignal();  // the first that came; 0: none
void EndBySignal();  // ends the process by EndingSignal, so that a shell sees 128 + its number; returns if there is
                     // none
