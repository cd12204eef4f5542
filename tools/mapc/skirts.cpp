#include "mapc/skirts.h"

#include "mapc/box_grid.h"
#include "mapc/merge.h"
#include "records/walking_facts.h"

namespace {

// In engine units.
constexpr double INSET = 8;         // how far a skirt's lower edge lies behind the wall
constexpr double SAMPLE_STEP = 48;  // distance between the places where a wall's thickness is measured
constexpr double DEPTH_STEP = 8;
constexpr double DEPTH_MAX = 136;  // thicker walls count as this
constexpr double WIDTH_MIN = 128;  // narrower walls are taken as a whole
// Below this the floors on both sides of the wall reach far enough into it.
constexpr double DEPTH_MIN = 2 * MOVE_SPHERE_RADIUS + INSET;

class SkirtMaker {
public:
    SkirtMaker(Brushes& brushes, const SealedSpace& space, const Material& clip, double scale)
        : brushes_(brushes), space_(space), clip_(clip), unit_(1 / scale), grid_(BoxesOf(brushes)) {}

    std::vector<Face> Behind(const std::vector<Face>& faces) {
        std::vector<Face> walls;
        const int paint = NewTexture({0, 0, 1});
        for (const Face& face : faces) {
            if (IsWall(face)) walls.emplace_back(face.winding, face.plane, paint, true);
        }
        MergeFaces(walls, brushes_);
        for (const Face& wall : walls)
            AddBehind({wall});
        return std::move(skirts_);
    }

private:
    static std::vector<Box> BoxesOf(const Brushes& brushes) {
        std::vector<Box> boxes;
        for (const Brush& brush : brushes.list)
            boxes.push_back(brush.box);
        return boxes;
    }

    int NewTexture(const Vec3& normal) {
        MapFace face;
        face.texture = clip_.name;
        brushes_.textures.push_back(TextureOf(face, normal, clip_));
        return static_cast<int>(brushes_.textures.size()) - 1;
    }

    bool IsWall(const Face& face) const {
        const bool isCutout = brushes_.textures[static_cast<size_t>(face.texture)].material->flags & MATERIAL_CUTOUT;
        return !isCutout && std::abs(brushes_.planes[face.plane].normal.z) < double{STEEP_SLOPE};
    }

    // Whether the player can be there.
    bool IsOpen(const Vec3& p) const {
        if (!space_.Reaches(p)) return false;
        return !grid_.AnyAt(p, 0, [&](int i) {
            const Brush& brush = brushes_.list[static_cast<size_t>(i)];
            return brush.kind != BrushKind::Cutout && brush.Holds(p, brushes_.planes, 0);
        });
    }

    // How far it is behind the wall to where the player can be again.
    double DepthBehind(const Face& wall, const Vec3& back) const {
        double least = DEPTH_MAX * unit_;
        const Vec3 centre = wall.box.Centre();
        const auto feel = [&](const Vec3& p) {
            for (double depth = DEPTH_STEP * unit_; depth < least; depth += DEPTH_STEP * unit_) {
                if (IsOpen(p + back * depth)) least = depth;
            }
        };
        feel(centre);
        for (size_t i = 0; i < wall.winding.size() && least >= DEPTH_MIN * unit_; ++i) {
            const Vec3& from = wall.winding[i];
            const Vec3 along = wall.winding[(i + 1) % wall.winding.size()] - from;
            const int steps = 1 + static_cast<int>(Length(along) / (SAMPLE_STEP * unit_));
            for (int k = 0; k < steps; ++k) {
                const Vec3 edge = from + along * ((k + 0.5) / steps);
                feel(edge + (centre - edge) * (unit_ / (unit_ + Length(centre - edge))));
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
        if (depth >= DEPTH_MIN * unit_) {
            AddBands(wall, back, normal.z / across, depth);
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

    // slope: how much the wall itself leans.
    void AddBands(const Piece& wall, const Vec3& back, double slope, double depth) {
        // The game takes every face for larger by the player's radius: where he may be beside the wall, over or under
        // it, the skirt ends so much sooner.
        const double low = wall.face.box.min.z + MOVE_SPHERE_RADIUS * unit_;
        const double height = wall.face.box.max.z - MOVE_SPHERE_RADIUS * unit_ - low;
        if (height < MOVE_SPHERE_RADIUS * unit_) return;
        const double band = (depth - 2 * INSET * unit_) / SKIRT_LEAN;
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
        const Vec3 normal = WindingNormal(winding);
        const double length = Length(normal);
        if (length < 1) return;
        const Vec3 unit = normal * (1 / length);
        const int texture = NewTexture(unit);
        PlaceTexture(brushes_.textures[static_cast<size_t>(texture)], {&winding});
        const int plane = brushes_.planes.Find(unit, Dot(unit, winding[0]));
        skirts_.emplace_back(std::move(winding), plane, texture, true);
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
                    if (IsOpen(p + side * (reach * part) + back * (reach * depth))) return false;
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
    const SealedSpace& space_;
    const Material& clip_;
    double unit_;  // an engine unit in map units
    BoxGrid grid_;
    std::vector<Face> skirts_;
};

}  // namespace

bool ThinSkirts(std::vector<Face>& skirts, const Vec3& place, double reach, size_t count) {
    std::vector<double> areas;
    const Box near = Box{place, place}.Grown(reach);
    for (const Face& skirt : skirts) {
        if (skirt.box.Touches(near, 0)) areas.push_back(WindingArea(skirt.winding));
    }
    if (areas.empty()) return false;
    count = std::min(count, areas.size());
    std::nth_element(areas.begin(), areas.begin() + static_cast<std::ptrdiff_t>(count - 1), areas.end());
    const double most = areas[count - 1];
    std::erase_if(skirts,
                  [&](const Face& skirt) { return skirt.box.Touches(near, 0) && WindingArea(skirt.winding) <= most; });
    return true;
}

std::vector<Face> SkirtsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale) {
    return SkirtMaker(brushes, space, clip, scale).Behind(faces);
}
