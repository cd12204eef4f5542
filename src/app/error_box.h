// The message box of every start-up failure.
#pragma once

#include "host/win32.h"

// Shows the text with the cursor visible, over a full-screen display too. Returns MessageBoxA's result.
int ErrorBox(const char* text, UINT flags);
