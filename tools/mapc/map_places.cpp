#include "mapc/map_places.h"

#include "formats/error.h"
#include "records/walking_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double REACH_DEFAULT = 96;
constexpr int ORDER_MAX = 1000;
constexpr double TIME_MAX = 3600;

struct Mark {
    MarkedPlace place;
    SourceLine line;
};

// The angle 0 of a map is east, the heading 0 of the world is +z.
double HeadingOf(double angle, const Placement& placement) {
    const double heading = angle + 90 * placement.quarterTurns - 90;
    return heading - 360 * std::floor(heading / 360);
}

Mark MarkOf(const MapEntity& entity, const Brushes& brushes, const Placement& placement) {
    const std::optional<Vec3> origin = VectorKey(entity, "origin");
    if (!origin) Refuse(entity.line, "info_route has no origin", "place it in the map");
    const std::optional<double> floor = FloorBelow(brushes, *origin);
    if (!floor) Refuse(entity.line, "there is no floor below info_route", "put it above a floor");
    const Vec3 position = placement.ToEngine({origin->x, origin->y, *floor});
    Mark mark{{.x = position.x, .y = position.y + double{STANDING_HEIGHT}, .z = position.z}, entity.line};
    const double order = NumberKeyIn(entity, "order", 0, 0, ORDER_MAX);
    if (order != std::floor(order)) {
        Refuse(entity.Find("order")->line, fmt::format("the order is {}", order), "use a whole number");
    }
    mark.place.order = static_cast<int>(order);
    mark.place.reach = NumberKeyIn(entity, "reach", REACH_DEFAULT, 16, 1000);
    if (entity.Find("angle")) mark.place.heading = HeadingOf(NumberKeyIn(entity, "angle", 0, -360, 360), placement);
    if (const MapKey* name = entity.Find("name")) mark.place.name = Shown(name->value);
    std::replace(mark.place.name.begin(), mark.place.name.end(), '#', '?');  // begins a comment in the file
    return mark;
}

void CheckOrder(const std::vector<Mark>& marks) {
    int expected = 1;
    for (const Mark& mark : marks) {
        if (mark.place.order == 0) continue;
        if (mark.place.order != expected) {
            Refuse(mark.line, fmt::format("the route's mark {} stands where {} should", mark.place.order, expected),
                   "number the marks 1, 2, 3 and so on, each once");
        }
        ++expected;
    }
}

}  // namespace

PlacesFile PlacesOf(const MapFile& map, const Brushes& brushes, const Placement& placement) {
    PlacesFile places;
    places.frame = placement;
    places.routeTime = NumberKeyIn(map.entities[0], "route_time", 0, 0, TIME_MAX);
    std::vector<Mark> marks;
    for (const MapEntity& entity : map.entities) {
        if (entity.ClassName() == "info_route") marks.push_back(MarkOf(entity, brushes, placement));
    }
    const auto rank = [](const Mark& mark) { return mark.place.order == 0 ? ORDER_MAX + 1 : mark.place.order; };
    std::stable_sort(marks.begin(), marks.end(), [&](const Mark& a, const Mark& b) { return rank(a) < rank(b); });
    CheckOrder(marks);
    for (const Mark& mark : marks)
        places.marks.push_back(mark.place);
    return places;
}
