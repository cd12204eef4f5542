#include "mapc/bsp_tree.h"

#include "mapc/counts.h"
#include "records/walking_facts.h"

#include <optional>
#include <utility>

namespace {

constexpr size_t CANDIDATES_MAX = 100;          // planes tried at a node
constexpr size_t CANDIDATES_MAX_BEHIND = 1000;  // the same where any faces go behind
constexpr size_t ORDER_TEST_MAX = 400;          // more faces than this are never order-free
constexpr size_t SEALING_NODES_MAX = 100'000;   // the largest of our levels has 656
constexpr size_t COMPARISONS_MAX =
    1'000'000'000;             // comparisons of a face with a plane; the largest of our levels takes 1,500,000
constexpr double GRID = 1024;  // planes on this grid are tried where many faces spread beyond it
constexpr size_t GRID_FACES_MIN = 100;
constexpr double SPLIT_COST = 20;  // cost of a split face, in faces of imbalance between the two sides
// With FacesBehind::AllAndWhole, subtrees of so many faces are built once with each of these costs, and the one with
// the fewest faces is kept: first the larger ones, then each smaller one in them.
constexpr size_t TRIAL_FACES[] = {500, 100};
constexpr double TRIAL_SPLIT_COSTS[] = {20, 40, 100, 300};
constexpr size_t LEAF_COST = 1;  // of a leaf, where a face costs FACE_COST: of two trees the simpler one is kept
constexpr size_t FACE_COST = 4;
constexpr double HIDDEN_SPLIT_COST = 1;
constexpr double SLOPE_COST = 4;  // cost of a plane that is not axial, where no faces go behind
// Cost of cutting a wall across: the player takes a low lower part for a step. The second where all faces go behind.
constexpr double WALL_SPLIT_COST = 300;
constexpr double WALL_SPLIT_COST_BEHIND = 50;

enum class TreeKind { Sealing, Drawing };

PlaneSide SideOf(const Face& face, const Plane& plane) {
    const Vec3 centre = face.box.Centre();
    const Vec3 half = face.box.HalfExtents();
    const double reach =
        std::abs(plane.normal.x) * half.x + std::abs(plane.normal.y) * half.y + std::abs(plane.normal.z) * half.z;
    const double distance = plane.Distance(centre);
    if (distance > reach + SPLIT_EPSILON) return PlaneSide::Front;
    if (distance < -reach - SPLIT_EPSILON) return PlaneSide::Back;
    return ClassifyWinding(face.winding, plane);
}

// On: the face lies in the plane within the tolerance, whatever the plane's number.
PlaneSide SideOf(const Face& face, int plane, const PlaneTable& planes) {
    return (face.plane | 1) == (plane | 1) ? PlaneSide::On : SideOf(face, planes[plane]);
}

bool FacesFront(const Face& face, int plane, const PlaneTable& planes) {
    return Dot(planes[face.plane].normal, planes[plane].normal) > 0;
}

class TreeBuilder {
public:
    TreeBuilder(Brushes& brushes, TreeKind kind, const TreeOptions& options = {})
        : file_(brushes.file), planes_(brushes.planes), kind_(kind), options_(options),
          terrainLines_(kind == TreeKind::Drawing ? brushes.terrainLines : std::vector<int>()) {}

    Tree Build(std::vector<Face> faces) {
        const int root = AddSubtree(std::move(faces), 1);
        if (root < 0) SplitRoot();
        return std::move(tree_);
    }

private:
    int AddLeaf(std::vector<Face> faces) {
        tree_.leaves.push_back(std::move(faces));
        return ~static_cast<int>(tree_.leaves.size() - 1);
    }

