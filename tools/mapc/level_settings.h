// The settings that a map makes for its level: the keys of worldspawn.
#pragma once

#include "mapc/bsp_tree.h"
#include "mapc/fault_list.h"
#include "mapc/map_file.h"

#include <array>
#include <optional>

// Hidden faces against falls and lifts, see compile.cpp: AddHidden.
struct Guards {
    bool net = false;       // mapc/net.h
    bool floors = false;    // mapc/floors_behind.h
    bool walls = false;     // mapc/ledge_walls.h
    bool hollows = false;   // mapc/hollows.h
    bool lids = false;      // mapc/lids.h
    bool ceilings = false;  // mapc/ceilings.h
};

struct LevelSettings {
    double scale = 1;           // "scale": engine units per map unit
    double subdivide = 256;     // "subdivide": grid, engine units, on which large faces are cut for light; 0 = never
    double lightTolerance = 6;  // "light_tolerance": light bytes by which faces left whole may differ from the grid's
    double lightLevel = 0.6;    // "light_level": brightness of a light byte of 0; 1 shows the textures unchanged
    double contrast = 1;        // "contrast": weight of the light bytes
    double ambient = 20;        // "ambient": light byte where no light reaches and nothing is near, 0..127
    double ambientDistance = 400;  // "ambient_distance": engine units; nearer surfaces keep ambient light away
    double sun = 0;                // "sun": light byte of a surface that faces the sun
    Vec3 sunDirection{1, 2, -3};   // "sun_direction": the way its light goes, map space, of any length
    double skyLight = 0;           // "sky_light": light byte of a surface that sees nothing but sky
    double bounce = 1;             // "bounce": weight of the light that comes back from lit surfaces
    double exposure = 1;           // "exposure": weight of all light together
    int fadeDistance = 10000;      // "fade_distance": software, everything has faded to the dark colour
    int farDistance = 16000;       // "far_distance": software, nothing beyond is drawn
    bool skirts = true;            // "skirts": leaning faces behind walls, see mapc/skirts.h
    Guards guards;                 // "guards": which of them, by their names
    FacesBehind facesBehind = FacesBehind::None;  // "faces_behind": 0 to 3, see mapc/bsp_tree.h
    int lightMode = 0;                            // "light_mode": 2 inverts the light
    bool plainBrightening = false;                // "plain_brightening": all colours brighten by the same fraction
    std::array<int, 3> brightColour{63, 63, 63};  // "bright_color": towards which light brightens, 0..63 each
    std::array<int, 3> darkColour{0, 0, 0};  // "dark_color": of darkness and distance; else as the materials have it
};

// dark: the colour that the level's palette was made for. ContentError for a key out of its range, and for a dark_color
// that is another one.
LevelSettings ReadSettings(const MapFile& map, const std::optional<std::array<int, 3>>& dark);
void CheckEntities(const MapFile& map,
                   FaultList* faults = nullptr);  // ContentError for a class or key that is not known
