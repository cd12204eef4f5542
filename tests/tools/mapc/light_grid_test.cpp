// Where faces are cut for light: enough to show its shape, and no more.
#include "map_builder.h"
#include "world_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

namespace {

Vec3 PlaceOf(const WorldFile& world, const WorldPolygon& polygon, size_t corner) {
    const WorldVector& p = world.points[world.corners[polygon.firstCorner + corner].point].position;
    return {p[0], p[1], p[2]};
}

double LightOf(const CompiledLevel& level, const WorldPolygon& polygon, size_t corner) {
    return level.light.pointLight[level.world.corners[polygon.firstCorner + corner].point];
}

// The light at a place as the triangles of the polygon's fan show it; nothing where the place is outside the polygon.
std::optional<double> ShownLight(const CompiledLevel& level, const WorldPolygon& polygon, const Vec3& place) {
    const Vec3 origin = PlaceOf(level.world, polygon, 0);
    for (size_t i = 2; i < polygon.cornerCount; ++i) {
        const Vec3 b = PlaceOf(level.world, polygon, i - 1) - origin;
        const Vec3 c = PlaceOf(level.world, polygon, i) - origin;
        const Vec3 normal = Cross(b, c);
        const Vec3 p = place - origin;
        const double area = LengthSquared(normal);
        if (area == 0) continue;
        const double partB = Dot(Cross(p, c), normal) / area;
        const double partC = Dot(Cross(b, p), normal) / area;
        if (partB < -1e-6 || partC < -1e-6 || partB + partC > 1 + 1e-6) continue;
        return LightOf(level, polygon, 0) * (1 - partB - partC) + LightOf(level, polygon, i - 1) * partB +
               LightOf(level, polygon, i) * partC;
    }
    return std::nullopt;
}

// The greatest difference of light at the points of another world, on polygons that face the same way.
double GreatestDifference(const CompiledLevel& level, const CompiledLevel& finer) {
    double greatest = 0;
    for (size_t i = 0; i < finer.world.points.size(); ++i) {
        const WorldPoint& point = finer.world.points[i];
        const Vec3 place{point.position[0], point.position[1], point.position[2]};
        bool found = false;
        for (const WorldPolygon& polygon : level.world.polygons) {
            const WorldPlane& plane = level.world.planes[polygon.plane];
            const Vec3 normal{plane.normal[0], plane.normal[1], plane.normal[2]};
            if (plane.normal != point.normal || std::abs(Dot(normal, place) + plane.offset) > 0.01) continue;
            const std::optional<double> light = ShownLight(level, polygon, place);
            if (!light) continue;
            found = true;
            greatest = std::max(greatest, std::abs(*light - finer.light.pointLight[i]));
        }
        EXPECT_TRUE(found) << place.x << " " << place.y << " " << place.z;
    }
    return greatest;
}

MapBuilder Hall(const std::string& tolerance) {
    MapBuilder map;
    map.Key("light_tolerance", tolerance).Room({0, 0, 0}, {4096, 3072, 1024}).Start("64 64 64");
    map.Box({1000, 1000, 0}, {1300, 1100, 1024}).TurnedBox({2200, 900, 0}, {2600, 1300, 300});
    return map.Light("700 800 300").Light("3500 2500 900", "\"radius\" \"1500\"\n\"light\" \"80\"\n");
}

}  // namespace

TEST(LightGrid, EvenLightCutsNothing) {
    MapBuilder map;
    map.Key("ambient", "0").Room({0, 0, 0}, {4096, 3072, 1024}).Start("64 64 64");
    EXPECT_EQ(Compile(map).world.polygons.size(), 6U);
    map.Light("600 600 100", "\"light\" \"5\"\n");
    EXPECT_EQ(Compile(map).world.polygons.size(), 6U) << "a weak lamp is within the tolerance";
}

TEST(LightGrid, WorldsThatAreOnlyTooLargeOnTheWholeGridAreTaken) {
    MapBuilder map;
    map.Key("ambient", "0").Key("subdivide", "128").Room({0, 0, 0}, {20000, 20000, 512}).Start("64 64 64");
    const CompiledLevel level = Compile(map);
    EXPECT_EQ(level.world.polygons.size(), 6U) << "of 28,000 on the whole grid";
    EXPECT_GE(level.light.farDistance, 28288) << "the view reaches from end to end";
}

TEST(LightGrid, IsCoarserWhereAPlayerWouldTouchTooMuch) {
    MapBuilder map = Hall("0");
    map.Key("subdivide", "128");
    for (int i = 0; i < 16; ++i) {
        const int x = 2800 + i % 4 * 40;
        const int y = 800 + i / 4 * 40;
        map.TurnedBox({x, y, 0}, {x + 24, y + 24, 150});
    }
    map.Light("2900 900 200", "\"radius\" \"300\"\n");
    const CompiledLevel level = Compile(map);
    EXPECT_LE(level.contacts.count, LEVEL_CONTACTS_MAX);
    ASSERT_FALSE(level.notes.empty());
    EXPECT_NE(level.notes[0].find("the light grid is coarser around (2"), std::string::npos) << level.notes[0];
    EXPECT_GT(level.world.polygons.size(), 1000U) << "it is as fine as it was elsewhere";
    EXPECT_EQ(Faults(level.world), Findings{});
}

TEST(LightGrid, WhatIsLeftWholeShowsTheLightOfTheWholeGrid) {
    const CompiledLevel exact = Compile(Hall("0"));
    for (const double tolerance : {3.0, 6.0, 12.0}) {
        const CompiledLevel level = Compile(Hall(std::to_string(tolerance)));
        EXPECT_LE(GreatestDifference(level, exact), tolerance + 1e-3);
        EXPECT_LT(level.world.polygons.size() * 4, exact.world.polygons.size() * 3) << tolerance;
        EXPECT_EQ(OpenEdges(level.world), Findings{});
        EXPECT_EQ(FalseSteps(level.world), Findings{});
        EXPECT_EQ(Faults(level.world), Findings{});
    }
}
