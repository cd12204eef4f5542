// Files of the game, below the data folder (option --data).
#pragma once

#include <cstdio>
#include <string>

// A path of the game ("FrontEnd\Title.Bmp") as one of this machine: backslashes become slashes, and each component
// whose exact name is missing is matched without regard to case. Relative to the data folder.
std::string HostResolvePath(const char* gamePath);
std::FILE* HostOpenFile(const char* gamePath, const char* mode);  // null on failure and for a folder
const char* HostDataFolder();

// Shows a fatal message: standard error, and a message box where there is a window. `gamePath` may be null.
void HostReportFatal(const char* message, const char* gamePath);
