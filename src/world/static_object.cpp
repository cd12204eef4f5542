#include "world/static_object.h"

#include "memory/fatal.h"
#include "memory/files.h"
#include "world/bsp.h"
#include "world/world_tables.h"

#include <cmath>

namespace {

constexpr float LOADED_INTENSITY = 8192.0f;

struct [[gnu::packed]] FilePlaneNumber {
    float value;
    uint8_t unused[4];
};

struct [[gnu::packed]] FilePolygon {
    uint8_t texture;
    uint8_t unused[2];
    FilePlaneNumber nx, ny, nz, d;
    uint8_t cornerCount;
};
static_assert(sizeof(FilePolygon) == 36);

struct [[gnu::packed]] FileCorner {
    uint16_t point;
    float u, v;
};
static_assert(sizeof(FileCorner) == 10);

enum class Load { Done, Invalid, NoRoom };

template <typename... Numbers>
bool AllFinite(Numbers... numbers) {
    return (std::isfinite(numbers) && ...);
}

Load AppendPoints(uint32_t count) {
    GeometryCounts& used = WorldGeometry.used;
    if (!GeometryHasRoomFor({0, 0, count, 0})) return Load::NoRoom;
    for (uint32_t i = 0; i < count; ++i) {
        Vec3 position;
        if (!ReadBlock(&position, sizeof position) || !AllFinite(position.x, position.y, position.z))
            return Load::Invalid;
        WorldGeometry.points[used.points + i].position = position;
    }
    return Load::Done;
}

// The object's point numbers count from the first point that it is given in WorldGeometry.
Load AppendPolygon(uint32_t pointCount) {
    GeometryCounts& used = WorldGeometry.used;
    FilePolygon polygon;
    if (!ReadBlock(&polygon, sizeof polygon)) return Load::Invalid;
    const PlaneRecord plane = {polygon.nx.value, polygon.ny.value, polygon.nz.value, polygon.d.value};
    if (polygon.cornerCount < 1 || polygon.cornerCount > STATIC_OBJECT_CORNERS_MAX) return Load::Invalid;
    if (!GeometryHasRoomFor({1, 1, pointCount, polygon.cornerCount})) return Load::NoRoom;

    PolyRecord& record = WorldGeometry.polygons[used.polygons++];
    record = {};
    record.texture = polygon.texture;
    record.cornerCount = polygon.cornerCount;
    record.firstVertex = static_cast<uint16_t>(used.polyVertices);
    record.plane = static_cast<uint16_t>(used.planes);
    WorldGeometry.planes[used.planes++] = plane;
    for (int k = 0; k < polygon.cornerCount; ++k) {
        FileCorner corner;
        if (!ReadBlock(&corner, sizeof corner) || corner.point >= pointCount || !AllFinite(corner.u, corner.v))
            return Load::Invalid;
        WorldGeometry.polyVertices[used.polyVertices++] = {used.points + corner.point, corner.u, corner.v,
                                                           LOADED_INTENSITY};
    }
    return Load::Done;
}

// Reads the rest of the file, from the counts on.
Load ReadObject() {
    GeometryCounts& used = WorldGeometry.used;
    const uint32_t polygons = ReadLong();
    const uint32_t points = ReadLong();
    ReadLong();
    const SkyObjectRange range = {static_cast<int32_t>(used.polygons), static_cast<int32_t>(used.points),
                                  static_cast<int32_t>(polygons), static_cast<int32_t>(points)};
    Load result = AppendPoints(points);
    for (uint32_t i = 0; i < polygons && result == Load::Done; ++i)
        result = AppendPolygon(points);
    if (result != Load::Done) return result;
    used.points += points;
    SkyObject = range;
    return Load::Done;
}

void PrintCorners() {
    const PolyRecord& first = WorldGeometry.polygons[SkyObject.firstPolygon];
    for (uint32_t i = first.firstVertex; SkyObject.polygonCount > 0 && i < WorldGeometry.used.polyVertices; ++i) {
        const PolyVertex& corner = WorldGeometry.polyVertices[i];
        std::printf("in = %d\nu  = %f\nv  = %f\ni  = %f\n", static_cast<int>(corner.point), double{corner.u},
                    double{corner.v}, double{corner.intensity});
    }
}

}  // namespace

int32_t LoadStaticObject(const char* path) {
    SkyObject = {};
    ReadStream = OpenGameFile(path, "rb");
    if (!ReadStream) return 0;
    std::printf("Reading Static Object...\n");
    if (ReadLong() != STATIC_OBJECT_MAGIC) {
        std::printf("Not a valid .SOB file.");
        CloseReadStream();
        return 0;
    }
    const bool isCurrent = ReadLong() == STATIC_OBJECT_VERSION;
    const Load result = isCurrent ? ReadObject() : Load::Invalid;
    CloseReadStream();
    if (!isCurrent) FatalError(0, "Old SOB Version", path);
    if (result == Load::Invalid) FatalError(0, "Not a valid static object file", path);
    if (result == Load::NoRoom) FatalError(0, "No room for the static object", path);
    PrintCorners();
    SetStaticMarks();
    return 1;
}