    // A world needs at least one node: a tree of one leaf is divided by the plane of its first face, behind which
    // nothing lies.
    void SplitRoot() {
        const std::vector<Face>& faces = tree_.leaves[0];
        const int plane = faces.empty() ? planes_.Find({0, 0, 1}, 0) : faces[0].plane;
        const bool before = faces.empty() || SideOf(faces[0], plane, planes_) != PlaneSide::Back;
        tree_.nodes.push_back({plane, before ? ~0 : ~1, before ? ~1 : ~0});
        AddLeaf({});
        tree_.depth = 1;
    }

    bool IsTried(const std::vector<Face>& faces) const {
        return kind_ == TreeKind::Drawing && options_.behind == FacesBehind::AllAndWhole &&
               trials_ < std::size(TRIAL_FACES) && faces.size() <= TRIAL_FACES[trials_];
    }

    // What a subtree added to the tree.
    struct Grown {
        int root = 0;
        Tree tree;
        size_t cost = SIZE_MAX;
    };

    // The tree is as it was afterwards.
    Grown Grow(const std::vector<Face>& faces, int depth) {
        const auto nodes = static_cast<std::ptrdiff_t>(tree_.nodes.size());
        const auto leaves = static_cast<std::ptrdiff_t>(tree_.leaves.size());
        const int deepest = tree_.depth;
        Grown grown;
        grown.root = AddSubtree(faces, depth);
        grown.tree.nodes.assign(tree_.nodes.begin() + nodes, tree_.nodes.end());
        grown.tree.leaves.assign(std::make_move_iterator(tree_.leaves.begin() + leaves),
                                 std::make_move_iterator(tree_.leaves.end()));
        grown.tree.depth = std::exchange(tree_.depth, deepest);
        tree_.nodes.resize(static_cast<size_t>(nodes));
        tree_.leaves.resize(static_cast<size_t>(leaves));
        grown.cost = LEAF_COST * grown.tree.leaves.size();
        for (const std::vector<Face>& leaf : grown.tree.leaves) {
            grown.cost += FACE_COST * static_cast<size_t>(std::count_if(leaf.begin(), leaf.end(),
                                                                        [](const Face& face) { return !face.hidden; }));
        }
        return grown;
    }

    int AddBestSubtree(const std::vector<Face>& faces, int depth) {
        Grown best;
        const double splitCost = splitCost_;
        ++trials_;
        for (const double cost : TRIAL_SPLIT_COSTS) {
            splitCost_ = cost;
            Grown grown = Grow(faces, depth);
            if (grown.cost < best.cost) best = std::move(grown);
        }
        --trials_;
        splitCost_ = splitCost;
        tree_.nodes.insert(tree_.nodes.end(), best.tree.nodes.begin(), best.tree.nodes.end());
        tree_.leaves.insert(tree_.leaves.end(), std::make_move_iterator(best.tree.leaves.begin()),
                            std::make_move_iterator(best.tree.leaves.end()));
        tree_.depth = best.tree.depth;
        return best.root;
    }

    int AddSubtree(std::vector<Face> faces, int depth) {
        if (IsTried(faces)) return AddBestSubtree(faces, depth);
        const std::optional<int> splitter = ChooseSplitter(faces);
        if (!splitter) return AddLeaf(kind_ == TreeKind::Drawing ? std::move(faces) : std::vector<Face>());
        tree_.depth = std::max(tree_.depth, depth);
        CheckLimits();
        const size_t node = tree_.nodes.size();
        tree_.nodes.push_back({*splitter, 0, 0});
        std::vector<Face> front;
        std::vector<Face> back;
        Divide(std::move(faces), *splitter, front, back);
        const int frontChild = AddSubtree(std::move(front), depth + 1);
        const int backChild = AddSubtree(std::move(back), depth + 1);
        tree_.nodes[node].front = frontChild;
        tree_.nodes[node].back = backChild;
        return static_cast<int>(node);
    }

