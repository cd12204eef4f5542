// Makes, from the description of a sky (.toml), the static object that the game draws.
#pragma once

#include "formats/material_list.h"
#include "formats/static_object_file.h"
#include "skyc/sky_shape.h"

#include <filesystem>
#include <string>

SkyShape ReadSky(const std::filesystem::path& description);
// ContentError, naming `file`, for materials that are not in the list or never drawn, polygons that are degenerate,
// bent, not convex or turned away from the eye, and points nearer or farther than the game can draw.
StaticObjectFile CompileSky(const SkyShape& shape, const std::vector<Material>& materials, const std::string& file);
// Writes the file and returns a line of counts.
std::string CompileSkyToFile(const std::filesystem::path& description, const std::filesystem::path& materials,
                             const std::filesystem::path& output);
