#include "mapc/hollows.h"

#include "mapc/solid_brushes.h"
#include "records/walking_facts.h"

#include <optional>
#include <unordered_set>

namespace {

// In engine units.
constexpr double RADIUS = MOVE_SPHERE_RADIUS;
constexpr double START_STEP = 24;  // between the places on a steep face from which balls roll
constexpr double FALL = 8;         // of a ball in a step
constexpr double SLOW_FALL = 1.8;  // of a player who hangs, in a frame: what stops it holds him
constexpr double REST = 0.5;       // what is left of a step that ends it
constexpr double CELL = 8;         // a ball that comes to where one was before need not be followed
constexpr double FLOOR_RISE = 3;   // of a floor above the ball's lowest point: the ball meets it before the faces
constexpr double FLOOR_HALF = 6;   // the game takes it for larger by the player's radius on each side
// Who comes to rest so near to a floor's middle, and no more than RISE_COVERED above the ball it was made for or
// DEPTH_COVERED below it, lands on that floor.
constexpr double FLOOR_COVERS = FLOOR_HALF + RADIUS - 2;
constexpr double RISE_COVERED = 2;
constexpr double DEPTH_COVERED = 24;
// The game rounds places to whole units before it looks whether they lie in a face's outline.
constexpr double ROUNDING[] = {0, -1, 1};
constexpr double SUPPORT_MIN = 0.02;  // vertical part of the normal of a face that can hold a ball up
constexpr int STEPS_MAX = 4000;

// A face as the game's sweep takes it: flat, and grown by the player's radius at each edge.
struct Obstacle {
    Plane plane;
    std::vector<Plane> edges;

    // Whether it stops a ball that moves.
    bool Stops(const Vec3& from, const Vec3& to, double unit, double rounding) const {
        const double start = plane.Distance(from), end = plane.Distance(to);
        const double radius = RADIUS * unit;
        if (start > radius && end > radius) return false;
        if (start < -radius && end < -radius) return false;
        if (start - end < double{LEAST_MOVE} * unit) return false;
        return std::all_of(edges.begin(), edges.end(),
                           [&](const Plane& edge) { return edge.Distance(to) <= radius + rounding * unit; });
    }
};

class HollowFinder {
public:
    HollowFinder(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes, double scale)
        : tree_(tree), brushes_(brushes), unit_(1 / scale), obstacles_(ObstaclesOf(tree, hidden, brushes)),
          grid_(BoxesOf(tree, hidden)), solids_(brushes) {}

    std::vector<Face> Floors(const Material& clip) {
        for (const double rounding : ROUNDING) {
            rounding_ = rounding;
            visited_.clear();
            for (const std::vector<Face>& leaf : tree_.leaves) {
                for (const Face& face : leaf) {
                    const double up = brushes_.planes[face.plane].normal.z;
                    if (up > SUPPORT_MIN && up <= double{LANDING_SLOPE}) RollFrom(face);
                }
            }
        }
        std::vector<Face> floors;
        for (const Vec3& ball : ChosenRests())
            floors.push_back(FloorBelow(ball, clip));
        return floors;
    }

private:
    static Obstacle ObstacleOf(const Face& face, const Brushes& brushes) {
        Obstacle obstacle{brushes.planes[face.plane], {}};
        for (size_t i = 0; i < face.winding.size(); ++i) {
            const Vec3& from = face.winding[i];
            const Vec3 out = Cross(face.winding[(i + 1) % face.winding.size()] - from, obstacle.plane.normal);
            const double length = Length(out);
            if (length > 0) obstacle.edges.push_back({out * (1 / length), Dot(out, from) / length});
        }
        return obstacle;
    }

    template <class Use>
    static void ForEachFace(const Tree& tree, const std::vector<LeafFace>& hidden, Use use) {
        for (const std::vector<Face>& leaf : tree.leaves)
            std::for_each(leaf.begin(), leaf.end(), use);
        for (const LeafFace& face : hidden)
            use(face.face);
    }

    static std::vector<Obstacle> ObstaclesOf(const Tree& tree, const std::vector<LeafFace>& hidden,
                                             const Brushes& brushes) {
        std::vector<Obstacle> obstacles;
        ForEachFace(tree, hidden, [&](const Face& face) { obstacles.push_back(ObstacleOf(face, brushes)); });
        return obstacles;
    }

    static std::vector<Box> BoxesOf(const Tree& tree, const std::vector<LeafFace>& hidden) {
        std::vector<Box> boxes;
        ForEachFace(tree, hidden, [&](const Face& face) { boxes.push_back(face.box); });
        return boxes;
    }

