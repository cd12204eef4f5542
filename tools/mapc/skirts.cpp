#include "mapc/skirts.h"

#include "mapc/merge.h"
#include "mapc/wall_depth.h"
#include "records/walking_facts.h"

namespace {

// In engine units.
constexpr double INSET = 8;        // how far a skirt's lower edge lies behind the wall
constexpr double WIDTH_MIN = 128;  // narrower walls are taken as a whole
constexpr double REACH_MAX = 128;  // of a skirt's upper edge behind the wall
// With less room behind a wall there are no skirts: the floors on both sides of it reach far enough into it.
constexpr double REACH_MIN = 2 * MOVE_SPHERE_RADIUS;
// Between the skirts of both sides of a wall that stay apart.
constexpr double APART = 3 * MOVE_SPHERE_RADIUS;
constexpr double AREA_MIN = 0.5;  // map units; smaller skirts have no direction
// Of a skirt at a point: so far to each side, below and above the player's sphere. Who creeps comes down between hops,
// farther below than a leap is high.
constexpr double POINT_ASIDE = 192, POINT_BELOW = 208, POINT_ABOVE = 48;
constexpr double AT_A_WALL =
    MOVE_SPHERE_RADIUS + 4;  // the player's sphere is this near to the wall through which he creeps

class SkirtMaker {
public:
    SkirtMaker(Brushes& brushes, const SealedSpace& space, const Material& clip, double scale, bool staysApart)
        : brushes_(brushes), clip_(clip), unit_(1 / scale), staysApart_(staysApart), depth_(brushes, space, scale) {}

    std::vector<Face> Behind(const std::vector<Face>& faces) {
        for (const Face& wall : WallsAmong(faces))
            AddBehind({wall});
        return std::move(skirts_);
    }

    std::vector<Face> AtPoints(const std::vector<Vec3>& players, const std::vector<Face>& faces) {
        const std::vector<Face> walls = WallsAmong(faces);
        for (const Vec3& player : players) {
            for (const Face& wall : walls)
                AddAt(player - Vec3{0, 0, SPHERE_LOWERING * unit_}, wall);
        }
        return std::move(skirts_);
    }

private:
    std::vector<Face> WallsAmong(const std::vector<Face>& faces) const {
        std::vector<Face> walls;  // all painted alike, so that they merge
        for (const Face& face : faces) {
            if (IsWall(face)) walls.emplace_back(face.winding, face.plane, faces[0].texture, true);
        }
        MergeFaces(walls, brushes_);
        return walls;
    }

    // Where the sphere is at the wall, behind what is near it.
    void AddAt(const Vec3& sphere, const Face& wall) {
        const Plane& plane = brushes_.planes[wall.plane];
        if (std::abs(plane.Distance(sphere)) > AT_A_WALL * unit_) return;
        const double across = std::sqrt(plane.normal.x * plane.normal.x + plane.normal.y * plane.normal.y);
        const Vec3 right{plane.normal.y / across, -plane.normal.x / across, 0};  // seen from the room
        const double middle = Dot(sphere, right), aside = POINT_ASIDE * unit_;
        Piece piece{wall};
        Winding& winding = piece.face.winding;
        const auto keepBack = [&winding](const Plane& cut) {
            const bool isCut =
                std::any_of(winding.begin(), winding.end(), [&](const Vec3& p) { return cut.Distance(p) > 0; });
            KeepBack(winding, cut);
            return isCut;
        };
        piece.goesOnRight = keepBack({right, middle + aside});
        piece.goesOnLeft = keepBack({-right, aside - middle});
        keepBack({{0, 0, 1}, sphere.z + POINT_ABOVE * unit_});
        keepBack({{0, 0, -1}, POINT_BELOW * unit_ - sphere.z});
        if (winding.size() < 3) return;
        piece.face.box = WindingBox(winding);
        AddBehind(std::move(piece));
    }

    bool IsWall(const Face& face) const {
        const bool isCutout = brushes_.textures[static_cast<size_t>(face.texture)].material->flags & MATERIAL_CUTOUT;
        return !isCutout && std::abs(brushes_.planes[face.plane].normal.z) < double{STEEP_SLOPE};
    }

    // How thick a wall must be for a skirt whose upper edge lies so far behind it.
    double DepthFor(double reach) const { return staysApart_ ? 2 * reach + APART * unit_ : reach + INSET * unit_; }
    double ReachIn(double depth) const { return staysApart_ ? (depth - APART * unit_) / 2 : depth - INSET * unit_; }

    // How far it is behind the wall to where the player can be again.
    double DepthBehind(const Face& wall, const Vec3& back) const {
        const Vec3 centre = wall.box.Centre();
        double least = depth_.At(centre, back, DepthFor(REACH_MAX * unit_));
        for (size_t i = 0; i < wall.winding.size() && least >= DepthFor(REACH_MIN * unit_); ++i) {
            for (const Vec3& edge :
                 SamplesAlong(wall.winding[i], wall.winding[(i + 1) % wall.winding.size()], 1 / unit_)) {
                const Vec3 inside = edge + (centre - edge) * (unit_ / (unit_ + Length(centre - edge)));
                least = depth_.At(inside, back, least);
            }
        }
        return least;
    }

    // A piece of a wall, and whether it goes on at its ends.
    struct Piece {
        Face face;
        bool goesOnLeft = false, goesOnRight = false;
    };

