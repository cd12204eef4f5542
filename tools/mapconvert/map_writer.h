// Writes a map as text, so that mapc/map_file.h reads the same again. Above each brush and entity stands the
// line that it had, where it had one.
#pragma once

#include "mapc/map_file.h"

std::string MapText(const MapFile& map);
