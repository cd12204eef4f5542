// Reads a .map file: entities with keys and brushes, a brush being the space behind all its planes. Three ways to write
// a face are understood, also mixed: Standard, Valve 220, and that of brush primitives.
//     ( x y z ) ( x y z ) ( x y z ) TEXTURE xOffset yOffset rotation xScale yScale
//     ( x y z ) ( x y z ) ( x y z ) TEXTURE [ ux uy uz uOffset ] [ vx vy vz vOffset ] rotation xScale yScale
//     ( x y z ) ( x y z ) ( x y z ) ( ( uAcross uDown uOffset ) ( vAcross vDown vOffset ) ) TEXTURE
// Faces of the third form may stand in brushDef { } within their brush. Their u and v count repeats of the picture,
// along the axes that PrimitiveAxes gives. The three points run clockwise as seen from outside the brush. Numbers after
// the scales are skipped.
#pragma once

#include "mapc/geometry.h"
#include "mapc/source_line.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// Limits that hold while the text is read. A level's world holds 20,000 polygons at most.
constexpr size_t MAP_ENTITIES_MAX = 20000;
constexpr size_t MAP_BRUSHES_MAX = 20000;
constexpr size_t MAP_KEYS_MAX = 256;         // keys of one entity
constexpr size_t MAP_BRUSH_FACES_MAX = 128;  // faces of one brush
constexpr size_t MAP_FACES_MAX = 200000;     // faces of all brushes

struct MapFace {
    std::array<Vec3, 3> points;
    std::string texture;
    bool hasAxes = false;    // the second form, or the third
    bool inRepeats = false;  // the third form: axes and offsets count repeats of the picture instead of texels
    Vec3 uAxis, vAxis;       // only with hasAxes
    double uOffset = 0;      // texels
    double vOffset = 0;
    double rotation = 0;  // degrees; of no effect with hasAxes
    double uScale = 0;    // map units per texel
    double vScale = 0;
    bool smooth = false;  // a terrain's face: lit as one surface with its neighbours
    SourceLine line;
};

struct MapBrush {
    std::vector<MapFace> faces;
    SourceLine line;
};

struct MapKey {
    std::string name;
    std::string value;
    SourceLine line;
};

struct MapEntity {
    std::vector<MapKey> keys;
    std::vector<MapBrush> brushes;
    SourceLine line;

    const MapKey* Find(const std::string& name) const;
    std::string ClassName() const;  // empty when there is none
};

struct MapFile {
    std::string name;  // as messages call it
    std::vector<MapEntity> entities;
};

MapFile ParseMap(const std::string& text, const std::string& name);  // ContentError with file and line
MapFile ReadMapFile(const std::filesystem::path& path);

std::string PlaceText(const Vec3& p);  // "(12 -40 7)", as messages name it

// Values of keys; a missing key gives the default, a malformed one a ContentError that names the key's line.
double NumberKey(const MapEntity& entity, const std::string& name, double ifMissing);
double NumberKeyIn(const MapEntity& entity, const std::string& name, double ifMissing, double least,
                   double most);  // also a ContentError beyond least and most
std::optional<Vec3> VectorKey(const MapEntity& entity, const std::string& name);
