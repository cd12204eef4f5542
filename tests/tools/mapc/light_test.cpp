#include "map_builder.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <map>

namespace {

constexpr std::array<float, 3> UP{0, 1, 0};
const BakeOptions FULL{};

// Light bytes by place and outward normal, in engine axes: x, height, y of the map.
class LightAt {
public:
    explicit LightAt(const MapBuilder& map, const BakeOptions& bake = FULL) : level_(Compile(map, 0, bake)) {
        for (const WorldPolygon& polygon : level_.world.polygons) {
            const size_t number = static_cast<size_t>(&polygon - level_.world.polygons.data());
            for (size_t k = 0; k < polygon.cornerCount; ++k) {
                const size_t point = level_.world.corners[polygon.firstCorner + k].point;
                const int byte = polygon.shading == WORLD_POINT_LIGHT ? level_.light.pointLight[point]
                                                                      : level_.light.cornerLight[number][k];
                const auto& [x, y, z] = level_.world.points[point].normal;
                const WorldVector outward{0 - x, 0 - y, 0 - z};
                const auto [entry, isNew] =
                    bytes_.try_emplace({polygon.texture, level_.world.points[point].position, outward}, byte);
                if (!isNew && entry->second != byte) ++seams_;
            }
        }
    }

    // The byte of that corner, or -1 when there is no such corner.
    int operator()(const WorldVector& place, const WorldVector& outward = UP) const {
        for (const auto& [key, byte] : bytes_) {
            if (std::get<1>(key) == place && std::get<2>(key) == outward) return byte;
        }
        return -1;
    }
    int Seams() const { return seams_; }
    const CompiledLevel& Level() const { return level_; }

private:
    CompiledLevel level_;
    std::map<std::tuple<uint8_t, WorldVector, WorldVector>, int> bytes_;
    int seams_ = 0;  // corners in one place and of one surface that differ
};

// A room of 1024 x 1024, 512 high.
MapBuilder Room(const std::string& ambient, const std::string& bounce) {
    MapBuilder map;
    map.Room({-512, -512, 0}, {512, 512, 512}).Start("300 300 100");
    return map.Key("ambient", ambient).Key("bounce", bounce).Key("light_tolerance", "0");
}

MapBuilder DarkRoom() {
    return Room("0", "0");
}

// A room that is open to the sky through a hole of 256 x 256 in its ceiling.
MapBuilder RoomWithSkylight() {
    MapBuilder map;
    map.Room({-512, -512, 0}, {512, 512, 528});
    map.Box({-512, -512, 512}, {512, -128, 528}).Box({-512, 128, 512}, {512, 512, 528});
    map.Box({-512, -128, 512}, {-128, 128, 528}).Box({128, -128, 512}, {512, 128, 528});
    map.Box({-128, -128, 520}, {128, 128, 528}, "sky");
    return map.Start("300 300 100").Key("ambient", "0").Key("light_tolerance", "0");
}

}  // namespace

TEST(Light, ALampFadesWithDistanceAndAngle) {
    MapBuilder map = DarkRoom().Light("0 0 202", "\"light\" \"60\"\n\"radius\" \"800\"\n");
    const LightAt light(map.Light("0 0 202", "\"_color\" \"0 0 0\"\n"), FAST_LIGHT);
    EXPECT_EQ(light({0, 0, 0}), 45);     // 60 x (1 - 200 / 800), straight below
    EXPECT_EQ(light({256, 0, 0}), 22);   // 324.9 away, cosine 0.616
    EXPECT_EQ(light({512, 0, 512}), 1);  // 751 away, cosine 0.266: 0.97
}

TEST(Light, BrightLightIsPressedTogetherBelowTheLargestByte) {
    const auto below = [](const std::string& brightness) {
        return LightAt(DarkRoom().Light("0 0 202", "\"light\" \"" + brightness + "\"\n"), FAST_LIGHT)({0, 0, 0});
    };
    EXPECT_EQ(below("100"), 75);
    EXPECT_LT(below("200"), below("400"));
    EXPECT_LT(below("400"), 127);
}

TEST(Light, WhatStandsBetweenCastsAShadow) {
    const LightAt light(DarkRoom().Box({64, -400, 0}, {96, 400, 300}).Light("-200 0 250"), FAST_LIGHT);
    EXPECT_GT(light({-256, 0, 0}), 50);
    EXPECT_EQ(light({512, 0, 512}), 0);
}

TEST(Light, ACutOutStopsItsShareOfLightAndAClipBrushNone) {
    const std::string lamp = "\"light\" \"60\"\n\"radius\" \"800\"\n";
    const auto below = [&](const std::string& texture, const WorldVector& place) {
        MapBuilder map = DarkRoom().Box({-100, -100, 100}, {100, 100, 116}, texture);
        return LightAt(map.Light("0 0 202", lamp), FAST_LIGHT)(place);
    };
    EXPECT_EQ(below("clip", {0, 0, 0}), 45);
    EXPECT_EQ(below("grate", {0, 0, 0}), 34);  // a quarter of its texels stop light, and front and back count once
    EXPECT_EQ(below("wall", {100, 0, 100}), 0);
}

