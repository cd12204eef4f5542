#include "mapc/placement.h"

#include "formats/error.h"
#include "records/levels.h"

#include <fmt/format.h>

namespace {

// The brush's top above or below the point; nothing when a vertical line through the point misses it.
std::optional<Floor> TopOf(const Brush& brush, const PlaneTable& planes, const Vec3& p) {
    double bottom = -std::numeric_limits<double>::max();
    Floor top{std::numeric_limits<double>::max()};
    for (const BrushSide& side : brush.sides) {
        const Plane& plane = planes[side.plane];
        const double distance = plane.Distance(p);
        if (std::abs(plane.normal.z) < 1e-9) {
            if (distance > 0) return std::nullopt;
            continue;
        }
        const double height = p.z - distance / plane.normal.z;
        if (plane.normal.z > 0) {
            if (height < top.height) top = {height, side.texture < 0};
        } else {
            bottom = std::max(bottom, height);
        }
    }
    return bottom < top.height ? std::optional(top) : std::nullopt;
}

}  // namespace

std::optional<Floor> TopmostBelow(const Brushes& brushes, const Vec3& p) {
    std::optional<Floor> floor;
    for (const Brush& brush : brushes.list) {
        const std::optional<Floor> top = TopOf(brush, brushes.planes, p);
        if (top && top->height <= p.z && (!floor || top->height > floor->height)) floor = top;
    }
    return floor;
}

std::optional<double> FloorBelow(const Brushes& brushes, const Vec3& p) {
    const std::optional<Floor> floor = TopmostBelow(brushes, p);
    return floor ? std::optional(floor->height) : std::nullopt;
}

Vec3 Placement::Turned(const Vec3& v) const {
    Vec3 turned = v;
    for (int i = 0; i < quarterTurns; ++i)
        turned = {-turned.y, turned.x, turned.z};
    return {turned.x, turned.z, turned.y};
}

Vec3 Placement::ToEngine(const Vec3& p) const {
    return Turned(p) * scale + Vec3{offset[0], offset[1], offset[2]};
}

WorldVector Placement::ToFile(const Vec3& p) const {
    const Vec3 engine = ToEngine(p);
    return {static_cast<float>(engine.x), static_cast<float>(engine.y), static_cast<float>(engine.z)};
}

Vec3 Placement::ToMap(const Vec3& p) const {
    const auto [x, y, z] = MapFrame::ToMap({p.x, p.y, p.z});
    return {x, y, z};
}

PlayerStart FindPlayerStart(const MapFile& map) {
    const MapEntity* found = nullptr;
    for (const MapEntity& entity : map.entities) {
        if (entity.ClassName() != "info_player_start") continue;
        if (found) Refuse(entity.line, "a second info_player_start", "keep one");
        found = &entity;
    }
    if (!found) Refuse(map.name, 0, "there is no info_player_start", "place one where the player begins");
    const std::optional<Vec3> origin = VectorKey(*found, "origin");
    if (!origin) Refuse(found->line, "info_player_start has no origin", "place it in the map");
    const double angle = NumberKey(*found, "angle", 0);
    const double quarters = std::floor(angle / 90);
    if (angle != quarters * 90) {
        Refuse(found->line, fmt::format("info_player_start looks along {} degrees", angle), "use 0, 90, 180 or 270");
    }
    return {*origin, static_cast<int>(quarters - std::floor(quarters / 4) * 4) * 90, found->line};
}

Placement PlaceMap(const Brushes& brushes, const PlayerStart& start, int level, double scale) {
    Placement placement;
    placement.scale = scale;
    if (level == 0) return placement;
    const std::optional<double> floor = FloorBelow(brushes, start.origin);
    if (!floor) {
        Refuse(start.line, "there is no floor below info_player_start", "put it above a floor");
    }
    placement.quarterTurns = (90 - start.angle + 360) / 90 % 4;
    const LevelRow& row = LevelRowOf(level);
    const Vec3 origin = placement.Turned(start.origin) * scale;
    placement.offset[0] = row.start[0] - origin.x;
    placement.offset[1] = row.floor - *floor * scale;
    placement.offset[2] = row.start[2] - origin.z;
    return placement;
}
