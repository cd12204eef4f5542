// How a map becomes a world: the turn makes the player face +z.
#pragma once

#include "formats/places_file.h"
#include "formats/world_file.h"
#include "mapc/brush.h"

#include <optional>
#include <string>

struct Placement : MapFrame {
    Vec3 Turned(const Vec3& v) const;  // engine axes, neither scaled nor moved
    Vec3 ToEngine(const Vec3& p) const;
    WorldVector ToFile(const Vec3& p) const;
    Vec3 ToMap(const Vec3& p) const;  // back from engine space
};

struct PlayerStart {
    Vec3 origin;
    int angle = 0;  // degrees, 0 east, 90 north; a multiple of 90
    SourceLine line;
};

// The map's info_player_start. ContentError when there is none, more than one, or none with a usable origin and angle.
PlayerStart FindPlayerStart(const MapFile& map);

struct Floor {
    double height = 0;   // map space
    bool isSky = false;  // its face is left out: nobody can stand there
};

// The topmost brush below the point, if there is any.
std::optional<Floor> TopmostBelow(const Brushes& brushes, const Vec3& p);
// Its height.
std::optional<double> FloorBelow(const Brushes& brushes, const Vec3& p);

// level 0: scaled only. 1..8: the start's east-north position comes to the level's start, the floor below the start to
// the level's floor, and the start's direction to +z. ContentError when there is no floor below the start.
Placement PlaceMap(const Brushes& brushes, const PlayerStart& start, int level, double scale);
