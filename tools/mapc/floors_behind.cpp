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
// The game takes a floor for larger by the player's radius: no way at another height comes so near to it.
constexpr double CLEAR = 1.5 * MOVE_SPHERE_RADIUS;
constexpr double CLEAR_STEP = 12;
constexpr double CLEAR_HEIGHTS[] = {-24, -8, 8, 24, 40};  // of the player's sphere over the floor
// Below this the floors on both sides of the wall reach far enough into it.
constexpr double DEPTH_MIN = 2 * MOVE_SPHERE_RADIUS + INSET;
constexpr double COVERED_MIN = 400;      // area of a floor that is covered, so that it goes on below what covers it
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
        const auto addTo = [&](double reach) {
            const Vec3 near = back * (INSET * unit_), far = back * reach;
            if (!IsClear(from + near, to + near, back * (reach - INSET * unit_))) return false;
            Winding winding{from + near, from + far, to + far, to + near};
            if (WindingNormal(winding).z < 0) std::reverse(winding.begin(), winding.end());
            made_.push_back(HiddenFace(std::move(winding), brushes_, clip_));
            return true;
        };
        const bool isThin = least < enough;
        const bool isTooUneven = isThin && most > least + UNEVEN * unit_;
        if (!isTooUneven && least >= DEPTH_MIN * unit_) {
            if (addTo(std::min(least, enough) - INSET * unit_)) return;
            const double shorter = least - (CLEAR + 1) * unit_;
            if (isThin && shorter >= (INSET + 1) * unit_ && addTo(shorter)) return;
        }
        const bool canBeHalved = isTooUneven || least >= DEPTH_MIN * unit_;
        if (canBeHalved && samples.size() > 1) {
            const Vec3 middle = (from + to) * 0.5;
            AddAt(from, middle, back);
            AddAt(middle, to, back);
        }
    }

    // Whether a floor over these lines is out of the way of players on ramps and stairs through or along the wall, and
    // on lower ground behind it.
    bool IsClear(const Vec3& from, const Vec3& to, const Vec3& across) const {
        const double width = Length(to - from), depth = Length(across);
        const Vec3 along = (to - from) * (1 / width), back = across * (1 / depth);
        const double margin = CLEAR * unit_, step = CLEAR_STEP * unit_;
        for (double y = 0; y <= depth + margin; y += step) {
            for (double x = -margin; x <= width + margin; x += step) {
                const Vec3 level = from + along * x + back * y;
                const auto isOpenAt = [&](double height) { return depth_.IsOpen(level + Vec3{0, 0, height * unit_}); };
                if (std::any_of(std::begin(CLEAR_HEIGHTS), std::end(CLEAR_HEIGHTS), isOpenAt) && !IsOnAFloor(level))
                    return false;
            }
        }
        return true;
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

// The area of what both cover, in one plane.
double CommonArea(const Winding& a, const Face& b, const Plane& plane) {
    Winding common = a;
    for (size_t i = 0; i < b.winding.size() && common.size() >= 3; ++i) {
        const Vec3& from = b.winding[i];
        const Vec3 out = Cross(b.winding[(i + 1) % b.winding.size()] - from, plane.normal);
        const double length = Length(out);
        if (length > 0) KeepBack(common, {out * (1 / length), Dot(out, from) / length});
    }
    return common.size() < 3 ? 0 : WindingArea(common);
}

}  // namespace

std::vector<Face> FloorsBelowThings(const std::vector<Face>& faces, Brushes& brushes, const Material& clip,
                                    double scale) {
    const BoxGrid grid(BoxesOf(faces));
    const double areaMin = COVERED_MIN / (scale * scale);
    std::vector<Winding> covered;
    std::vector<int> found;
    for (const Brush& brush : brushes.list) {
        for (const BrushSide& side : brush.sides) {
            const Plane& plane = brushes.planes[side.plane];
            if (side.texture < 0 || plane.normal.z < double{LANDING_SLOPE}) continue;
            if (brushes.textures[static_cast<size_t>(side.texture)].smooth) continue;  // terrain
            double seen = 0;
            grid.Find(WindingBox(side.winding), 0, found);
            for (const int i : found) {
                const Face& face = faces[static_cast<size_t>(i)];
                if (face.plane == side.plane) seen += CommonArea(side.winding, face, plane);
            }
            if (seen >= areaMin && WindingArea(side.winding) - seen >= areaMin) covered.push_back(side.winding);
        }
    }
    std::vector<Face> floors;
    for (Winding& winding : covered)
        floors.push_back(HiddenFace(std::move(winding), brushes, clip));
    return floors;
}

std::vector<Face> FloorsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale) {
    return FloorMaker(faces, brushes, space, clip, scale).Make();
}