    void AddBehind(Piece wall) {
        const Vec3& normal = brushes_.planes[wall.face.plane].normal;
        const double across = std::sqrt(normal.x * normal.x + normal.y * normal.y);
        const Vec3 back{-normal.x / across, -normal.y / across, 0};
        const double depth = DepthBehind(wall.face, back);
        if (depth >= DepthFor(REACH_MIN * unit_)) {
            AddBands(wall, back, normal.z / across, ReachIn(depth));
        } else {
            AddHalves(std::move(wall), {-back.y, back.x, 0});
        }
    }

    // Elsewhere along the wall there may be more behind it.
    void AddHalves(Piece wall, const Vec3& right) {
        double low = Dot(wall.face.winding[0], right), high = low;
        for (const Vec3& p : wall.face.winding) {
            low = std::min(low, Dot(p, right));
            high = std::max(high, Dot(p, right));
        }
        if (high - low < WIDTH_MIN * unit_) return;
        const double middle = (low + high) / 2;
        Winding leftPart = wall.face.winding, rightPart = std::move(wall.face.winding);
        KeepBack(leftPart, {right, middle});
        KeepBack(rightPart, {-right, -middle});
        if (leftPart.size() < 3 || rightPart.size() < 3) return;
        AddBehind({{std::move(leftPart), wall.face.plane, wall.face.texture, true}, wall.goesOnLeft, true});
        AddBehind({{std::move(rightPart), wall.face.plane, wall.face.texture, true}, true, wall.goesOnRight});
    }

    // slope: how much the wall itself leans. reachMost: of the skirts behind it.
    void AddBands(const Piece& wall, const Vec3& back, double slope, double reachMost) {
        // The game takes every face for larger by the player's radius: where he may be beside the wall, over or under
        // it, the skirt ends so much sooner.
        const double low = wall.face.box.min.z + MOVE_SPHERE_RADIUS * unit_;
        const double height = wall.face.box.max.z - MOVE_SPHERE_RADIUS * unit_ - low;
        if (height < MOVE_SPHERE_RADIUS * unit_) return;
        const double band = (reachMost - INSET * unit_) / SKIRT_LEAN;
        const int bands = static_cast<int>(std::ceil(height / band));
        for (int i = 0; i < bands; ++i) {
            const double bottom = low + height * i / bands;
            const double top = low + height * (i + 1) / bands;
            Winding winding = wall.face.winding;
            KeepBack(winding, {{0, 0, 1}, top});
            KeepBack(winding, {{0, 0, -1}, -bottom});
            const double reach = INSET * unit_ + SKIRT_LEAN * (top - bottom);
            const Vec3 right{-back.y, back.x, 0};
            if (winding.size() >= 3 && !wall.goesOnRight) MoveEnd(winding, right, reach, back);
            if (winding.size() >= 3 && !wall.goesOnLeft) MoveEnd(winding, -right, reach, back);
            if (winding.size() < 3) continue;
            for (Vec3& p : winding)
                p = p + back * (INSET * unit_ + (SKIRT_LEAN - slope) * (p.z - bottom));
            AddSkirt(std::move(winding));
        }
    }

    void AddSkirt(Winding winding) {
        if (WindingArea(winding) >= AREA_MIN) skirts_.push_back(HiddenFace(std::move(winding), brushes_, clip_));
    }

    static void FillDents(Winding& winding) {
        const Vec3 normal = WindingNormal(winding);
        for (size_t i = 0; i < winding.size();) {
            const size_t count = winding.size();
            const Vec3& p = winding[i];
            const bool dent =
                Dot(Cross(p - winding[(i + count - 1) % count], winding[(i + 1) % count] - p), normal) < 0;
            if (dent) winding.erase(winding.begin() + static_cast<std::ptrdiff_t>(i));
            i = dent ? 0 : i + 1;
        }
    }

    // In a corner of the room the skirts of both walls recede; each goes on behind the other wall, so that they meet.
    void MoveEnd(Winding& winding, const Vec3& side, double reach, const Vec3& back) const {
        double end = Dot(winding[0], side);
        for (const Vec3& p : winding)
            end = std::max(end, Dot(p, side));
        const auto isAtEnd = [&](const Vec3& p) { return Dot(p, side) > end - unit_; };
        const auto isInACorner = [&](const Vec3& p) {
            for (const double part : {0.1, 0.5, 1.0}) {
                for (const double depth : {0.1, 0.5, 1.0}) {
                    if (depth_.IsOpen(p + side * (reach * part) + back * (reach * depth))) return false;
                }
            }
            return true;
        };
        if (std::all_of(winding.begin(), winding.end(), [&](const Vec3& p) { return !isAtEnd(p) || isInACorner(p); })) {
            for (Vec3& p : winding) {
                if (isAtEnd(p)) p = p + side * reach;
            }
            FillDents(winding);
        } else {
            KeepBack(winding, {side, end - MOVE_SPHERE_RADIUS * unit_});
        }
    }

    Brushes& brushes_;
    const Material& clip_;
    double unit_;  // an engine unit in map units
    bool staysApart_;
    WallDepth depth_;
    std::vector<Face> skirts_;
};

}  // namespace

std::vector<Face> SkirtsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale, bool stayApart) {
    return SkirtMaker(brushes, space, clip, scale, stayApart).Behind(faces);
}

std::vector<Face> SkirtsAtPoints(const std::vector<Vec3>& players, const std::vector<Face>& faces, Brushes& brushes,
                                 const SealedSpace& space, const Material& clip, double scale) {
    return SkirtMaker(brushes, space, clip, scale, false).AtPoints(players, faces);
}