    // Balls that touch the face, side by side all over it.
    void RollFrom(const Face& face) {
        const Vec3& normal = brushes_.planes[face.plane].normal;
        const double flat = std::sqrt(normal.x * normal.x + normal.y * normal.y);
        const Vec3 across{-normal.y / flat, normal.x / flat, 0};
        const Vec3 uphill = Cross(normal, across);
        const Vec3 centre = WindingCentre(face.winding);
        Box extent;
        for (const Vec3& p : face.winding)
            extent.Add(Vec3{Dot(p - centre, across), Dot(p - centre, uphill), 0});
        const Obstacle outline = ObstacleOf(face, brushes_);
        const double step = START_STEP * unit_;
        for (double y = extent.min.y + step / 2; y < extent.max.y + step / 2; y += step) {
            for (double x = extent.min.x + step / 2; x < extent.max.x + step / 2; x += step) {
                const Vec3 touched = centre + across * x + uphill * y;
                const auto holds = [&](const Plane& edge) { return edge.Distance(touched) <= step / 2; };
                if (std::all_of(outline.edges.begin(), outline.edges.end(), holds))
                    Roll(touched + normal * ((RADIUS + 0.5) * unit_));
            }
        }
    }

    void Roll(Vec3 ball) {
        uint64_t cell = CellOf(ball);
        for (int i = 0; i < STEPS_MAX; ++i) {
            if (solids_.Hold(ball)) return;
            std::optional<Vec3> next = Moved(ball, FALL);
            if (!next) return;
            if (Length(*next - ball) < FALL / 2 * unit_) {
                next = Moved(ball, SLOW_FALL);
                if (!next) return;
                if (Length(*next - ball) < double{LEAST_MOVE} * unit_) {
                    rests_.push_back(ball);
                    return;
                }
            }
            ball = *next;
            if (CellOf(ball) == cell) continue;
            cell = CellOf(ball);
            if (!visited_.insert(cell).second) return;
        }
    }

    uint64_t CellOf(const Vec3& p) const {
        const auto part = [&](double value) {
            return static_cast<uint64_t>(static_cast<int64_t>(std::floor(value / (CELL * unit_))) + 0x80000) & 0xFFFFF;
        };
        return part(p.x) | part(p.y) << 20 | part(p.z) << 40;
    }

    // Where a ball gets that falls so far, as the game moves it; nothing when it lands.
    std::optional<Vec3> Moved(const Vec3& ball, double fall) {
        Vec3 move{0, 0, -fall * unit_};
        grid_.Find(Box{ball, ball}.Grown((2 * RADIUS + fall) * unit_), 0, found_);
        double lastUp = 0;
        for (int pass = 0; pass < MOVE_PASSES_MAX; ++pass) {
            const auto hit = std::find_if(found_.begin(), found_.end(), [&](int i) {
                return obstacles_[static_cast<size_t>(i)].Stops(ball, ball + move, unit_, rounding_);
            });
            if (hit == found_.end()) {
                if (lastUp > double{LANDING_SLOPE}) return std::nullopt;
                return ball + move;
            }
            const Vec3& normal = obstacles_[static_cast<size_t>(*hit)].plane.normal;
            lastUp = normal.z;
            move = move - normal * Dot(move, normal);
            if (std::abs(move.x) + std::abs(move.y) + std::abs(move.z) <= REST * unit_) break;
        }
        if (lastUp > double{LANDING_SLOPE}) return std::nullopt;
        return ball;
    }

    // From the highest down, without those that land on the floor of another.
    std::vector<Vec3> ChosenRests() {
        std::stable_sort(rests_.begin(), rests_.end(), [](const Vec3& a, const Vec3& b) { return a.z > b.z; });
        std::vector<Vec3> chosen;
        for (const Vec3& ball : rests_) {
            const auto catches = [&](const Vec3& other) {
                const Vec3 d = (ball - other) * (1 / unit_);
                return std::max(std::abs(d.x), std::abs(d.y)) < FLOOR_COVERS && d.z < RISE_COVERED &&
                       d.z > -DEPTH_COVERED;
            };
            if (std::none_of(chosen.begin(), chosen.end(), catches)) chosen.push_back(ball);
        }
        return chosen;
    }

    Face FloorBelow(const Vec3& ball, const Material& clip) const {
        const double half = FLOOR_HALF * unit_;
        const double height = ball.z - (RADIUS - FLOOR_RISE) * unit_;
        return HiddenFace({{ball.x - half, ball.y - half, height},
                           {ball.x + half, ball.y - half, height},
                           {ball.x + half, ball.y + half, height},
                           {ball.x - half, ball.y + half, height}},
                          brushes_, clip);
    }

    const Tree& tree_;
    Brushes& brushes_;
    double unit_;  // an engine unit in map units
    double rounding_ = 0;
    std::vector<Obstacle> obstacles_;
    BoxGrid grid_;
    SolidBrushes solids_;
    std::unordered_set<uint64_t> visited_;
    std::vector<Vec3> rests_;
    std::vector<int> found_;
};

}  // namespace

std::vector<Face> FloorsInHollows(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes,
                                  const Material& clip, double scale) {
    return HollowFinder(tree, hidden, brushes, scale).Floors(clip);
}
