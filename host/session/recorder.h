// Makes the recording of this run: gathers the answers that the game gets, and the frames it plays.
//
// There is one when --record asks for it, and also when there is a log: then it is kept in memory only, without the
// pictures' digests, and written beside the log when the game fails.
#pragma once

#include "host/dinput.h"
#include "host/win32.h"
#include "machine/options.h"
#include "session/recording.h"

#include <string>

// False: --record's file cannot be written; one line on standard error has said so.
bool StartRecorder(const Options& options);
// Ends the recording and writes it, if it is asked for. False: it could not be written; a line has said so.
bool FinishRecorder();
// The game fails: the recording so far goes into its file, whoever asked for it. A sentence that tells where it and the
// log are; empty when there is neither. Only the first call does anything, the others say the same again.
std::string KeepFailure();

bool RecordsPictures();  // RecordFrame is to be given the pictures' digests

// The answers that the game gets.
void RecordClock(uint32_t milliseconds);
void RecordKeys(HRESULT result, const uint8_t* keys);
void RecordMouse(HRESULT result, const DIMOUSESTATE& state);
void RecordMessage(const MSG* message);  // null: there was none
void RecordFile(uint32_t digest);
void RecordFrame(const RecordedFrame& frame);

// A call's result as recordings hold it.
DeviceResult DeviceResultOf(HRESULT result);
HRESULT ResultOfDevice(DeviceResult result);
