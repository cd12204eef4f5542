// The CD drive behind mciSendCommandA (host/mci.h).
//
// A play begins with the clock's reading at that moment and lasts as long as its file. A play that repeats the one that
// has just ended begins where that one ended, and the machine's sound, which goes round by itself, is left alone: there
// is no gap, however late in the frame the repeat is asked for. Log lines carry the clock: "5120 ms: cd: play track 2".
#pragma once

#include <string>

void SetDiscFolder(const std::string& folder);  // takes the disc out and puts this one in; it is read when it is opened
void TurnCdDrive();   // posts what the drive has to report at this reading of the clock; called by the message calls
void ResetCdDrive();  // closes the drive and takes the disc out
