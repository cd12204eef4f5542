#include "mapc/mesh.h"

#include <gtest/gtest.h>

// The third vertex lies where the second does: filling the edge up to the one with the other would never end.
TEST(Mesh, VerticesInOnePlaceDoNotFillAnEdgeForEver) {
    Mesh mesh;
    mesh.vertices = {{0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}};
    mesh.leaves = {{{{0, 1, 3}, 0, 0, false}, {{0, 4, 2}, 0, 0, false}}};
    FillTJunctions(mesh, 1);
    EXPECT_EQ(mesh.leaves[0][0].corners.size(), 3U);
}