    void CheckLimits() const {
        const Count nodes = kind_ == TreeKind::Drawing
                                ? NodeCount(tree_.nodes.size())
                                : Count{"nodes of the space around the brushes", tree_.nodes.size(), SEALING_NODES_MAX};
        CheckCounts(
            file_,
            {DepthCount(tree_.depth), nodes, {"comparisons of faces with planes", comparisons_, COMPARISONS_MAX}});
    }

    void Divide(std::vector<Face> faces, int plane, std::vector<Face>& front, std::vector<Face>& back) const {
        Winding frontPart;
        Winding backPart;
        for (Face& face : faces) {
            switch (SideOf(face, plane, planes_)) {
            case PlaneSide::On:
                if (kind_ == TreeKind::Drawing) (GoesToFront(face, plane) ? front : back).push_back(face);
                break;
            case PlaneSide::Front: front.push_back(std::move(face)); break;
            case PlaneSide::Back: back.push_back(std::move(face)); break;
            case PlaneSide::Both:
                SplitWinding(face.winding, planes_[plane], frontPart, backPart);
                front.emplace_back(frontPart, face.plane, face.texture, face.hidden);
                back.emplace_back(backPart, face.plane, face.texture, face.hidden);
                break;
            }
        }
    }

    // For a face in the plane of a node.
    bool GoesToFront(const Face& face, int plane) const { return FacesFront(face, plane, planes_) != GoesBehind(face); }

    bool GoesBehind(const Face& face) const {
        const bool isHigh = (face.box.max.z - face.box.min.z) * options_.scale > double{LEDGE_MAX};
        const bool isHighWall = isHigh && std::abs(planes_[face.plane].normal.z) < STEEP_SLOPE;
        return options_.behind >= FacesBehind::All || (options_.behind == FacesBehind::ButHighWalls && !isHighWall);
    }

    bool IsDone(const std::vector<Face>& faces) const {
        if (kind_ == TreeKind::Sealing || faces.size() > ORDER_TEST_MAX) return faces.empty();
        for (size_t i = 0; i < faces.size(); ++i) {
            for (size_t j = i + 1; j < faces.size(); ++j) {
                if (!IsOrderFree(faces[i], faces[j], planes_)) return false;
            }
        }
        return true;
    }

    std::optional<int> ChooseSplitter(const std::vector<Face>& faces) {
        if (IsDone(faces)) return std::nullopt;
        const std::vector<int> candidates = CandidatesOf(faces);
        double bestCost = std::numeric_limits<double>::max();
        std::optional<int> best;
        const auto tryPlane = [&](int plane) {
            const double cost = CostOf(faces, plane, bestCost);
            if (cost < bestCost) {
                bestCost = cost;
                best = plane;
            }
        };
        const size_t most = options_.behind == FacesBehind::None ? CANDIDATES_MAX : CANDIDATES_MAX_BEHIND;
        const size_t step = std::max<size_t>(1, (candidates.size() + most - 1) / most);
        for (size_t i = 0; i < candidates.size(); i += step)
            tryPlane(candidates[i]);
        if (faces.size() >= GRID_FACES_MIN) {
            for (const int plane : GridPlanes(faces))
                tryPlane(plane);
        }
        for (const int plane : terrainLines_)
            tryPlane(plane);
        for (size_t i = 0; !best && i < candidates.size(); ++i)
            tryPlane(candidates[i]);
        return best;
    }

    // The planes of the faces that are not hidden, each once, in order of first use.
    std::vector<int> CandidatesOf(const std::vector<Face>& faces) {
        stamps_.resize(static_cast<size_t>(planes_.Count()), 0);
        ++stamp_;
        std::vector<int> candidates;
        for (const Face& face : faces) {
            if (face.hidden) continue;
            int& stamp = stamps_[static_cast<size_t>(face.plane | 1)];
            if (stamp == stamp_) continue;
            stamp = stamp_;
            candidates.push_back(face.plane);
        }
        return candidates;
    }

