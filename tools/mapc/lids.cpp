#include "mapc/lids.h"

#include "mapc/solid_brushes.h"
#include "records/walking_facts.h"

namespace {

// In engine units.
constexpr double RADIUS = MOVE_SPHERE_RADIUS;
constexpr double LID_HEIGHT = 50;  // over the ledge: who steps onto it passes, who is lifted by more than 80 does not
constexpr double LID_MARGIN = 2, HALF_MAX = 24;
constexpr double REACH_ONE_TICK = 9;                // of a run in a frame of one tick
constexpr double ON_A_LINE = 0.98;                  // cosine: whom one of two such faces stops does not touch the other
constexpr double FALL_FROM = 300;                   // so far from a floor one comes down in a run
constexpr double FALL_HEIGHT = 1000;                // and so far below it
constexpr double TALL = 24;                         // over the ledge: at outer corners, too, a player meets both
constexpr double BEYOND_AN_END = 4;                 // of a tall wall, where he is a little inside the other one
constexpr double OPEN_HEIGHTS[] = {16, 46};         // over the ledge: where the player's sphere must have room
constexpr double SAME_PLACE = 14, SAME_HEIGHT = 8;  // one lid does for both

class LidMaker {
public:
    LidMaker(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes, const MoveOptions& options)
        : brushes_(brushes), unit_(1 / options.scale), reach_(REACH_ONE_TICK * options.ticks),
          walls_(WallsOf(tree, hidden)), grid_(BoxesOf(walls_)), floors_(FloorsOf(tree)), solids_(brushes) {}

    std::vector<Face> Make(const Material& clip) {
        std::vector<int> beside;
        for (const Wall& ledge : walls_) {
            if (!ledge.isSteep) continue;
            grid_.Find(ledge.face->box.Grown((RADIUS + reach_) * unit_), 0, beside);
            for (const int i : beside)
                AddCorner(ledge, walls_[static_cast<size_t>(i)]);
        }
        std::vector<Face> lids;
        for (const Corner& corner : ChosenCorners())
            lids.push_back(LidOver(corner, clip));
        return lids;
    }

private:
    struct Wall {
        const Face* face;
        Vec3 out;               // level, of length 1
        double flat, up, dist;  // of its plane: the level and the upright part of the normal
        bool isSteep;           // to the game: a wall, or the riser of a step
        size_t leaf;

        // The place among its leaf's faces in which the game touches them, see mapc/emit.cpp.
        std::pair<bool, double> Order(double unit) const {
            const bool isLow = face->box.max.z - face->box.min.z <= STEP_HEIGHT * unit;
            return {isLow, -face->box.max.z};
        }
        double At(double height) const { return (dist - up * height) / flat; }
    };

    struct Corner {
        Vec3 place;   // at the height of the ledge
        double half;  // of the lid's width, engine units
    };

    std::vector<Wall> WallsOf(const Tree& tree, const std::vector<LeafFace>& hidden) const {
        std::vector<Wall> walls;
        const auto add = [&](const Face& face, size_t leaf) {
            const Plane& plane = brushes_.planes[face.plane];
            const double up = plane.normal.z;
            if (std::abs(up) > double{LANDING_SLOPE}) return;
            const double flat = std::sqrt(1 - up * up);
            walls.push_back({&face, Vec3{plane.normal.x, plane.normal.y, 0} * (1 / flat), flat, up, plane.dist,
                             std::abs(up) < double{STEEP_SLOPE}, leaf});
        };
        for (size_t leaf = 0; leaf < tree.leaves.size(); ++leaf) {
            for (const Face& face : tree.leaves[leaf])
                add(face, leaf);
        }
        for (const LeafFace& face : hidden)
            add(face.face, face.leaf);
        return walls;
    }

    static std::vector<Box> BoxesOf(const std::vector<Wall>& walls) {
        std::vector<Box> boxes;
        for (const Wall& wall : walls)
            boxes.push_back(wall.face->box);
        return boxes;
    }

    BoxGrid FloorsOf(const Tree& tree) const {
        std::vector<Box> boxes;
        for (const std::vector<Face>& leaf : tree.leaves) {
            for (const Face& face : leaf)
                if (brushes_.planes[face.plane].normal.z > double{LANDING_SLOPE}) boxes.push_back(face.box);
        }
        return BoxGrid(std::move(boxes));
    }

    bool Reaches(const Wall& wall, const Vec3& p, double margin) const {
        const Vec3 along{-wall.out.y, wall.out.x, 0};
        double low = 1e9, high = -1e9;
        for (const Vec3& corner : wall.face->winding) {
            low = std::min(low, Dot(corner, along));
            high = std::max(high, Dot(corner, along));
        }
        const double at = Dot(p, along);
        return at >= low - margin && at <= high + margin;
    }

    // So far before each of both, in engine units.
    Vec3 MeetingPlace(const Wall& a, double beforeA, const Wall& b, double beforeB, double height) const {
        const double first = a.At(height) + beforeA * unit_, second = b.At(height) + beforeB * unit_;
        const double turn = a.out.x * b.out.y - a.out.y * b.out.x;
        return {(first * b.out.y - second * a.out.y) / turn, (second * a.out.x - first * b.out.x) / turn, height};
    }

