// One level's files as they were read, and what the rules measure of its world, in engine space and double precision.
#pragma once

#include "formats/glide_texture.h"
#include "formats/light_files.h"
#include "formats/static_object_file.h"
#include "formats/texture_file.h"
#include "formats/world_file.h"
#include "mapc/placement.h"

#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

// A file that could not be read is missing here; its problem is already told.
struct LevelData {
    int number = 0;      // 1..8; 0: a map without a level, whose start and sky nobody knows
    std::string folder;  // the level's folder as messages name it
    std::optional<WorldFile> world;
    std::optional<LightMapFile> light;
    std::optional<LightSlotFile> slots;
    std::optional<TextureFile> textures;
    std::map<size_t, GlideTexture> glideTextures;  // the accelerator's pictures by texture
    std::optional<StaticObjectFile> sky;
    // Engine memory that the character takes; while it has no files, what it is planned to take.
    size_t characterBytes = 450000;

    // For a level that is not written yet: the name of its map, where places lie in it, and the textures that
    // texture.bin will not show.
    std::string map;
    std::optional<Placement> placement;
    std::vector<int> unseenSlots;

    std::string Describe(const Vec3& place) const;  // "(12 -40 7)", in the map where there is one

    std::string WorldPath() const;
    std::string LightPath() const { return map.empty() ? folder + "/lights.lmp" : map; }
    std::string SlotPath() const { return map.empty() ? folder + "/lights.alt" : map; }
    std::string TexturePath() const { return folder + "/texture.bin"; }
    std::string GlideTexturePath(size_t texture) const;
    std::string SkyPath() const { return folder + "/sky.sob"; }
};

// For each texture whether it has any texel that can be seen. Clip walls have none.
std::vector<bool> VisibleTextures(const LevelData& level);

// The level's start in the game's table; level 1 to 8.
Vec3 StartOf(int level);
bool HasSky(int level);
double LeastLeafRadius(int level);  // smaller leaves lose contacts at the level's frame length

Vec3 Widened(const WorldVector& v);

// A polygon is seen, and stops the player, from the negative side of its plane.
struct WorldFace {
    std::vector<Vec3> corners;
    Vec3 normal;  // into the solid
    double offset = 0;
    double reach =
        std::numeric_limits<double>::infinity();  // no corner is farther from the first; finds misses quickly

    double Distance(const Vec3& p) const { return Dot(normal, p) + offset; }
    double Up() const { return -normal.y; }  // vertical part of the outward normal: 1 floor, -1 ceiling
    Vec3 Centre() const;
    // The distance along the ray at which it meets the face from its visible side, no nearer than `margin` to an edge
    // (negative: that far beyond it counts too); infinity when it does not.
    double Hit(const Vec3& eye, const Vec3& direction, double margin) const;
};

std::vector<WorldFace> FacesOf(const WorldFile& world);
double NearestHit(const std::vector<WorldFace>& faces, const Vec3& eye, const Vec3& direction, double margin);
// Up to `most` places 60 above floors that have the room, spread over the level; the start is the first. Floors that
// nobody sees do not count: those inside walls are there for who creeps into them.
std::vector<Vec3> PlacesOfPlay(const LevelData& level, const std::vector<WorldFace>& faces, size_t most);