    std::vector<int> GridPlanes(const std::vector<Face>& faces) {
        Box box;
        for (const Face& face : faces)
            box.Add(face.box);
        std::vector<int> found;
        for (int axis = 0; axis < 2; ++axis) {
            const double middle = std::floor(box.Centre()[axis] / GRID + 0.5) * GRID;
            if (middle <= box.min[axis] + SPLIT_EPSILON || middle >= box.max[axis] - SPLIT_EPSILON) continue;
            Vec3 normal;
            normal[axis] = 1;
            found.push_back(planes_.Find(normal, middle));
        }
        return found;
    }

    double SplitCost(const Face& face, const Plane& plane) const {
        const bool across =
            std::abs(plane.normal.z) > STEEP_SLOPE && std::abs(planes_[face.plane].normal.z) < STEEP_SLOPE;
        if (across && kind_ == TreeKind::Drawing)
            return options_.behind >= FacesBehind::All ? WALL_SPLIT_COST_BEHIND : WALL_SPLIT_COST;
        return face.hidden ? HIDDEN_SPLIT_COST : splitCost_;
    }

    // Counting stops once the cost is beyond the limit. A plane that separates nothing costs an infinite amount.
    double CostOf(const std::vector<Face>& faces, int plane, double limit) {
        comparisons_ += faces.size();
        double front = 0;
        double back = 0;
        double splits = 0;
        double consumed = 0;
        const double slope = options_.behind != FacesBehind::None || IsAxial(planes_[plane]) ? 0 : SLOPE_COST;
        for (const Face& face : faces) {
            switch (SideOf(face, plane, planes_)) {
            case PlaneSide::On:
                if (kind_ == TreeKind::Sealing) {
                    ++consumed;
                } else {
                    ++(GoesToFront(face, plane) ? front : back);
                }
                break;
            case PlaneSide::Front: ++front; break;
            case PlaneSide::Back: ++back; break;
            case PlaneSide::Both:
                ++front;
                ++back;
                splits += SplitCost(face, planes_[plane]);
                if (splits + slope > limit) return splits + slope;
                break;
            }
        }
        if (consumed == 0 && (front == 0 || back == 0)) return std::numeric_limits<double>::max();
        return splits + slope + std::abs(front - back);
    }

    const std::string& file_;
    PlaneTable& planes_;
    TreeKind kind_;
    TreeOptions options_;
    const std::vector<int> terrainLines_;
    Tree tree_;
    double splitCost_ = SPLIT_COST;
    size_t trials_ = 0;        // how many trials the current subtree is part of
    std::vector<int> stamps_;  // for each plane the node that last listed it
    int stamp_ = 0;
    size_t comparisons_ = 0;
};

}  // namespace

Tree BuildSealingTree(std::vector<Face> faces, Brushes& brushes) {
    return TreeBuilder(brushes, TreeKind::Sealing).Build(std::move(faces));
}

Tree BuildDrawingTree(std::vector<Face> faces, Brushes& brushes, const TreeOptions& options) {
    return TreeBuilder(brushes, TreeKind::Drawing, options).Build(std::move(faces));
}

size_t LeafAt(const Tree& tree, const PlaneTable& planes, const Vec3& place) {
    int child = 0;
    while (child >= 0) {
        const TreeNode& node = tree.nodes[static_cast<size_t>(child)];
        child = planes[node.plane].Distance(place) >= 0 ? node.front : node.back;
    }
    return static_cast<size_t>(~child);
}

bool IsOrderFree(const Face& a, const Face& b, const PlaneTable& planes) {
    if (a.hidden || b.hidden || (a.plane | 1) == (b.plane | 1)) return true;
    const PlaneSide bSide = SideOf(b, planes[a.plane]);
    if (bSide == PlaneSide::Both) return false;
    const PlaneSide aSide = SideOf(a, planes[b.plane]);
    if (aSide == PlaneSide::Both) return false;
    return aSide == bSide || aSide == PlaneSide::On || bSide == PlaneSide::On;
}
