// The one way out when something the game needs is missing or bad.
#pragma once

// SystemShutdown, then the message (and, when a file is concerned, its path and the folder searched) is shown by
// the host and the process exits. Standard output is not written. Tests link a throwing one in its place.
[[noreturn]] void FatalError(int exitCode, const char* message, const char* path = nullptr);
