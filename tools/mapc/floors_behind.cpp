#include "mapc/floors_behind.h"

#include "mapc/wall_depth.h"
#include "records/walking_facts.h"

namespace {

// In engine units.
constexpr double INSET = 8;      // of a floor's edges behind the faces of the wall
constexpr double REACH = 64;     // of a floor behind the wall: the fastest fall does not pass it
constexpr double EDGE_MIN = 48;  // shorter feet of walls are left as they are
constexpr double ON_A_FLOOR = 2;
constexpr double UNEVEN = 8;  // a wall whose thickness differs by more is taken in halves
// Below this the floors on both sides of the wall reach far enough into it.
constexpr double DEPTH_MIN = 2 * MOVE_SPHERE_RADIUS + INSET;
constexpr double DEPTH_MAX = 2 * REACH;  // thicker walls count as this

class FloorMaker {
public:
    FloorMaker(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space, const Material& clip,
               double scale)
        : faces_(faces), brushes_(brushes), clip_(clip), unit_(1 / scale), depth_(brushes, space, scale),
          floors_(FloorsOf(faces, brushes)), grid_(BoxesOf(floors_)) {}

    std::vector<Face> Make() {
        for (const Face& face : faces_) {
            const bool isTerrain = brushes_.textures[static_cast<size_t>(face.texture)].smooth;  // which goes on behind
            const bool isSteep = std::abs(brushes_.planes[face.plane].normal.z) < double{LANDING_SLOPE};
            if (isSteep && !isTerrain) AddBehind(face);
        }
        return std::move(made_);
    }

private:
    static std::vector<const Face*> FloorsOf(const std::vector<Face>& faces, const Brushes& brushes) {
        std::vector<const Face*> floors;
        for (const Face& face : faces) {
            if (brushes.planes[face.plane].normal.z >= double{LANDING_SLOPE}) floors.push_back(&face);
        }
        return floors;
    }

    static std::vector<Box> BoxesOf(const std::vector<const Face*>& faces) {
        std::vector<Box> boxes;
        for (const Face* face : faces)
            boxes.push_back(face->box);
        return boxes;
    }

    // Follows the edges of the wall at which a floor ends.
    void AddBehind(const Face& wall) {
        const Vec3& normal = brushes_.planes[wall.plane].normal;
        const Vec3 back = Vec3{-normal.x, -normal.y, 0} * (1 / std::sqrt(normal.x * normal.x + normal.y * normal.y));
        const Vec3 centre = WindingCentre(wall.winding);
        for (size_t i = 0; i < wall.winding.size(); ++i) {
            const Vec3& from = wall.winding[i];
            const Vec3& to = wall.winding[(i + 1) % wall.winding.size()];
            const Vec3 along = to - from;
            const Vec3 middle = (from + to) * 0.5;
            const double across = std::sqrt(along.x * along.x + along.y * along.y);
            const bool isFoot = across >= EDGE_MIN * unit_ && std::abs(along.z) < across && middle.z < centre.z;
            if (isFoot && IsOnAFloor(middle + normal * unit_)) AddAt(from, to, back);
        }
    }

    bool IsOnAFloor(const Vec3& p) const {
        return grid_.AnyAt(p, ON_A_FLOOR * unit_, [&](int i) {
            const Plane& plane = brushes_.planes[floors_[static_cast<size_t>(i)]->plane];
            return std::abs(plane.Distance(p)) < ON_A_FLOOR * unit_;
        });
    }

    // from, to: the foot of a wall, or a part of it.
    void AddAt(const Vec3& from, const Vec3& to, const Vec3& back) {
        const Vec3 atFeet{0, 0, MOVE_SPHERE_RADIUS * unit_};
        const std::vector<Vec3> samples = SamplesAlong(from, to, 1 / unit_);
        double least = DEPTH_MAX * unit_, most = 0;
        for (const Vec3& sample : samples) {
            const double depth = depth_.At(sample + atFeet, back, DEPTH_MAX * unit_);
            least = std::min(least, depth);
            most = std::max(most, depth);
        }
        const double enough = (REACH + INSET) * unit_;
        if (least < enough && most > least + UNEVEN * unit_ && samples.size() > 1) {
            const Vec3 middle = (from + to) * 0.5;
            AddAt(from, middle, back);
            AddAt(middle, to, back);
        } else if (least >= DEPTH_MIN * unit_) {
            const Vec3 near = back * (INSET * unit_), far = back * (std::min(least, enough) - INSET * unit_);
            Winding winding{from + near, from + far, to + far, to + near};
            if (WindingNormal(winding).z < 0) std::reverse(winding.begin(), winding.end());
            made_.push_back(HiddenFace(std::move(winding), brushes_, clip_));
        }
    }

    const std::vector<Face>& faces_;
    Brushes& brushes_;
    const Material& clip_;
    double unit_;  // an engine unit in map units
    WallDepth depth_;
    std::vector<const Face*> floors_;
    BoxGrid grid_;
    std::vector<Face> made_;
};

}  // namespace

std::vector<Face> FloorsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale) {
    return FloorMaker(faces, brushes, space, clip, scale).Make();
}
