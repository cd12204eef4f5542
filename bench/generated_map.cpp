#include "generated_map.h"

namespace {

constexpr int ROOM = 1008;  // width of a room, from wall to wall
constexpr int WALL = 32;
constexpr int HEIGHT = 512;

class RoomWriter {
public:
    RoomWriter(MapBuilder& map, int roomsPerSide) : map_(map), rooms_(roomsPerSide) {}

    void Write(int column, int row) {
        const int x = column * ROOM;
        const int y = row * ROOM;
        const int height = HEIGHT - Next(3) * 64;
        Tiles({x, y, -32}, 0, "floor");
        Tiles({x, y, height}, HEIGHT + 32, "ceiling");
        // The west and south walls; the room beyond has the others.
        Wall({x, y, 0}, {x + WALL, y + ROOM, height}, column > 0, 1);
        Wall({x + WALL, y, 0}, {x + ROOM, y + WALL, height}, row > 0, 0);
        Pillar(x, y, height);
        Stairs(x + WALL, y + WALL);
        if (Next(2) == 0) map_.Box({x + 800, y + 800, 0}, {x + 848, y + 848, 48}, "tall");
    }

    void CloseEastAndNorth() {
        const int end = rooms_ * ROOM;
        map_.Box({end, 0, -32}, {end + WALL, end + WALL, HEIGHT + 32});
        map_.Box({0, end, -32}, {end, end + WALL, HEIGHT + 32});
    }

private:
    int Next(int count) {
        state_ = state_ * 1103515245U + 12345U;
        return static_cast<int>((state_ >> 16) % static_cast<unsigned>(count));
    }

    void Tiles(const Corner& low, int top, const std::string& texture) {
        constexpr int TILE = ROOM / 3;
        for (int i = 0; i < 9; ++i) {
            const Corner at{low[0] + i % 3 * TILE, low[1] + i / 3 * TILE, low[2]};
            map_.Box(at, {at[0] + TILE, at[1] + TILE, top}, texture);
        }
    }

    // With a doorway through its middle: two parts on each side, and a lintel.
    void Wall(const Corner& low, const Corner& high, bool doorway, size_t along) {
        const int door = low[along] + 384 + 16 * Next(3);
        const int cuts[] = {low[along], low[along] + 192, door, door + 128, low[along] + 768, high[along]};
        for (size_t i = 0; i < 5; ++i) {
            Corner from = low;
            Corner to = high;
            from[along] = cuts[i];
            to[along] = cuts[i + 1];
            if (i == 2 && doorway) from[2] = 256;
            map_.Box(from, to, i == 2 ? "tall" : "wall");
        }
    }

    void Pillar(int x, int y, int height) {
        const int at = 300 + Next(4) * 8;
        if (Next(2) == 0) {
            map_.TurnedBox({x + at, y + 600, 0}, {x + at + 48, y + 648, height});
        } else {
            map_.Box({x + 650, y + at, 0}, {x + 682, y + at + 32, height});
        }
    }

    void Stairs(int x, int y) {
        for (int i = 0; i < 3; ++i)
            map_.Box({x + i * 48, y, 0}, {x + i * 48 + 48, y + 128, 40 + i * 40}, "floor");
    }

    MapBuilder& map_;
    int rooms_;
    unsigned state_ = 1;
};

}  // namespace

MapBuilder GeneratedRooms(int roomsPerSide) {
    MapBuilder map;
    RoomWriter writer(map, roomsPerSide);
    for (int row = 0; row < roomsPerSide; ++row) {
        for (int column = 0; column < roomsPerSide; ++column)
            writer.Write(column, row);
    }
    writer.CloseEastAndNorth();
    for (int i = 0; i < roomsPerSide; ++i) {
        const std::string at = std::to_string(i * ROOM + 500);
        map.Light(at + " 500 300");
    }
    return map.Start("500 500 64");
}

int BrushCount(const MapBuilder& map) {
    int count = 0;
    for (const MapEntity& entity : ParseMap(map.Text(), "generated").entities) {
        count += static_cast<int>(entity.brushes.size());
    }
    return count;
}
