#include "mapc/ledge_walls.h"

#include "mapc/box_grid.h"
#include "records/walking_facts.h"

#include <map>

namespace {

// In engine units.
// Taller faces count as ledges, too, where a floor or the foot of another face lies at their upper edge.
constexpr double LEDGE_HEIGHT_MAX = 128;
constexpr double AT_THE_EDGE = 1;
constexpr double TALLER = 160;  // how much taller than the ledge a wall must be: the next step of a stair is not
constexpr double NEAR = 40;     // faces no farther apart are touched in one move: the player's sphere and a step
constexpr double IN_FRONT = 0.5;
constexpr double PARALLEL = 0.98;  // cosine: a player whom one of two such faces stops does not move into the other

class LedgeWalls {
public:
    LedgeWalls(const Tree& tree, Brushes& brushes, double scale) : tree_(tree), brushes_(brushes), unit_(1 / scale) {}

    std::vector<LeafFace> Copies(const Material& clip) {
        std::vector<Box> boxes, above;
        for (size_t leaf = 0; leaf < tree_.leaves.size(); ++leaf) {
            for (const Face& face : tree_.leaves[leaf]) {
                const double up = NormalOf(face).z;
                if (up > double{LANDING_SLOPE}) above.push_back(face.box);
                if (std::abs(up) >= double{STEEP_SLOPE}) continue;
                above.push_back(FootOf(face.box));
                walls_.push_back({&face, leaf});
                boxes.push_back(face.box);
            }
        }
        const BoxGrid grid(std::move(boxes)), aboveGrid(std::move(above));
        std::vector<int> found;
        for (const Wall& ledge : walls_) {
            if (!IsMetByItsEdge(ledge.face->box, aboveGrid)) continue;
            const Box near = ledge.face->box.Grown(NEAR * unit_);
            grid.Find(near, 0, found);
            for (const int i : found) {
                if (IsBeside(ledge, walls_[static_cast<size_t>(i)])) parts_[{ledge.leaf, i}].Add(near);
            }
        }
        return CopiesOf(clip);
    }

private:
    struct Wall {
        const Face* face;
        size_t leaf;
    };

    const Vec3& NormalOf(const Face& face) const { return brushes_.planes[face.plane].normal; }

    struct Range {
        double low, high;
    };

    Range DistancesFrom(const Face& from, const Face& to) const {
        Range range{1e9, -1e9};
        for (const Vec3& p : to.winding) {
            const double distance = brushes_.planes[from.plane].Distance(p);
            range = {std::min(range.low, distance), std::max(range.high, distance)};
        }
        return range;
    }

    static Box FootOf(Box wall) {
        wall.max.z = wall.min.z;
        return wall;
    }

    bool IsMetByItsEdge(const Box& ledge, const BoxGrid& above) const {
        if (ledge.max.z - ledge.min.z <= LEDGE_HEIGHT_MAX * unit_) return true;
        Box edge = ledge;
        edge.min.z = edge.max.z;
        std::vector<int> found;
        above.Find(edge, AT_THE_EDGE * unit_, found);
        return !found.empty();
    }

    // Whether both can be touched in one move from in front of them.
    bool IsBeside(const Wall& ledge, const Wall& wall) const {
        if (ledge.leaf == wall.leaf) return false;
        const double top = ledge.face->box.max.z;
        if (wall.face->box.max.z < top + TALLER * unit_ || wall.face->box.min.z > top + NEAR * unit_) return false;
        if (std::abs(Dot(NormalOf(*ledge.face), NormalOf(*wall.face))) > PARALLEL) return false;
        const Range wallFromLedge = DistancesFrom(*ledge.face, *wall.face);
        const Range ledgeFromWall = DistancesFrom(*wall.face, *ledge.face);
        return wallFromLedge.high > -IN_FRONT * unit_ && wallFromLedge.low < NEAR * unit_ &&
               ledgeFromWall.high > IN_FRONT * unit_ && ledgeFromWall.low < NEAR * unit_;
    }

    std::vector<LeafFace> CopiesOf(const Material& clip) {
        std::vector<LeafFace> copies;
        for (const auto& [key, part] : parts_) {
            Winding winding = walls_[static_cast<size_t>(key.second)].face->winding;
            for (int axis = 0; axis < 2; ++axis) {
                Vec3 out;
                out[axis] = 1;
                KeepBack(winding, {out, part.max[axis]});
                KeepBack(winding, {-out, -part.min[axis]});
            }
            if (winding.size() < 3 || WindingArea(winding) < 1) continue;
            copies.push_back({HiddenFace(std::move(winding), brushes_, clip), key.first});
        }
        return copies;
    }

    const Tree& tree_;
    Brushes& brushes_;
    double unit_;  // an engine unit in map units
    std::vector<Wall> walls_;
    std::map<std::pair<size_t, int>, Box> parts_;  // of which wall each leaf gets a copy
};

}  // namespace

std::vector<LeafFace> WallsBesideLedges(const Tree& tree, Brushes& brushes, const Material& clip, double scale) {
    return LedgeWalls(tree, brushes, scale).Copies(clip);
}
