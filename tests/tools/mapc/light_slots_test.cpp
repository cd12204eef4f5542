#include "mapc/light_slots.h"

#include "map_builder.h"
#include "mapc/steady_slots.h"
#include "support/content_error.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <numeric>

namespace {

// A lamp 202 above the middle of the floor of a dark room of 1024 x 1024 x 512.
MapBuilder RoomWithLamp(const std::string& keys, const std::string& bounce = "0") {
    MapBuilder map;
    map.Room({-512, -512, 0}, {512, 512, 512}).Start("300 300 100");
    map.Key("ambient", "0").Key("bounce", bounce).Key("light_tolerance", "0");
    return map.Light("0 0 202", "\"light\" \"60\"\n\"radius\" \"800\"\n" + keys);
}

std::string Style(const std::string& style, const std::string& keys = "") {
    return fmt::format("\"style\" \"{}\"\n{}", style, keys);
}

// Light bytes that a slot adds at an intensity to the floor's point at a place; -1: the slot does not name it.
double AddedAt(const CompiledLevel& level, const LightSlotRecord& slot, float intensity, const WorldVector& place) {
    for (int i = slot.firstPoint; i < slot.firstPoint + slot.pointCount; ++i) {
        const LightContribution& entry = level.slots.points[static_cast<size_t>(i)];
        const WorldPoint& point = level.world.points[entry.index];
        if (point.position == place && point.normal[1] == -1) return entry.weight * intensity * 64;
    }
    return -1;
}

// The sum of what slots give a character at a place that faces all of them, in light bytes.
double OnCharacter(const LightSlotFile& file, const Vec3& place) {
    double sum = 0;
    for (const LightSlotRecord& slot : file.slots) {
        const double distance = Length(Vec3{slot.position[0], slot.position[1], slot.position[2]} - place);
        if (distance * distance <= slot.radiusSquared) sum += (1 - distance / slot.radius) * slot.intensity * 64;
    }
    return sum;
}

}  // namespace

TEST(LightSlots, ARampAddsWhatASteadyLampWouldAtItsBrightest) {
    const CompiledLevel level =
        Compile(RoomWithLamp(Style("ramp", "\"low\" \"0.5\"\n\"rise\" \"20\"\n\"fall\" \"10\"\n\"start\" \"25\"\n")));
    const LightSlotRecord& ramp = level.slots.slots.at(0);
    EXPECT_EQ(ramp.type, LIGHT_RAMP);
    EXPECT_NEAR(AddedAt(level, ramp, ramp.highIntensity, {0, 0, 0}), 45, 1e-3);       // 60 x (1 - 200 / 800)
    EXPECT_NEAR(AddedAt(level, ramp, ramp.highIntensity, {256, 0, 0}), 21.94, 0.01);  // 324.9 away, cosine 0.616
    EXPECT_EQ(AddedAt(level, ramp, 1, {512, 0, 512}), -1) << "0.97 light bytes never show";
    EXPECT_EQ(*std::max_element(level.light.pointLight.begin(), level.light.pointLight.end()), 0);
    EXPECT_FLOAT_EQ(ramp.lowIntensity, ramp.highIntensity / 2);
    EXPECT_FLOAT_EQ(ramp.stepUp, ramp.highIntensity / 40);
    EXPECT_FLOAT_EQ(ramp.stepDown, ramp.highIntensity / -20);
    EXPECT_EQ(ramp.phase, 1);
    EXPECT_FLOAT_EQ(ramp.intensity, ramp.highIntensity * 0.75f);  // half-way down
}

TEST(LightSlots, ABlinkingLampStartsWhereTheMapSays) {
    const auto blinkAt = [](const std::string& start) {
        const std::string keys = "\"high_time\" \"5\"\n\"low_time\" \"9\"\n\"start\" \"" + start + "\"\n";
        return Compile(RoomWithLamp(Style("blink", keys))).slots.slots.at(0);
    };
    const LightSlotRecord dark = blinkAt("14");
    EXPECT_EQ(std::tuple(dark.type, dark.phase, dark.timer, dark.intensity), std::tuple(LIGHT_BLINK, 0, 9, 0.0f));
    EXPECT_EQ(std::tuple(dark.highTime, dark.lowTime), std::tuple(5, 9));
    const LightSlotRecord bright = blinkAt("11");
    EXPECT_EQ(std::tuple(bright.phase, bright.timer), std::tuple(1, 3));
    EXPECT_EQ(bright.intensity, bright.highIntensity);
}

TEST(LightSlots, AFlickeringLampIsItsLightInTheMean) {
    const CompiledLevel level = Compile(RoomWithLamp(Style("flicker")));
    const LightSlotRecord& flicker = level.slots.slots.at(0);
    EXPECT_EQ(flicker.type, LIGHT_FLICKER);
    EXPECT_NEAR(AddedAt(level, flicker, 2.49609375f, {0, 0, 0}), 45, 1e-3);
    EXPECT_NEAR(OnCharacter(level.slots, {0, 110, 0}), 53, 10);  // 60 x (1 - 92 / 800)
    EXPECT_LT(OnCharacter(level.slots, {500, 110, 500}), 20);
}

TEST(LightSlots, WhatBouncesIsAlwaysThere) {
    const auto bounced = [](const std::string& style) {
        const CompiledLevel level = Compile(RoomWithLamp(style, "4"), 0, {});
        return std::accumulate(level.light.pointLight.begin(), level.light.pointLight.end(), 0);
    };
    const int blinking = bounced(Style("blink", "\"high_time\" \"10\"\n\"low_time\" \"10\"\n"));
    const int ramping = bounced(Style("ramp", "\"low\" \"1\"\n"));
    EXPECT_GT(blinking, 0);
    EXPECT_NEAR(ramping, 2 * blinking, blinking / 5);
}

