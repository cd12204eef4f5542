// Pictures as PNG files.
#pragma once

#include "core/machine.h"

#include <string>

// RGB, 8 bits a channel, the same bytes for the same picture. False: `error` says why.
bool WritePng(const std::string& file, const Picture& picture, std::string& error);
