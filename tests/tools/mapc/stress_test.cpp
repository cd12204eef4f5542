#include "generated_map.h"
#include "world_checks.h"

#include <gtest/gtest.h>

TEST(Generated, TwentyFiveRoomsAreSound) {
    const CompiledLevel level = Compile(GeneratedRooms(5));
    EXPECT_EQ(OpenEdges(level.world), Findings{});
    EXPECT_EQ(TurnedPolygons(level.world), Findings{});
    EXPECT_EQ(OrderedLeaves(level.world), Findings{});
    EXPECT_EQ(MisplacedPolygons(level.world), Findings{});
    EXPECT_EQ(PaintingFaults(level.world, 1000), Findings{});
    for (const Count& count : level.counts)
        printf("%zu %s\n", count.value, count.name.c_str());
    printf("contacts %d\n", level.contacts.count);
}
