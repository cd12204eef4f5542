// The generated layers of a sky, each read from its table of the description and added to a shape.
#pragma once

#include "formats/toml_table.h"
#include "skyc/sky_shape.h"

constexpr float SKY_NEAREST = 100;  // distance from the eye
constexpr float SKY_RADIUS = 1500;  // radius of layers that name none; the accelerator's fog begins at 1900

// Bands around the eye from one elevation to the next. All bands of a dome meet without a gap.
void AddDome(const TomlTable& layer, float radius, SkyShape& shape);
// A level sheet overhead that hangs lower toward its rim.
void AddSheet(const TomlTable& layer, SkyShape& shape);
// A picture that faces the eye: sun, moon, a planet.
void AddDisc(const TomlTable& layer, float radius, SkyShape& shape);
// Many small pictures, scattered evenly.
void AddStars(const TomlTable& layer, float radius, SkyShape& shape);
// ContentError for more polygons than a sky may have; called before each layer makes more of them.
void CheckCount(size_t polygons, const TomlTable& layer);
// Adds a mesh from a .glb beside the description.
void AddModel(const TomlTable& layer, SkyShape& shape);
