// Plays a script into the devices, at the moments core/script.h tells.
#pragma once

#include "core/script.h"

void StartScript(Script script);  // shots of a frame are left to the caller
bool PlayScriptAtPoll();          // true: at least one line acted
bool PlayScriptAtWait();
bool ScriptFramesPending();
bool ScriptTimesPending();
