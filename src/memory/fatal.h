// The one way out when something the game needs is missing or bad.
#pragma once

// SystemShutdown; then the host shows the message and, when a file is concerned, its path and the folder searched
// (standard error, and a box where there is a window); then the process exits with `exitCode` (0, 1 or -1).
// Alone in its object file: a test program that links one that throws gets that instead.
[[noreturn]] void FatalError(int exitCode, const char* message, const char* path = nullptr);
