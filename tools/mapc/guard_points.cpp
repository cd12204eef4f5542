#include "mapc/guard_points.h"

#include "mapc/box_grid.h"
#include "records/walking_facts.h"

namespace {

// In engine units.
constexpr double RADIUS = MOVE_SPHERE_RADIUS;
constexpr double FOOTING_HALF = 12;               // the game takes it for larger by the player's radius on each side
constexpr double RISE_LEAST = 1, RISE_MOST = 96;  // of a footing above the lowest point of the player's sphere
constexpr double RISE_ANYWHERE = 3;  // where nothing is clear: he meets the footing before the slopes that hold him
// Of a player on the footing from what slopes: sliding down one side of a hollow he does not touch the other in a
// frame. Where there is less room, the least that keeps them apart.
constexpr double CLEARANCES[] = {1.5, 0.25};
constexpr double ROUNDING = 4;  // the game rounds places twice before it looks whether they lie in a face's outline
constexpr double LID_HALF = 24;
constexpr double LID_HEIGHT = LEDGE_MAX + RADIUS + 2;  // above the middle of the player's sphere
constexpr double LEVEL = 0.999;                        // vertical part of a normal that lets nobody slide

class GuardPoints {
public:
    GuardPoints(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes, const Material& clip,
                const MoveOptions& options)
        : brushes_(brushes), clip_(clip), unit_(1 / options.scale), slopes_(SlopesOf(tree, hidden, options.ticks)),
          grid_(BoxesOf(slopes_)) {}

    Face Footing(const Vec3& player) {
        const Vec3 sphere = SphereOf(player);
        for (const double clearance : CLEARANCES) {
            for (double rise = RISE_LEAST; rise <= RISE_MOST; ++rise) {
                if (IsClear(sphere + Vec3{0, 0, rise * unit_}, (RADIUS + clearance) * unit_))
                    return LevelFace(sphere + Vec3{0, 0, (rise - RADIUS) * unit_}, FOOTING_HALF, 1);
            }
        }
        return LevelFace(sphere + Vec3{0, 0, (RISE_ANYWHERE - RADIUS) * unit_}, FOOTING_HALF, 1);
    }

    Face Lid(const Vec3& player) { return LevelFace(SphereOf(player) + Vec3{0, 0, LID_HEIGHT * unit_}, LID_HALF, -1); }

private:
    // The faces that turn aside the fall of a player who hangs, or his jump.
    std::vector<const Face*> SlopesOf(const Tree& tree, const std::vector<LeafFace>& hidden, int ticks) const {
        const double upright = double{LEAST_MOVE} / (-double{GRAVITY} * ticks);
        std::vector<const Face*> slopes;
        const auto add = [&](const Face& face) {
            const double up = brushes_.planes[face.plane].normal.z;
            if (std::abs(up) > upright && up < LEVEL) slopes.push_back(&face);
        };
        for (const std::vector<Face>& leaf : tree.leaves)
            std::for_each(leaf.begin(), leaf.end(), add);
        for (const LeafFace& face : hidden)
            add(face.face);
        return slopes;
    }

    Vec3 SphereOf(const Vec3& player) const { return player - Vec3{0, 0, SPHERE_LOWERING * unit_}; }

    bool IsClear(const Vec3& sphere, double reach) {
        // At sharp corners the game takes a face for much larger.
        grid_.Find(Box{sphere, sphere}.Grown(4 * reach), 0, found_);
        return std::none_of(found_.begin(), found_.end(),
                            [&](int i) { return IsTouched(*slopes_[static_cast<size_t>(i)], sphere, reach); });
    }

    // As the game's sweep takes the face: flat, and grown by the player's radius at each edge.
    bool IsTouched(const Face& face, const Vec3& sphere, double reach) const {
        const Plane& plane = brushes_.planes[face.plane];
        if (std::abs(plane.Distance(sphere)) > reach) return false;
        for (size_t i = 0; i < face.winding.size(); ++i) {
            const Vec3& from = face.winding[i];
            const Vec3 out = Cross(face.winding[(i + 1) % face.winding.size()] - from, plane.normal);
            const double length = Length(out);
            if (length > 0 && Dot(sphere - from, out) > (RADIUS + ROUNDING) * unit_ * length) return false;
        }
        return true;
    }

    // up: 1, or -1 for a ceiling.
    Face LevelFace(const Vec3& middle, double half, double up) {
        const Vec3 east{half * unit_, 0, 0}, north{0, half * unit_ * up, 0};
        return HiddenFace({middle - east - north, middle + east - north, middle + east + north, middle - east + north},
                          brushes_, clip_);
    }

    Brushes& brushes_;
    const Material& clip_;
    double unit_;  // an engine unit in map units
    std::vector<const Face*> slopes_;
    BoxGrid grid_;
    std::vector<int> found_;
};

// ContentError for one without an origin, or in a level without clip.
Vec3 PointOf(const MapEntity& entity, const Material* clip) {
    const std::optional<Vec3> origin = VectorKey(entity, "origin");
    if (!origin)
        Refuse(entity.line, entity.ClassName() + " has no origin", "place it where the explorer shows the fault");
    if (!clip)
        Refuse(entity.line, entity.ClassName() + " in a level without clip", "add clip to the level's materials");
    return *origin;
}

}  // namespace

std::vector<Face> FacesAtGuardPoints(const MapFile& map, const Tree& tree, const std::vector<LeafFace>& hidden,
                                     Brushes& brushes, const Material* clip, const MoveOptions& options) {
    std::vector<Face> faces;
    std::optional<GuardPoints> points;
    for (const MapEntity& entity : map.entities) {
        const std::string name = entity.ClassName();
        if (name != "info_footing" && name != "info_lid") continue;
        const Vec3 player = PointOf(entity, clip);
        if (!points) points.emplace(tree, hidden, brushes, *clip, options);
        faces.push_back(name == "info_lid" ? points->Lid(player) : points->Footing(player));
    }
    return faces;
}

std::vector<Vec3> SkirtPoints(const MapFile& map, const Material* clip) {
    std::vector<Vec3> players;
    for (const MapEntity& entity : map.entities) {
        if (entity.ClassName() == "info_skirt") players.push_back(PointOf(entity, clip));
    }
    return players;
}
