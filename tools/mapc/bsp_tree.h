// Binary space partitions of faces, of two kinds.
#pragma once

#include "mapc/csg.h"
#include "records/table_facts.h"

// Children: >= 0 a node, < 0 the leaf ~child. The front child lies where the plane's distance is positive.
struct TreeNode {
    int plane = 0;
    int front = 0;
    int back = 0;
};

struct Tree {
    std::vector<TreeNode> nodes;  // node 0 is the root; there is always one
    std::vector<std::vector<Face>> leaves;
    int depth = 0;
};

// Which faces in the plane of a node go to the side behind it: the others go to the side that they face. What stands
// before a face that goes behind, as a table on a floor, is drawn after it without having cut it: a level has a fifth
// to a third fewer polygons. But the player touches the nearer side's faces first, and a wall that he touches after the
// riser of a step lifts him to its own top: the explorer must say whether a level bears it.
//
// AllAndWhole: faces also stay whole below what stands on them (mapc/csg.h), and more trees are tried.
enum class FacesBehind { None, ButHighWalls, All, AllAndWhole };

struct TreeOptions {
    double scale = 1;  // engine units per map unit
    FacesBehind behind = FacesBehind::None;
};

// Both add planes to the table of the brushes, and refuse (ContentError) a tree that becomes deeper, larger or costlier
// than the limits while they build it.

// Splits until no face is left over: every leaf is wholly solid or wholly empty. The leaves hold no faces.
Tree BuildSealingTree(std::vector<Face> faces, Brushes& brushes);

// Splits until the faces of each leaf may be drawn in any order, from any eye: of each two, either both lie in front of
// the other (a convex room) or both behind (a convex solid), so that no ray meets two of them from their front. Hidden
// faces are divided, too, but choose no planes. The terrain's grid divides it without cutting anything.
Tree BuildDrawingTree(std::vector<Face> faces, Brushes& brushes, const TreeOptions& options = {});

// The number of the leaf that the place lies in.
size_t LeafAt(const Tree& tree, const PlaneTable& planes, const Vec3& place);

// Whether two faces never overlap on the screen when both are seen from the front.
bool IsOrderFree(const Face& a, const Face& b, const PlaneTable& planes);
