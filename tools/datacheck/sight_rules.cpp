#include "datacheck/rules.h"

#include <fmt/format.h>

namespace {

constexpr int EYES = 200;
constexpr int RAYS_PER_EYE = 20;
constexpr size_t PLACES = 100;      // places of play from which holes are looked for
constexpr double INSIDE = 0.2;      // units from an edge: nearer hits may belong to either neighbour
constexpr double HOLE_WIDTH = 0.5;  // narrower gaps between polygons are not holes

class Dice {
public:
    double Next(double low, double high) {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return low + (high - low) * static_cast<double>(state_ >> 33) / 2147483648.0;
    }
    Vec3 Direction() {
        Vec3 direction;
        do {
            for (int axis = 0; axis < 3; ++axis)
                direction[axis] = Next(-1, 1);
        } while (Length(direction) < 0.1 || Length(direction) > 1);
        return direction * (1 / Length(direction));
    }

private:
    uint64_t state_ = 7;
};

// The polygons that face the eye and can be seen, in the order in which the engine draws them.
class Painter {
public:
    Painter(const LevelData& level, const std::vector<WorldFace>& faces)
        : world_(*level.world), faces_(faces), visible_(VisibleTextures(level)) {}

    std::vector<size_t> OrderFrom(const Vec3& eye) {
        order_.clear();
        Visit(0, eye);
        return order_;
    }

private:
    void Visit(int child, const Vec3& eye) {
        if (child >= 0) {
            const WorldNode& node = world_.nodes[static_cast<size_t>(child)];
            const WorldPlane& plane = world_.planes[node.plane];
            const bool inFront = Dot(Widened(plane.normal), eye) + plane.offset >= 0;
            Visit(inFront ? node.back : node.front, eye);
            Visit(inFront ? node.front : node.back, eye);
            return;
        }
        const WorldLeaf& leaf = world_.leaves[static_cast<size_t>(~child)];
        for (size_t i = leaf.firstPolygon; i < size_t{leaf.firstPolygon} + leaf.polygonCount; ++i) {
            if (visible_[world_.polygons[i].texture] && faces_[i].Distance(eye) < 0) order_.push_back(i);
        }
    }

    const WorldFile& world_;
    const std::vector<WorldFace>& faces_;
    std::vector<bool> visible_;
    std::vector<size_t> order_;
};

// Corners are rounded, so a ray that all but touches the edge of two faces may pass between them. Where there is a
// hole, the rays beside it pass, too.
bool IsOpen(const std::vector<WorldFace>& faces, const Vec3& eye, const Vec3& direction) {
    const auto passes = [&](const Vec3& from) { return std::isinf(NearestHit(faces, from, direction, -HOLE_WIDTH)); };
    if (!passes(eye)) return false;
    const Vec3 flat = std::abs(direction.y) < 0.9 ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
    const Vec3 side = Cross(direction, flat) * (HOLE_WIDTH / Length(Cross(direction, flat)));
    const Vec3 other = Cross(direction, side) * (1 / Length(direction));
    return passes(eye + side) && passes(eye - side) && passes(eye + other) && passes(eye - other);
}

// The world must be closed, because the software renderer never clears the upper half of the frame and nobody may fall
// out of the world. Where there is a sky, only the ground must be.
void CheckClosed(const LevelData& level, const std::vector<WorldFace>& faces, Report& report) {
    Dice dice;
    for (const Vec3& eye : PlacesOfPlay(level, faces, PLACES)) {
        for (int ray = 0; ray < RAYS_PER_EYE; ++ray) {
            Vec3 direction = dice.Direction();
            if (HasSky(level.number)) direction = {0.4 * direction.x, -1, 0.4 * direction.z};
            if (!IsOpen(faces, eye, direction)) continue;
            report.Problem(
                level.WorldPath(), "seen from " + level.Describe(eye),
                fmt::format("the world is open towards ({:.2f} {:.2f} {:.2f})", direction.x, direction.y, direction.z),
                "close it with a wall or a floor");
        }
    }
}

}  // namespace

void CheckPaintersOrder(const LevelData& level, Report& report) {
    const std::vector<WorldFace> faces = FacesOf(*level.world);
    Box box;
    for (const WorldPoint& point : level.world->points)
        box.Add(Widened(point.position));
    Dice dice;
    Painter painter(level, faces);
    for (int n = 0; n < EYES; ++n) {
        Vec3 eye;
        for (int axis = 0; axis < 3; ++axis)
            eye[axis] = dice.Next(box.min[axis], box.max[axis]);
        const std::vector<size_t> order = painter.OrderFrom(eye);
        for (int ray = 0; ray < RAYS_PER_EYE; ++ray) {
            const Vec3 direction = dice.Direction();
            double nearest = std::numeric_limits<double>::infinity();
            size_t nearestPolygon = 0;
            for (const size_t i : order) {
                const double at = faces[i].Hit(eye, direction, INSIDE);
                if (std::isinf(at)) continue;
                if (at > nearest * 1.001 + 0.3) {
                    report.Problem(
                        level.WorldPath(), "seen from " + level.Describe(eye),
                        fmt::format("polygon {} is drawn over polygon {}, which is nearer", i, nearestPolygon),
                        "divide the leaf of the two, or build the world again with mapc");
                } else {
                    nearest = at;
                    nearestPolygon = i;
                }
            }
        }
    }
}

void CheckSight(const LevelData& level, Report& report) {
    CheckPaintersOrder(level, report);
    CheckClosed(level, FacesOf(*level.world), report);
}