TEST(LightSlots, CornersAreLitLikePointsAndShadowsStay) {
    MapBuilder map = RoomWithLamp(Style("blink"));
    map.BeginEntity("func_group", "\"corner_light\" \"1\"\n").Box({-256, -256, 0}, {256, 256, 2}, "floor");
    map.BeginEntity("func_detail").Box({100, -512, 2}, {116, 512, 400});
    const CompiledLevel level = Compile(map);
    const LightSlotRecord& slot = level.slots.slots.at(0);
    int below = 0;
    for (int i = 0; i < slot.cornerCount; ++i) {
        const auto& [index, weight] = level.slots.corners[static_cast<size_t>(slot.firstCorner + i)];
        const WorldPolygon& polygon = level.world.polygons[index / 8];
        EXPECT_EQ(polygon.shading, WORLD_CORNER_LIGHT);
        const WorldVector& place =
            level.world.points[level.world.corners[polygon.firstCorner + index % 8].point].position;
        EXPECT_LE(place[0], 101) << "behind the screen";
        if (place == WorldVector{-256, 2, -256}) {
            EXPECT_NEAR(weight * slot.highIntensity * 64, 13.94, 0.01);  // 412.6 away, cosine 0.480
            ++below;
        }
    }
    EXPECT_GT(below, 0);
}

TEST(LightSlots, TheCharacterIsLitAsThePlaceIs) {
    // Two rooms beside each other; the lamp is in one of them.
    MapBuilder map;
    map.Room({-512, -512, 0}, {512, 512, 512}).Box({-16, -512, 0}, {16, 512, 440}).Start("300 300 100");
    map.Key("ambient", "20").Key("ambient_distance", "1").Key("bounce", "0");
    const CompiledLevel level = Compile(map.Light("-200 0 202", "\"light\" \"80\"\n\"radius\" \"900\"\n"));
    const double everywhere = 4 * 20;  // facing all four
    EXPECT_NEAR(OnCharacter(level.slots, {-200, 110, 0}), everywhere + 80 * (1 - 92.0 / 900), 15);
    EXPECT_LT(OnCharacter(level.slots, {400, 110, 0}), everywhere + 15) << "without the wall: 25 more";
}

TEST(LightSlots, SteadyLampsShareSlotsWhereThereAreTooMany) {
    MapBuilder map;
    map.Room({0, 0, 0}, {2400, 2400, 512}).Start("64 64 64");
    map.Key("ambient", "0").Key("bounce", "0").Key("light_tolerance", "0");
    std::vector<Vec3> lamps;
    for (int i = 0; i < 400; ++i) {
        const Vec3 lamp{60.0 + i % 20 * 120, 60.0 + i / 20 * 120, 300};
        lamps.push_back({lamp.x, lamp.z, lamp.y});
        map.Light(fmt::format("{} {} {}", lamp.x, lamp.y, lamp.z), "\"light\" \"4\"\n\"radius\" \"600\"\n");
    }
    const LightSlotFile slots = Compile(map).slots;
    EXPECT_LE(slots.slots.size(), LEVEL_SLOTS_MAX);
    for (const Vec3& place : {Vec3{600, 110, 600}, Vec3{1200, 110, 1200}, Vec3{1500, 110, 900}}) {
        double wanted = 0;
        for (const Vec3& lamp : lamps)
            wanted += std::max(0.0, 4 * (1 - Length(lamp - place) / 600));
        EXPECT_NEAR(OnCharacter(slots, place), wanted, wanted * 0.2);
        const auto reaching = std::count_if(slots.slots.begin(), slots.slots.end(), [&](const LightSlotRecord& slot) {
            return ReachesPlace({{slot.position[0], slot.position[1], slot.position[2]}, slot.radius}, place);
        });
        EXPECT_LE(reaching, CHARACTER_LIGHT_COUNT);
    }
}

TEST(LightSlots, TheSunIsAFarSlotAsStrongAsItsShareOfThePlaces) {
    BakedLight baked;
    baked.toSun = {0.6, 0.8, 0};
    baked.places = {{{0, 0, 0}, {}, 90}, {{200, 0, 0}, {}, 30}};
    const WorldFile world;
    const LampsByStyle lamps;
    const LightSlotFile file = MakeLightSlots(baked, {"made.map", world, lamps, Placement{}, 1});
    ASSERT_EQ(file.slots.size(), 1U);
    EXPECT_EQ(file.slots[0].type, LIGHT_PASSIVE);
    EXPECT_EQ(file.slots[0].position, (std::array<float, 3>{60100, 80000, 0}));
    EXPECT_NEAR(OnCharacter(file, {0, 0, 0}), 60, 0.1);
}

TEST(LightSlots, KeysThatMeanNothingAreRefused) {
    const std::pair<std::string, const char*> cases[] = {
        {Style("strobe"), "unknown style \"strobe\": use steady, ramp, blink"},
        {"\"stile\" \"blink\"\n", "unknown key stile of a light"},
        {"\"rise\" \"9\"\n", "the key rise means nothing to a light of style steady"},
        {Style("ramp", "\"high_time\" \"9\"\n"), "the key high_time means nothing to a light of style ramp"},
        {Style("ramp", "\"low\" \"1.5\"\n"), "the key low is 1.5: use 0 to 1"},
        {Style("blink", "\"low_time\" \"0\"\n"), "the key low_time is 0: use 1 to"},
        {Style("flicker", "\"_color\" \"0 0 0\"\n"), "a light of style flicker does not shine"},
    };
    for (const auto& row : cases)
        ExpectRefusal(row.second, [&] { Compile(RoomWithLamp(row.first)); });
}
