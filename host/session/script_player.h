// Plays a script into the devices, at the moments session/script.h tells.
#pragma once

#include "session/script.h"

void StartScript(Script script);  // shots of a frame are left to the caller
bool PlayScriptAtPoll();          // true: at least one line acted
bool PlayScriptAtWait();
bool ScriptFramesPending();
bool ScriptTakesPhotos();  // it has a line that does
bool ScriptTimesPending();
