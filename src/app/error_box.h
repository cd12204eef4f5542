// The message box of every start-up failure.
#pragma once

#include "host/win32.h"

int ErrorBox(const char* text, UINT flags);
