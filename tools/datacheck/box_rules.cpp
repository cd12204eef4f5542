#include "datacheck/rules.h"

#include <fmt/format.h>

namespace {

constexpr double BOX_TOLERANCE = 0.02;
constexpr double CELL_TOLERANCE = 0.25;  // mapc welds corners 0.1 apart, and puts them on edges 0.15 away
const char* const REBUILD = "build the world again with mapc";

class BoxCheck {
public:
    BoxCheck(const LevelData& level, Report& report)
        : level_(level), world_(*level.world), report_(report), faces_(FacesOf(world_)),
          visible_(VisibleTextures(level)), owners_(world_.polygons.size()) {}

    void Run() {
        Visit(0);
        for (size_t i = 0; i < owners_.size(); ++i) {
            if (owners_[i] == 1) continue;
            Problem(fmt::format("polygon {} at {}", i, level_.Describe(faces_[i].Centre())),
                    fmt::format("belongs to {} leaves", owners_[i]));
        }
    }

private:
    void Problem(const std::string& place, const std::string& wrong) {
        report_.Problem(level_.WorldPath(), place, wrong, REBUILD);
    }

    // The box of all corners below.
    Box Visit(int child) {
        if (child < 0) return CheckLeaf(static_cast<size_t>(~child));
        const WorldNode& node = world_.nodes[static_cast<size_t>(child)];
        Box box;
        for (const bool front : {true, false}) {
            cell_.push_back({&world_.planes[node.plane], front});
            const Box part = Visit(front ? node.front : node.back);
            if (!part.IsEmpty()) box.Add(part);
            cell_.pop_back();
        }
        if (!box.IsEmpty() && !Encloses(node.centre, node.halfExtents, box)) {
            Problem(fmt::format("node {}", child), "its box leaves out a corner below it");
        }
        return box;
    }

    Box CheckLeaf(size_t number) {
        const WorldLeaf& leaf = world_.leaves[number];
        Box box;
        double radius = 0;
        bool inCell = true;
        for (size_t i = leaf.firstPolygon; i < size_t{leaf.firstPolygon} + leaf.polygonCount; ++i) {
            ++owners_[i];
            for (const Vec3& p : faces_[i].corners) {
                box.Add(p);
                radius = std::max(radius, Length(p - Widened(leaf.centre)));
                inCell = inCell && (!visible_[world_.polygons[i].texture] || IsInCell(p));
            }
        }
        if (leaf.polygonCount == 0) return box;
        const std::string place = fmt::format("leaf {} at {}", number, level_.Describe(box.Centre()));
        if (!Encloses(leaf.centre, leaf.halfExtents, box)) Problem(place, "its box leaves out a corner");
        if (!inCell) Problem(place, "a polygon leaves the leaf's cell of the tree");
        if (const double least = LeastLeafRadius(level_.number); radius < least) {
            Problem(place, fmt::format("reaches only {:.0f} from its centre, the player may pass through below {:.0f}",
                                       radius, least));
        }
        return box;
    }

    bool IsInCell(const Vec3& p) const {
        for (const auto& [plane, front] : cell_) {
            const double distance = Dot(Widened(plane->normal), p) + plane->offset;
            if ((front ? distance : -distance) < -CELL_TOLERANCE) return false;
        }
        return true;
    }

    static bool Encloses(const WorldVector& centre, const WorldVector& half, const Box& box) {
        Vec3 size = Widened(half);
        for (int axis = 0; axis < 3; ++axis)
            size[axis] = std::abs(size[axis]);
        const Box own{Widened(centre) - size, Widened(centre) + size};
        return own.Holds(box.min, BOX_TOLERANCE) && own.Holds(box.max, BOX_TOLERANCE);
    }

    struct Side {
        const WorldPlane* plane;
        bool front;
    };

    const LevelData& level_;
    const WorldFile& world_;
    Report& report_;
    std::vector<WorldFace> faces_;
    std::vector<bool> visible_;  // for each texture: what is never drawn may leave its cell
    std::vector<int> owners_;    // for each polygon the number of leaves that hold it
    std::vector<Side> cell_;
};

}  // namespace

void CheckBoxes(const LevelData& level, Report& report) {
    BoxCheck(level, report).Run();
}
