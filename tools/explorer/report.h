// What a search found, for people and for the game.
#pragma once

#include "explorer/search.h"
#include "formats/places_file.h"

#include <filesystem>
#include <optional>

// The play as input that the game plays: --level N --script FILE. It ends some seconds after the play.
std::string ScriptOf(const KeyPlay& play, const std::string& comment);

// Where something lies in the world, and in the map as the editor shows it, if there is a places.txt that tells.
std::string PlaceText(const Vec3& place, const std::optional<MapFrame>& map);

// Writes a script for each fault into the folder, <level>_<kind>_<number>.txt, and returns the report.
std::string ReportOf(const SearchReport& report, const std::optional<MapFrame>& map,
                     const std::filesystem::path& folder, const std::string& level);
