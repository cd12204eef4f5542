// The light that falls on each point and lit corner of a world, in light bytes before rounding: lamps and the sun with
// their shadows, surfaces that shed light themselves, the sky, what little is everywhere, and what bounces once from
// lit surfaces. Engine space throughout. The result is the same on every processor and with any number of threads.
#pragma once

#include "formats/world_file.h"
#include "mapc/winding.h"

#include <array>
#include <functional>

struct Lamp {
    Vec3 position;
    double brightness = 0;  // light byte right beside it, on a surface that faces it; negative darkens
    double radius = 0;      // distance at which it has faded to nothing, linearly
    // A lamp that changes: the mean share of its brightness over time, which is what bounces.
    double mean = 1;
};

// How the material of a texture slot looks to light.
struct SurfaceLook {
    bool drawn = true;         // a surface that is not drawn neither catches light nor stops it
    double reflectance = 0.5;  // 0..1
    double cover = 1;          // part of the texels that is not hole; below 1 for a cut-out
    double light = 0;          // light byte that it gives a surface that sees nothing else
};

struct Surroundings {
    Vec3 toSun{0, 1, 0};           // unit
    double sun = 0;                // light byte of a surface that faces the sun
    double sky = 0;                // light byte of a surface that sees nothing but sky
    double ambient = 0;            // light byte of a surface with nothing near it
    double ambientDistance = 400;  // nearer surfaces keep some of the ambient light away
    double bounce = 1;             // share of the reflected light that counts
};

enum class LightQuality {
    None,  // all light bytes 0, and no faces cut for light
    Fast,  // fewer rays, and no bounce
    Full
};

struct BakeOptions {
    LightQuality quality = LightQuality::Full;
    int threads = 1;
    std::function<void(double)> progress;  // called now and then with the part that is done; 1 at the end
};

struct BakeInput {
    const WorldFile& world;
    std::vector<SurfaceLook> looks;  // for each texture slot how its material looks to light
    std::vector<Winding> sky;        // the faces through which the sky shows
    std::vector<Lamp> lamps;         // the lamps that always burn
    Surroundings surroundings;
    std::vector<Lamp> changing{};  // each gets a field of its own, with the light that it sends straight
    std::vector<Vec3> floors{};    // places that a player may stand on
};

struct LightField {
    std::vector<double> points;                  // one a point of the world
    std::vector<std::array<double, 8>> corners;  // one a polygon up to the last with corner light
};

constexpr double PLAYER_MIDDLE = 110;  // height above the floor that the player stands on

// The light on the middle of a player, as light bytes of a surface that faces where it comes from.
struct PlaceLight {
    Vec3 place;
    std::vector<double> lamps;  // light of each lamp; the changing ones come last
    double sun = 0;
    double above = 0;   // light from the surroundings on a surface that faces up
    double around = 0;  // light from the surroundings on a surface that faces to a side
};

struct BakedLight {
    LightField steady;  // all light but what changing lamps send straight
    std::vector<LightField> changing;
    std::vector<PlaceLight> places;  // places above the floors where a player has room
    Vec3 toSun;                      // unit
    size_t rays = 0;
};

BakedLight BakeLight(const BakeInput& input, const BakeOptions& options);
