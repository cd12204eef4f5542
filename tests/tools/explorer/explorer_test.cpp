// The search in small rooms, each with one fault, and in one without; and the plays it writes, played by the game.
#include "explorer/report.h"
#include "explorer/route.h"
#include "mapc/jumps.h"
#include "player/player.h"
#include "program/run_program.h"
#include "records/walking_facts.h"
#include "walled_room.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const std::filesystem::path DATA = SOURCE_FOLDER "/tests/levels/data";
const std::filesystem::path WORLD = std::filesystem::path(testing::TempDir()) / "world.bgm";

SearchReport Explore(const std::filesystem::path& world, const std::filesystem::path& lights, const Vec3& start) {
    Walker walker({world, lights, DATA / "game/data/anims", start, 1});
    return Search(walker, {.frames = 800'000, .seed = 1}).Run();
}

SearchReport Explore(Room room) {
    WriteRoom(room, WORLD);
    return Explore(WORLD, {}, {223, 488, -211});
}

int CountOf(const SearchReport& report, FaultKind kind) {
    return static_cast<int>(std::count_if(report.faults.begin(), report.faults.end(),
                                          [&](const Fault& fault) { return fault.kind == kind; }));
}

TEST(Explorer, ARoomWithLeaningWallsIsSafe) {
    const SearchReport report = Explore(Room::Safe);
    EXPECT_EQ(report.faults.size(), 0U);
    EXPECT_GT(report.cells, 100U);
}

TEST(Explorer, UprightWallsAreCreptThrough) {
    const SearchReport report = Explore(Room::Upright);
    EXPECT_GT(CountOf(report, FaultKind::Creep), 0);
    EXPECT_GT(CountOf(report, FaultKind::Fall), 0);
    EXPECT_EQ(CountOf(report, FaultKind::Trap), 0);
}

TEST(Explorer, SkirtsStopWhoeverCreeps) {
    EXPECT_EQ(Explore(Room::Skirted).faults.size(), 0U);
}

TEST(Explorer, NobodyFallsBelowTheNet) {
    const std::optional<float> net = WriteRoom(Room::Netted, WORLD);
    ASSERT_TRUE(net);
    Walker walker({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, 1});
    SearchOptions options{.frames = 1'500'000, .seed = 1};
    const SearchReport report = Search(walker, options).Run();
    EXPECT_EQ(CountOf(report, FaultKind::Fall) + CountOf(report, FaultKind::Trap), 0);
    EXPECT_LT(report.lowest.y, *net + STANDING_HEIGHT + 8);  // somebody came down on it
    Walker again({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, 1});
    options.net = net;
    EXPECT_GT(CountOf(Search(again, options).Run(), FaultKind::Fall), 0);  // and that is told
}

TEST(Explorer, ALedgeBesideATallWallThrowsThePlayerUpButUnderALid) {
    EXPECT_GT(CountOf(Explore(Room::Ledge), FaultKind::Lift), 0);
    EXPECT_EQ(CountOf(Explore(Room::LiddedLedge), FaultKind::Lift), 0);
}

TEST(Explorer, APitWithoutAWayOutIsATrap) {
    EXPECT_GT(CountOf(Explore(Room::Pit), FaultKind::Trap), 0);
}

TEST(Explorer, AFloorInASteepHollowLetsThePlayerOut) {
    EXPECT_GT(CountOf(Explore(Room::Hollow), FaultKind::Trap), 0);
    EXPECT_EQ(CountOf(Explore(Room::FilledHollow), FaultKind::Trap), 0);
}

// Writes the room with an entity at the place of its first fault of the kind, which is returned.
Fault Mend(Room room, FaultKind kind, const std::string& className) {
    const SearchReport report = Explore(room);
    const auto fault =
        std::find_if(report.faults.begin(), report.faults.end(), [&](const Fault& each) { return each.kind == kind; });
    if (fault == report.faults.end()) throw std::runtime_error("no fault");
    WriteRoom(room, WORLD, RoomPoint{className, {fault->place.x, fault->place.y, fault->place.z}});
    return *fault;
}

TEST(Explorer, AFootingIsAFloorForWhoeverHangsAtItsPlace) {
    const Fault trap = Mend(Room::Hollow, FaultKind::Trap, "info_footing");
    Walker walker({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, 1});
    Body body = walker.Save();
    body.actor.state = STATE_HOP_AIR;
    body.actor.position = {trap.place.x, trap.place.y + 40, trap.place.z};
    walker.Restore(body);
    for (int i = 0; i < 60; ++i)
        walker.Frame(0);
    EXPECT_GT(walker.Save().actor.contactSlope, LANDING_SLOPE);
    EXPECT_NE(walker.Save().actor.state, STATE_HOP_AIR);
    EXPECT_NEAR(walker.Position().y, trap.place.y, 32);
}

// Plays the fault again; its last keys are held for so many more frames.
Vec3 PlayAgain(const Fault& fault, uint32_t held) {
    Walker walker({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, 1});
    KeyPlay play = fault.play;
    play.push_back({play.back().controls, held});
    for (const HeldKeys& keys : play) {
        for (uint32_t i = 0; i < keys.frames; ++i)
            walker.Frame(keys.controls);
    }
    return walker.Position();
}

TEST(Explorer, ALidKeepsDownWhoeverWasThrownUpAtItsPlace) {
    const Fault lift = Mend(Room::Ledge, FaultKind::Lift, "info_lid");
    EXPECT_LT(PlayAgain(lift, 0).y, lift.outcome.y - 80);
}

TEST(Explorer, ASkirtStopsWhoeverCreepsAtItsPlace) {
    const Fault creep = Mend(Room::Upright, FaultKind::Creep, "info_skirt");
    EXPECT_GT(PlayAgain(creep, 1000).y, creep.place.y - JumpHeight(1));  // not below the floor
}

float StartOnTheFloor(Walker& walker) {
    for (int i = 0; i < 60; ++i)
        walker.Frame(0);
    return walker.Position().y;
}

TEST(Explorer, JumpsAreAsHighAsTheMapCompilerTakesThemFor) {
    WriteRoom(Room::Safe, WORLD);
    for (const uint32_t ticks : {1U, 2U, 4U}) {
        Walker walker({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, ticks});
        const float standing = StartOnTheFloor(walker);
        float highest = standing;
        const auto play = [&](uint16_t controls, uint32_t atTicks) {
            for (uint32_t i = 0; i < atTicks / ticks; ++i) {
                walker.Frame(controls);
                highest = std::max(highest, walker.Position().y);
            }
        };
        play(CTL_SPACE, 120);  // a hop
        play(CTL_UP, 60);
        play(CTL_UP | CTL_SPACE, 120);  // a leap
        EXPECT_NEAR(highest - standing, JumpHeight(static_cast<int>(ticks)), 2) << ticks;
    }
}

TEST(Explorer, ASlabKeepsTheHeadBelowALowCeiling) {
    WriteRoom(Room::Low, WORLD);
    Walker walker({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, 1});
    const float standing = StartOnTheFloor(walker);
    const SearchReport report = Search(walker, {.frames = 400'000, .seed = 1}).Run();
    EXPECT_EQ(report.faults.size(), 0U);
    EXPECT_NEAR(report.highest.y + HEAD_HEIGHT, standing - STANDING_HEIGHT + LOW_CEILING, 5);
}

TEST(Explorer, ARouteEndsAtTheMarkThatCannotBeReached) {
    WriteRoom(Room::Safe, WORLD);
    Walker walker({WORLD, {}, DATA / "game/data/anims", {223, 488, -211}, 1});
    PlacesFile places;
    places.marks = {{1, 523, 485, 89, 60}, {2, 123, 485, 89, 60}, {3, 123, 885, 89, 60}};
    places.routeTime = 10;
    const RouteReport report = WalkRoute(walker, places, 1);
    ASSERT_EQ(report.legs.size(), 3U);
    EXPECT_TRUE(report.legs[1].reached);
    EXPECT_GT(report.legs[1].seconds, 400 / 538.0);  // the least time that a run takes
    EXPECT_LT(report.legs[1].seconds, 3);
    EXPECT_FALSE(report.legs[2].reached);  // the mark lies too high
    EXPECT_FALSE(report.WithinTime(places));
}

// In the game the play ends where the search says, to the last bit.
TEST(Explorer, ItsScriptsPlayInTheGame) {
    const std::filesystem::path level = DATA / "game/data/levels/level3";
    const SearchReport report = Explore(level / "house.bgm", level / "lights.alt", {223, 488, -211});
    ASSERT_FALSE(report.faults.empty());
    const Fault& fault = report.faults.back();
    const ProgramRun program;
    program.Write("keys", ScriptOf(fault.play, "a fault"));
    const ProgramResult play = program.Run("--data '" + DATA.string() +
                                           "' --renderer software --level 3 --script keys --trace t --from 1000000 " +
                                           "--frames " + std::to_string(fault.frames));
    ASSERT_EQ(play.status, 0) << play.errors;
    const std::string trace = program.Read("t");
    Vec3 end{};
    ASSERT_EQ(std::sscanf(trace.c_str() + trace.rfind("\"pos\":["), "\"pos\":[%f,%f,%f", &end.x, &end.y, &end.z), 3);
    EXPECT_EQ(end.x, fault.outcome.x);
    EXPECT_EQ(end.y, fault.outcome.y);
    EXPECT_EQ(end.z, fault.outcome.z);
}

}  // namespace
