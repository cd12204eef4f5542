#include "generated_map.h"

namespace {

constexpr int ROOM = 640;  // from wall to wall
constexpr int WALL = 32;
constexpr int HEIGHT = 512;

class RoomWriter {
public:
    RoomWriter(MapBuilder& map, int roomsPerSide) : map_(map), rooms_(roomsPerSide) {}

    void Write(int column, int row) {
        const int x = column * ROOM;
        const int y = row * ROOM;
        const int height = HEIGHT - Next(3) * 64;
        map_.Box({x, y, -32}, {x + ROOM, y + ROOM, 0}, "floor");
        map_.Box({x, y, height}, {x + ROOM, y + ROOM, HEIGHT + 32}, "ceiling");
        // The west and south walls; the room beyond has the others.
        Wall({x, y, 0}, {x + WALL, y + ROOM, height}, column > 0, 1);
        Wall({x + WALL, y, 0}, {x + ROOM, y + WALL, height}, row > 0, 0);
        Pillars(x, y, height);
        Stairs(x + WALL, y + WALL);
        const int crate = 32 + 16 * Next(4);
        map_.Box({x + 440, y + 440, 0}, {x + 440 + crate, y + 440 + crate, crate}, "tall");
        map_.TurnedBox({x + 520, y + 300, 0}, {x + 520 + crate, y + 300 + crate, 64}, "tall");
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

    // With a doorway through its middle: two sides and a lintel.
    void Wall(const Corner& low, const Corner& high, bool doorway, size_t along) {
        if (!doorway) {
            map_.Box(low, high);
            return;
        }
        const int door = low[along] + 256 + 16 * Next(3);
        Corner left = high;
        left[along] = door;
        Corner right = low;
        right[along] = door + 128;
        map_.Box(low, left).Box(right, high);
        Corner lintelLow = low;
        Corner lintelHigh = high;
        lintelLow[along] = door;
        lintelHigh[along] = door + 128;
        lintelLow[2] = 256;
        map_.Box(lintelLow, lintelHigh, "tall");
    }

    void Pillars(int x, int y, int height) {
        for (int i = 0; i < 4; ++i) {
            const int at = x + 150 + (i % 2) * 300;
            const int north = y + 200 + (i / 2) * 250 + Next(4) * 8;
            if (i % 2 == 0) {
                map_.TurnedBox({at, north, 0}, {at + 48, north + 48, height});
            } else {
                map_.Box({at, north, 0}, {at + 32, north + 32, height});
            }
        }
    }

    void Stairs(int x, int y) {
        for (int i = 0; i < 5; ++i)
            map_.Box({x + i * 48, y, 0}, {x + i * 48 + 48, y + 96, 40 + i * 40}, "floor");
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
        const std::string at = std::to_string(i * ROOM + 320);
        map.Light(at + " 320 300");
    }
    return map.Start("320 320 64");
}

int BrushCount(const MapBuilder& map) {
    int count = 0;
    for (const MapEntity& entity : ParseMap(map.Text(), "generated").entities) {
        count += static_cast<int>(entity.brushes.size());
    }
    return count;
}
