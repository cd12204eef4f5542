#include "walled_room.h"

#include "formats/files.h"
#include "formats/world_file.h"
#include "tools/mapc/map_builder.h"

#include <fmt/format.h>

#include <vector>

namespace {

constexpr int SIDE = 800;
constexpr int HEIGHT = 600;
constexpr int LEAN = 150;  // by which the walls lean over their height: |ny| = 0.24
constexpr int THICK = 16;

// A face that looks away from `inside`.
std::string FaceThrough(const Corner& a, Corner b, Corner c, const Corner& inside) {
    const auto from = [&](const Corner& p, size_t i) { return p[i] - a[i]; };
    const auto side = [&](size_t i, size_t j, size_t k) {
        return (from(b, i) * from(c, j) - from(b, j) * from(c, i)) * from(inside, k);
    };
    if (side(0, 1, 2) + side(1, 2, 0) + side(2, 0, 1) < 0) std::swap(b, c);
    std::string line;
    for (const Corner& p : {a, b, c})
        line += fmt::format("( {} {} {} ) ", p[0], p[1], p[2]);
    return line + "wall 0 0 0 2 2\n";
}

// The wall over one side of the floor, from a to b, with `out` away from the room.
std::string Wall(const Corner& a, const Corner& b, const Corner& out) {
    const auto at = [&](const Corner& p, int away, int up) {
        return Corner{p[0] + out[0] * away, p[1] + out[1] * away, up};
    };
    const Corner inside = at({(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, 0}, LEAN, HEIGHT / 2);
    const int back = LEAN + THICK;
    return FaceThrough(at(a, 0, 0), at(b, 0, 0), at(a, LEAN, HEIGHT), inside) +
           FaceThrough(at(a, back, 0), at(b, back, 0), at(a, back, HEIGHT), inside) +
           FaceThrough(at(a, 0, 0), at(b, 0, 0), at(a, back, 0), inside) +
           FaceThrough(at(a, 0, HEIGHT), at(b, 0, HEIGHT), at(a, back, HEIGHT), inside) +
           FaceThrough(at(a, 0, 0), at(a, back, 0), at(a, 0, HEIGHT), inside) +
           FaceThrough(at(b, 0, 0), at(b, back, 0), at(b, 0, HEIGHT), inside);
}

struct Hole {
    Corner low, high;
};

MapBuilder LeaningRoom(const Hole& hole) {
    constexpr int FAR = SIDE + LEAN + THICK;
    constexpr int NEAR = -LEAN - THICK;
    MapBuilder map;
    map.Brush(Wall({0, NEAR, 0}, {0, FAR, 0}, {-1, 0, 0})).Brush(Wall({SIDE, NEAR, 0}, {SIDE, FAR, 0}, {1, 0, 0}));
    map.Brush(Wall({NEAR, 0, 0}, {FAR, 0, 0}, {0, -1, 0})).Brush(Wall({NEAR, SIDE, 0}, {FAR, SIDE, 0}, {0, 1, 0}));
    map.Box({NEAR, NEAR, HEIGHT}, {FAR, FAR, HEIGHT + THICK}, "ceiling");
    const auto& [low, high] = hole;
    const int deep = low[2] - THICK;
    map.Box({NEAR, NEAR, deep}, {low[0], FAR, 0}, "floor").Box({high[0], NEAR, deep}, {FAR, FAR, 0}, "floor");
    map.Box({low[0], NEAR, deep}, {high[0], low[1], 0}, "floor");
    map.Box({low[0], high[1], deep}, {high[0], FAR, 0}, "floor");
    return map.Box({low[0], low[1], deep}, {high[0], high[1], low[2]}, "floor");
}

// Faces a wall at y = 320: their feet meet.
std::string SteepBank() {
    const Corner inside{400, 420, 60};
    return FaceThrough({-100, 330, 0}, {900, 330, 0}, {-100, 400, 200}, inside) +
           FaceThrough({-100, 480, 0}, {900, 480, 0}, {-100, 480, 200}, inside) +
           FaceThrough({-100, 330, 0}, {900, 330, 0}, {-100, 480, 0}, inside) +
           FaceThrough({-100, 400, 200}, {900, 400, 200}, {-100, 480, 200}, inside) +
           FaceThrough({-100, 330, 0}, {-100, 480, 0}, {-100, 400, 200}, inside) +
           FaceThrough({900, 330, 0}, {900, 480, 0}, {900, 400, 200}, inside);
}

MapBuilder MapOf(Room room) {
    const int depth = room == Room::Pit ? 600 : 0;
    if (room == Room::Hollow || room == Room::FilledHollow) {
        MapBuilder map = LeaningRoom({{480, 480, 0}, {600, 600, 0}});
        if (room == Room::FilledHollow) map.guards = "hollows";
        return map.Box({-100, 300, 0}, {900, 320, 200}).Brush(SteepBank());
    }
    if (room == Room::Upright || room == Room::Skirted || room == Room::Netted) {
        MapBuilder map;
        map.skirts = room == Room::Skirted;
        if (room == Room::Netted) map.guards = "net floors";
        return map.Room({0, 0, 0}, {SIDE, SIDE, HEIGHT}).Box({500, 500, 0}, {580, 580, 300});
    }
    MapBuilder map = LeaningRoom({{480, 480, -depth}, {600, 600, 0}});
    if (room == Room::Safe || room == Room::Pit) return map;
    if (room == Room::Low) {
        map.guards = "ceilings";
        return map.Box({-LEAN, -LEAN, LOW_CEILING}, {SIDE + LEAN, SIDE + LEAN, HEIGHT});
    }
    if (room == Room::LiddedLedge) map.guards = "lids";
    for (int x = 250; x < 750; x += 110)
        map.TurnedBox({x, 200, 0}, {x + 100, 300, 24});
    return map.Box({200, 300, 0}, {800, 500, 300});
}

}  // namespace

std::optional<float> WriteRoom(Room room, const std::filesystem::path& world, const std::optional<RoomPoint>& point) {
    MapBuilder map = MapOf(room).Start("200 200 60");
    CompiledLevel level = Compile(map, 3, {LightQuality::None, 1, {}});
    if (point) {
        const auto [east, north, up] = level.places.frame.ToMap(point->place);
        map.BeginEntity(point->className, fmt::format("\"origin\" \"{:.0f} {:.0f} {:.0f}\"\n", east, north, up));
        level = Compile(map, 3, {LightQuality::None, 1, {}});
    }
    WriteWholeFile(world, EncodeWorld(level.world));
    if (!level.places.net) return std::nullopt;
    return static_cast<float>(*level.places.net);
}
