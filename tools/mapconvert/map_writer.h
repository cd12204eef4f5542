// Writes a map as text, so that mapc/map_file.h reads the same again. Before each brush stands the line it had.
#pragma once

#include "mapc/map_file.h"

std::string MapText(const MapFile& map);