TEST(Light, TheSunComesInThroughTheSkyOnly) {
    MapBuilder map = RoomWithSkylight();
    const LightAt noon(map.Key("sun", "70").Key("sun_direction", "0 0 -2"), FAST_LIGHT);
    EXPECT_EQ(noon({0, 0, 0}), 70);
    EXPECT_EQ(noon({256, 0, 256}), 0);
    const LightAt slanting(RoomWithSkylight().Key("sun", "70").Key("sun_direction", "1 0 -2"), FAST_LIGHT);
    EXPECT_EQ(slanting({256, 0, 0}), 63);  // 70 x cosine 0.894; the hole's light has moved by half of its height
    EXPECT_EQ(slanting({-512, 0, -512}), 0);
}

TEST(Light, TheSkyItselfLightsWhatSeesIt) {
    const LightAt light(RoomWithSkylight().Key("sky_light", "100"));
    EXPECT_NEAR(light({0, 0, 0}), 7.1, 1.5);  // form factor of a square of 256 at 516: 0.071
    EXPECT_GT(light({0, 0, 0}), light({512, 0, 512}));
}

TEST(Light, AmbientLightIsWeakerInCorners) {
    const LightAt light(Room("40", "0").Key("ambient_distance", "500"));
    EXPECT_NEAR(light({0, 0, 0}), 40, 1);
    EXPECT_LT(light({512, 0, 512}), 28);
}

TEST(Light, ALitSurfaceBrightensWhatNoLampReaches) {
    // The lamp lights one end of the room; a wall that leaves a gap below the ceiling keeps it from the other.
    const auto behindTheWall = [](const std::string& bounce) {
        MapBuilder map = Room("0", bounce).Box({0, -512, 0}, {32, 512, 400});
        return LightAt(map.Light("-256 0 200", "\"light\" \"120\"\n"))({512, 0, 512});
    };
    EXPECT_EQ(behindTheWall("0"), 0);
    EXPECT_GE(behindTheWall("1"), 1);
    EXPECT_GT(behindTheWall("4"), 2 * behindTheWall("1"));
}

TEST(Light, AShiningSurfaceLightsOthersButDoesNotPaintItsSurroundings) {
    MapBuilder map = DarkRoom();
    const LightAt light(map.Box({-256, -256, 496}, {256, 256, 512}, "panel"));
    EXPECT_EQ(light({-256, 496, -256}, {0, -1, 0}), 30);
    EXPECT_NEAR(light({0, 0, 0}), 60 * 0.239, 1.5);  // form factor of a square of 512 at 494: 0.239
    EXPECT_LT(light({512, 512, 512}, {0, -1, 0}), 5);
}

TEST(Light, NoRaysLookForLightThatIsNowhere) {
    const auto raysOf = [](const MapBuilder& map) { return LightAt(map).Level().rays; };
    const size_t direct = raysOf(DarkRoom().Light("0 0 300"));
    EXPECT_GT(raysOf(Room("1", "0").Light("0 0 300")), direct * 4);
    EXPECT_GT(raysOf(Room("0", "1").Light("0 0 300")), direct * 4);
    EXPECT_GT(raysOf(RoomWithSkylight().Key("sky_light", "9").Key("bounce", "0")), direct * 4);
}

TEST(Light, NeighboursAgreeOnTheirBorder) {
    MapBuilder map = Room("20", "1").Light("100 50 300");
    map.BeginEntity("func_group", "\"corner_light\" \"1\"\n").Box({-512, -512, 0}, {-100, 512, 8}, "floor");
    map.Box({-100, -512, 0}, {100, 512, 8}, "floor");
    const LightAt light(map);
    EXPECT_EQ(light.Seams(), 0);
    EXPECT_FALSE(light.Level().light.cornerLight.empty());
}

TEST(Light, NumberOfThreadsDoesNotMatter) {
    MapBuilder map = RoomWithSkylight().Light("50 60 70").Key("sun", "60").Key("sky_light", "9");
    map.Light("-50 60 70", "\"style\" \"ramp\"\n").Light("0 0 300", "\"style\" \"flicker\"\n");
    const CompiledLevel one = Compile(map, 3, {LightQuality::Full, 1, {}});
    for (const int threads : {2, 3}) {
        const CompiledLevel several = Compile(map, 3, {LightQuality::Full, threads, {}});
        EXPECT_EQ(EncodeLightMap(several.light), EncodeLightMap(one.light));
        EXPECT_EQ(EncodeLightSlots(several.slots), EncodeLightSlots(one.slots));
        EXPECT_EQ(several.rays, one.rays);
    }
}

TEST(Light, LampsInsideWallsAreRefusedAllAtOnce) {
    const auto compile = [] { Compile(DarkRoom().Light("0 0 -8").Light("0 0 100").Light("517 0 8")); };
    ExpectRefusal("the light at (0 0 -8) is inside the brush of test.map:6", compile);
    ExpectRefusal("the light at (517 0 8)", compile);
    EXPECT_EQ(MessageOf(compile).find("0 0 100"), std::string::npos);
}
