// Colours as people write them: "#rrggbb".
#pragma once

#include "formats/image.h"
#include "formats/settings.h"

Rgba ReadColour(const Settings& settings, const std::string& key);
Rgba ReadColour(const Settings& settings, const std::string& key, Rgba fallback);
std::vector<Rgba> ReadColours(const Settings& settings, const std::string& key);  // a list, empty when missing