    // Whether the wall always stops a player before he touches the ledge, which then does not turn him to the wall.
    bool IsStoppedFirst(const Wall& ledge, const Wall& wall, double cosine) const {
        return ledge.leaf == wall.leaf && cosine > -0.01 && wall.up > -0.01 && wall.isSteep &&
               wall.face->box.min.z < ledge.face->box.max.z - STEP_HEIGHT * unit_ &&
               wall.Order(unit_) < ledge.Order(unit_);
    }

    // Adds the place over the ledge from which a player touches both, where there is one.
    void AddCorner(const Wall& ledge, const Wall& wall) {
        const double top = ledge.face->box.max.z, wallTop = wall.face->box.max.z;
        if (wallTop < top || wall.face->box.min.z > top + LID_HEIGHT * unit_) return;
        const double cosine = Dot(ledge.out, wall.out);
        if (std::abs(cosine) > ON_A_LINE || IsStoppedFirst(ledge, wall, cosine)) return;
        const Vec3 nearest = MeetingPlace(ledge, RADIUS + 1, wall, RADIUS + 1, top);
        const double beyond = (wallTop > top + TALL * unit_ ? RADIUS + BEYOND_AN_END : RADIUS) * unit_;
        if (!Reaches(ledge, nearest, beyond) || !Reaches(wall, nearest, beyond) || !IsNearAFloor(nearest)) return;
        // Who walks on the ledge touches it as far from its edge as who stands before it. The sharper the corner, the
        // longer the place from which both are touched.
        const double far = RADIUS + reach_ / 2, sine = std::sqrt(1 - cosine * cosine);
        const Corner onTheEdge{MeetingPlace(ledge, reach_ / 2, wall, far, top),
                               std::min(far / sine - RADIUS, HALF_MAX) + LID_MARGIN};
        if (HasRoom(onTheEdge.place) && !HasAStepAbove(onTheEdge)) return corners_.push_back(onTheEdge);
        const Corner beforeIt{MeetingPlace(ledge, far, wall, far, top),
                              std::min(reach_ / 2 / std::sqrt((1 + cosine) / 2), HALF_MAX) + LID_MARGIN};
        if (HasRoom(beforeIt.place)) corners_.push_back(beforeIt);
    }

    bool HasRoom(const Vec3& corner) const {
        return std::none_of(std::begin(OPEN_HEIGHTS), std::end(OPEN_HEIGHTS), [&](double height) {
            return solids_.Hold(corner + Vec3{0, 0, height * unit_});
        });
    }

    // Who goes up there would meet the lid.
    bool HasAStepAbove(const Corner& corner) {
        Box near = Box{corner.place, corner.place}.Grown((corner.half + 2 * RADIUS) * unit_);
        near.min.z = corner.place.z + unit_;
        near.max.z = corner.place.z + (LID_HEIGHT + RADIUS) * unit_;
        floors_.Find(near, 0, found_);
        return !found_.empty();
    }

    // Whether one comes there in a run, from a floor or in a fall.
    bool IsNearAFloor(const Vec3& corner) {
        const Vec3 down{FALL_FROM, FALL_FROM, STEP_HEIGHT}, up{FALL_FROM, FALL_FROM, FALL_HEIGHT};
        floors_.Find({corner - down * unit_, corner + up * unit_}, 0, found_);
        return !found_.empty();
    }

    // From the highest down, without those that the lid of another covers.
    std::vector<Corner> ChosenCorners() {
        std::stable_sort(corners_.begin(), corners_.end(),
                         [](const Corner& a, const Corner& b) { return a.place.z > b.place.z; });
        std::vector<Corner> chosen;
        for (const Corner& corner : corners_) {
            const auto covers = [&](const Corner& other) {
                const Vec3 d = (other.place - corner.place) * (1 / unit_);
                const double covered = SAME_PLACE + other.half - corner.half;
                return std::max(std::abs(d.x), std::abs(d.y)) <= covered && d.z <= SAME_HEIGHT;
            };
            if (std::none_of(chosen.begin(), chosen.end(), covers)) chosen.push_back(corner);
        }
        return chosen;
    }

    Face LidOver(const Corner& corner, const Material& clip) const {
        const double half = corner.half * unit_;
        const Vec3 low = corner.place + Vec3{-half, -half, LID_HEIGHT * unit_};
        const Vec3 east{2 * half, 0, 0}, north{0, 2 * half, 0};
        return HiddenFace({low, low + north, low + north + east, low + east}, brushes_, clip);
    }

    Brushes& brushes_;
    double unit_;  // an engine unit in map units
    double reach_;
    std::vector<Wall> walls_;
    BoxGrid grid_, floors_;
    SolidBrushes solids_;
    std::vector<Corner> corners_;
    std::vector<int> found_;
};

}  // namespace

std::vector<Face> LidsOverLedges(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes,
                                 const Material& clip, const MoveOptions& options) {
    return LidMaker(tree, hidden, brushes, options).Make(clip);
}
