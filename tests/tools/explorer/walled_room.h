// Rooms for the search: 800 by 800 and 600 high, as worlds of level 3, whose start lies in a corner.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>

constexpr int LOW_CEILING = 320;  // above the floor

enum class Room {
    Safe,          // its walls lean away, so that a player who falls along them presses into them
    Upright,       // its walls stand upright
    Skirted,       // as Upright, with skirts behind them
    Netted,        // as Upright, with the floors behind walls and the ground below everything that mapc adds
    Ledge,         // as Safe, with ledges of 24 that lead aslant to a tall block
    LiddedLedge,   // as Ledge, with the lids over their corners that mapc adds
    Hollow,        // as Safe, with a wall and a steep bank whose feet meet
    FilledHollow,  // as Hollow, with the floor between them that mapc adds
    Low,           // as Safe, with a ceiling that a leap passes, and the slab below it that mapc adds
    Pit,           // as Safe, with a hole in the floor, 120 by 120 and 600 deep
};

// A point entity in the room; its place is one of the world.
struct RoomPoint {
    std::string className;
    std::array<double, 3> place;
};

// The height of the ground below everything, where there is one.
std::optional<float> WriteRoom(Room room, const std::filesystem::path& world,
                               const std::optional<RoomPoint>& point = std::nullopt);
