// Pictures written as the program shows them.
#pragma once

#include <string>

// The picture last presented. False: there is none, or the file cannot be written; one line on standard error says so.
bool WritePicture(const std::string& file);
bool PicturesFailed();  // whether any could not be written since the program started
