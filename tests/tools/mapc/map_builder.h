// Writes small maps for tests.
#pragma once

#include "formats/material_list.h"
#include "mapc/compile.h"

#include <array>
#include <string>
#include <vector>

using Corner = std::array<int, 3>;

// wall floor ceiling (64 x 64) tall (32 x 128) water grate clip sky, and panel, which shines with 60
std::vector<Material> TestMaterials();

class MapBuilder {
public:
    MapBuilder& Key(const std::string& name, const std::string& value);  // adds a key to worldspawn
    MapBuilder& Box(const Corner& low, const Corner& high, const std::string& texture = "wall");
    // Adds six walls, 16 thick, around an empty box.
    MapBuilder& Room(const Corner& low, const Corner& high, const std::string& texture = "wall");
    // Adds a box that is turned by an eighth of a turn about the vertical through its middle.
    MapBuilder& TurnedBox(const Corner& low, const Corner& high, const std::string& texture = "wall");
    // Adds a three-sided brush, about 96 wide and slanting, whose corners do not lie on whole numbers.
    MapBuilder& Wedge(int x, int y, int height);
    MapBuilder& Brush(const std::string& faces);  // `faces`: the lines of the faces
    MapBuilder& BeginEntity(const std::string& className,
                            const std::string& keys = "");  // brushes go into this entity from now on
    MapBuilder& Start(const std::string& origin, int angle = 90);
    MapBuilder& Light(const std::string& origin, const std::string& keys = "");
    std::string Text() const;

    bool valve = false;   // faces are written with texture axes, in the Valve 220 format
    bool skirts = false;  // the compiler puts leaning faces behind walls
    std::string guards;   // names of the hidden faces that the compiler adds against falls, traps and lifts

private:
    std::string Face(const Corner& at, const Corner& u, const Corner& v, const std::string& texture) const;

    std::string keys_;
    std::string worldBrushes_;
    std::string entities_;
    std::string open_;  // the entity that is being written
};

const BakeOptions FAST_LIGHT{LightQuality::Fast, 1, {}};
CompiledLevel Compile(const MapBuilder& builder, int level = 0, const BakeOptions& bake = FAST_LIGHT);
