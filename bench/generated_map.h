// Maps of any size, always the same for the same size: a square of rooms with doorways, pillars, stairs and crates.
#pragma once

#include "tools/mapc/map_builder.h"

// About 32 brushes a room.
MapBuilder GeneratedRooms(int roomsPerSide);
int BrushCount(const MapBuilder& map);
