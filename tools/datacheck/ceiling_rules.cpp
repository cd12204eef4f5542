#include "datacheck/rules.h"
#include "mapc/box_grid.h"
#include "mapc/ceilings.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <map>

namespace {

// Engine units.
constexpr double CELL = 48;        // between the places that are looked at
constexpr double TOLERANCE = 4;    // by which a head may pass a ceiling
constexpr double SAME_FLOOR = 64;  // between neighbouring places of one area, at most
constexpr size_t AREA_MIN = 6;     // places; smaller areas are doorways, and beams
constexpr double SEAM = -0.5;      // what is straight below the seam of two faces is below both
constexpr double NONE = std::numeric_limits<double>::infinity();

struct LowPlace {
    Vec3 floor;
    double room;  // up to the ceiling
    double past;  // by how much a head passes it
};
using LowPlaces = std::multimap<std::pair<int, int>, LowPlace>;  // by their cells

class CeilingSearch {
public:
    explicit CeilingSearch(const LevelData& level)
        : level_(level), faces_(FacesOf(*level.world)), visible_(VisibleTextures(level)), grid_(Columns(faces_)),
          jump_(JumpHeight(level.number > 0 ? LevelRowOf(level.number).ticks : 1)) {}

    // One of the places of each area, in its middle.
    std::vector<LowPlace> Areas() {
        LowPlaces places = Places();
        std::vector<LowPlace> areas;
        while (!places.empty()) {
            const std::vector<LowPlace> area = TakeArea(places);
            if (area.size() >= AREA_MIN) areas.push_back(MiddleOf(area));
        }
        return areas;
    }

private:
    // Boxes whose x and y lie across, as the grid has them.
    static std::vector<Box> Columns(const std::vector<WorldFace>& faces) {
        std::vector<Box> boxes;
        for (const WorldFace& face : faces) {
            Box box;
            for (const Vec3& p : face.corners)
                box.Add(Vec3{p.x, p.z, 0});
            boxes.push_back(box);
        }
        return boxes;
    }

    bool IsVisible(size_t face) const { return visible_[level_.world->polygons[face].texture]; }

    LowPlaces Places() const {
        LowPlaces places;
        for (size_t i = 0; i < faces_.size(); ++i) {
            const WorldFace& floor = faces_[i];
            if (floor.Up() < double{LANDING_SLOPE} || !IsVisible(i)) continue;
            Box box;
            for (const Vec3& p : floor.corners)
                box.Add(p);
            const auto cell = [](double at) { return static_cast<int>(std::floor(at / CELL)); };
            for (int x = cell(box.min.x); x <= cell(box.max.x); ++x) {
                for (int z = cell(box.min.z); z <= cell(box.max.z); ++z) {
                    const Vec3 above{(x + 0.5) * CELL, box.max.y + 1, (z + 0.5) * CELL};
                    const double down = floor.Hit(above, {0, -1, 0}, 0);
                    if (down == NONE) continue;
                    if (const auto place = PlaceOn(above - Vec3{0, down, 0})) places.emplace(std::pair(x, z), *place);
                }
            }
        }
        return places;
    }

    std::optional<LowPlace> PlaceOn(const Vec3& floor) const {
        double room = NONE, free = NONE;  // up to the ceiling, and to what stops the sphere
        grid_.AnyAt({floor.x, floor.z, 0}, MOVE_SPHERE_RADIUS, [&](int i) {
            const WorldFace& face = faces_[static_cast<size_t>(i)];
            if (face.Up() > -double{LANDING_SLOPE}) return false;
            free = std::min(free, face.Hit(floor, {0, 1, 0}, -MOVE_SPHERE_RADIUS));
            if (IsVisible(static_cast<size_t>(i))) room = std::min(room, face.Hit(floor, {0, 1, 0}, SEAM));
            return false;
        });
        if (room == NONE || room < SLAB_DROP + 2 * MOVE_SPHERE_RADIUS) return std::nullopt;
        const double past = std::min(jump_, free - 2 * MOVE_SPHERE_RADIUS) + HEAD_ROOM - room;
        if (past <= TOLERANCE) return std::nullopt;
        return LowPlace{floor, room, past};
    }

    // Takes out a place and what is connected with it.
    static std::vector<LowPlace> TakeArea(LowPlaces& places) {
        std::vector<LowPlace> area;
        std::vector<LowPlaces::value_type> open{*places.begin()};
        places.erase(places.begin());
        while (!open.empty()) {
            const LowPlaces::value_type from = open.back();
            open.pop_back();
            area.push_back(from.second);
            for (int dx = -1; dx <= 1; ++dx) {
                for (int dz = -1; dz <= 1; ++dz) {
                    auto [next, end] = places.equal_range({from.first.first + dx, from.first.second + dz});
                    while (next != end) {
                        const bool isConnected = std::abs(next->second.floor.y - from.second.floor.y) < SAME_FLOOR;
                        if (isConnected) open.push_back(*next);
                        next = isConnected ? places.erase(next) : std::next(next);
                    }
                }
            }
        }
        return area;
    }

    static LowPlace MiddleOf(const std::vector<LowPlace>& area) {
        Vec3 sum;
        for (const LowPlace& place : area)
            sum = sum + place.floor;
        const Vec3 middle = sum * (1.0 / static_cast<double>(area.size()));
        return *std::min_element(area.begin(), area.end(), [&](const LowPlace& a, const LowPlace& b) {
            return LengthSquared(a.floor - middle) < LengthSquared(b.floor - middle);
        });
    }

    const LevelData& level_;
    std::vector<WorldFace> faces_;
    std::vector<bool> visible_;
    BoxGrid grid_;
    double jump_;
};

}  // namespace

void CheckCeilings(const LevelData& level, Report& report) {
    for (const LowPlace& place : CeilingSearch(level).Areas()) {
        report.Note(
            level.WorldPath(), "around " + level.Describe(place.floor),
            fmt::format("a jump lifts the player's head {:.0f} into the ceiling, which is {:.0f} above the floor",
                        place.past, place.room),
            fmt::format("raise it by that, put a clip brush below it whose underside is {:.0f} lower, or add "
                        "ceilings to the key \"guards\"",
                        SLAB_DROP));
    }
}
