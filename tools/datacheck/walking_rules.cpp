#include "datacheck/rules.h"
#include "mapc/limits.h"
#include "records/walking_facts.h"

#include <fmt/format.h>

namespace {

constexpr double START_LOWEST = STANDING_HEIGHT + 2;  // least height of the start above its floor
constexpr double START_HIGHEST = STANDING_HEIGHT + 8;
constexpr double STEP_TOLERANCE = 0.01;  // rounding of a step's height in the file
constexpr double BEFORE_WALL = 8;        // distance in front of a wall at which its floor is looked for

void CheckStart(const LevelData& level, const std::vector<WorldFace>& faces, Report& report) {
    const Vec3 start = StartOf(level.number);
    const double height = NearestHit(faces, start, {0, -1, 0}, 0);
    if (height >= START_LOWEST && height <= START_HIGHEST) return;
    report.Problem(level.WorldPath(), "start " + level.Describe(start),
                   std::isinf(height) ? "has no floor below it"
                                      : fmt::format("is {:.1f} above its floor, {} to {} is right", height,
                                                    START_LOWEST, START_HIGHEST),
                   "move info_player_start or the floor below it, and compile with the level's number");
}

double HeightOf(const WorldFace& face) {
    Box box;
    for (const Vec3& p : face.corners)
        box.Add(p);
    return box.max.y - box.min.y;
}

bool IsWall(const WorldFace& face) {
    return std::abs(face.normal.y) < STEEP_SLOPE;
}

// What a touched polygon is to a walking player. The last one touched decides how a step is taken; a ceiling is never
// stepped on.
enum class Contact { Tread, Wall, Riser, Ceiling };

Contact ContactOf(const WorldFace& face) {
    if (face.Up() > STEEP_SLOPE) return Contact::Tread;
    if (face.Up() < -STEEP_SLOPE) return Contact::Ceiling;
    return HeightOf(face) <= STEP_HEIGHT + STEP_TOLERANCE ? Contact::Riser : Contact::Wall;
}

// Whether the player may stand in front of the wall on a floor no more than LEDGE_MAX below the edge.
bool FloorIsNear(const std::vector<WorldFace>& faces, const WorldFace& wall, const Vec3& edge) {
    const Vec3 eye = edge - wall.normal * BEFORE_WALL;
    for (const WorldFace& face : faces) {
        if (face.Up() > STEEP_SLOPE && face.Hit(eye, {0, -1, 0}, 0) < LEDGE_MAX - 0.1) return true;
    }
    return false;
}

bool SameDirectionPlane(const WorldFace& a, const WorldFace& b) {
    return Dot(a.normal, b.normal) > 0.9999 && std::abs(b.Distance(a.corners[0])) < 0.1;
}

// Whether another polygon of the same wall continues this one upwards from its top edge.
bool IsContinued(const std::vector<WorldFace>& faces, const WorldFace& wall, const Vec3& middle) {
    const Vec3 above = middle + Vec3{0, 1, 0};
    for (const WorldFace& face : faces) {
        if (&face != &wall && SameDirectionPlane(wall, face) &&
            !std::isinf(face.Hit(above - wall.normal, wall.normal, 0))) {
            return true;
        }
    }
    return false;
}

// The game takes the lower part of a wall that is cut within reach of the feet for a ledge, and the player bobs on it.
void NoteSplitWalls(const LevelData& level, const std::vector<WorldFace>& faces, Report& report) {
    for (const WorldFace& wall : faces) {
        if (!IsWall(wall)) continue;
        for (size_t k = 0; k < wall.corners.size(); ++k) {
            const Vec3& p = wall.corners[k];
            const Vec3& next = wall.corners[(k + 1) % wall.corners.size()];
            const Vec3 middle = (p + next) * 0.5;
            const bool isTop = std::abs(p.y - next.y) < 0.1 && wall.Centre().y < middle.y - 0.1;
            if (!isTop || !FloorIsNear(faces, wall, middle) || !IsContinued(faces, wall, middle)) continue;
            report.Note(level.WorldPath(), "wall at " + level.Describe(middle),
                        fmt::format("is cut horizontally less than {} above a floor", LEDGE_MAX),
                        fmt::format("let one face of the wall reach {} above the floor, and no ledge's plane cut it",
                                    LEDGE_MAX));
        }
    }
}

void CheckContacts(const LevelData& level, Report& report) {
    const Contacts contacts = MostContacts(*level.world);
    if (contacts.count <= LEVEL_CONTACTS_MAX) return;
    report.Problem(level.WorldPath(), "at " + level.Describe(Widened(contacts.place)),
                   fmt::format("a moving player touches {} polygons, at most {}", contacts.count, LEVEL_CONTACTS_MAX),
                   "use fewer or larger faces there");
}

}  // namespace

void CheckContactOrder(const LevelData& level, Report& report) {
    const std::vector<WorldFace> faces = FacesOf(*level.world);
    for (size_t l = 0; l < level.world->leaves.size(); ++l) {
        const WorldLeaf& leaf = level.world->leaves[l];
        Contact last = Contact::Tread;
        for (size_t i = leaf.firstPolygon; i < size_t{leaf.firstPolygon} + leaf.polygonCount; ++i) {
            const Contact contact = ContactOf(faces[i]);
            if (contact == Contact::Ceiling) continue;
            if (contact < last) {
                report.Problem(level.WorldPath(), fmt::format("leaf {}, polygon {}", l, i),
                               "comes after a riser or wall that must be touched last",
                               "order the leaf's polygons: treads, walls, risers");
                break;
            }
            last = contact;
        }
    }
}

void CheckWalking(const LevelData& level, Report& report) {
    const std::vector<WorldFace> faces = FacesOf(*level.world);
    if (level.number > 0) CheckStart(level, faces, report);
    CheckContactOrder(level, report);
    NoteSplitWalls(level, faces, report);
    CheckContacts(level, report);
}
