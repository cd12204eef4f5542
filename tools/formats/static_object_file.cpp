#include "formats/static_object_file.h"

#include "formats/binary.h"
#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>

#include <utility>

namespace {

constexpr const char* REBUILD = "build it again with skyc";
constexpr const char* SIMPLIFY = "make it simpler";
constexpr size_t HEADER_SIZE = 20;
constexpr size_t POINT_SIZE = 12;
constexpr size_t POLYGON_SIZE_MIN = 36 + 3 * 10;

void CheckLimit(const std::string& file, const char* what, size_t count, size_t limit) {
    if (count > limit) Refuse(file, 0, fmt::format("has {} {}, {} at most", count, what, limit), SIMPLIFY);
}

void CheckCounts(const std::string& file, size_t polygons, size_t points) {
    CheckLimit(file, "polygons", polygons, STATIC_OBJECT_POLYGONS_MAX);
    CheckLimit(file, "points", points, STATIC_OBJECT_POINTS_MAX);
}

void CheckPolygons(const std::string& file, const StaticObjectFile& object) {
    size_t corners = 0;
    for (size_t i = 0; i < object.polygons.size(); ++i) {
        const StaticObjectPolygon& polygon = object.polygons[i];
        const size_t count = polygon.corners.size();
        if (count < 3 || count > STATIC_OBJECT_POLYGON_CORNERS_MAX) {
            Refuse(file, 0, fmt::format("polygon {} has {} corners", i, count),
                   fmt::format("give it 3 to {}", STATIC_OBJECT_POLYGON_CORNERS_MAX));
        }
        for (const StaticObjectCorner& corner : polygon.corners) {
            if (corner.point >= object.points.size()) {
                Refuse(file, 0, fmt::format("polygon {} uses point {} of {}", i, corner.point, object.points.size()),
                       REBUILD);
            }
        }
        corners += count;
    }
    CheckLimit(file, "corners", corners, STATIC_OBJECT_CORNERS_MAX);
}

void PutPolygon(ByteWriter& out, const StaticObjectPolygon& polygon) {
    out.U8(polygon.texture);
    out.Zeros(2);
    const WorldVector& n = polygon.plane.normal;
    for (const float field : {n[0], n[1], n[2], polygon.plane.offset}) {
        out.F32(field);
        out.Zeros(4);
    }
    out.U8(static_cast<uint32_t>(polygon.corners.size()));
    for (const StaticObjectCorner& corner : polygon.corners) {
        out.U16(corner.point);
        out.F32(corner.u);
        out.F32(corner.v);
    }
}

float GetPlaneField(ByteReader& in) {
    const float field = in.F32();
    in.Take(4);
    return field;
}

StaticObjectPolygon GetPolygon(ByteReader& in) {
    StaticObjectPolygon polygon;
    polygon.texture = in.U8();
    in.Take(2);
    for (float& component : polygon.plane.normal)
        component = GetPlaneField(in);
    polygon.plane.offset = GetPlaneField(in);
    polygon.corners.resize(in.U8());
    for (StaticObjectCorner& corner : polygon.corners) {
        corner.point = in.U16();
        corner.u = in.F32();
        corner.v = in.F32();
    }
    return polygon;
}

// Polygon and point count.
std::pair<uint32_t, uint32_t> ReadHeader(ByteReader& in) {
    if (in.Left() < HEADER_SIZE) Refuse(in.File(), 0, "is too short for a static object", REBUILD);
    if (in.BigU32() != STATIC_OBJECT_MAGIC) Refuse(in.File(), 0, "is not a static object", REBUILD);
    if (const uint32_t version = in.BigU32(); version != STATIC_OBJECT_VERSION) {
        Refuse(in.File(), 0, fmt::format("is a static object of version {}, not {}", version, STATIC_OBJECT_VERSION),
               REBUILD);
    }
    const uint32_t polygons = in.BigU32();
    const uint32_t points = in.BigU32();
    in.Take(4);
    CheckCounts(in.File(), polygons, points);
    const size_t least = points * POINT_SIZE + polygons * POLYGON_SIZE_MIN;
    if (in.Left() < least) Refuse(in.File(), 0, "is shorter than its counts ask for", REBUILD);
    return {polygons, points};
}

}  // namespace

std::vector<uint8_t> EncodeStaticObject(const StaticObjectFile& object, const std::string& fileName) {
    CheckCounts(fileName, object.polygons.size(), object.points.size());
    CheckPolygons(fileName, object);
    ByteWriter out;
    out.BigU32(STATIC_OBJECT_MAGIC);
    out.BigU32(STATIC_OBJECT_VERSION);
    out.BigU32(static_cast<uint32_t>(object.polygons.size()));
    out.BigU32(static_cast<uint32_t>(object.points.size()));
    out.Zeros(4);
    for (const WorldVector& point : object.points) {
        for (const float coordinate : point)
            out.F32(coordinate);
    }
    for (const StaticObjectPolygon& polygon : object.polygons)
        PutPolygon(out, polygon);
    return std::move(out.bytes);
}

StaticObjectFile DecodeStaticObject(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    const auto [polygons, points] = ReadHeader(in);
    StaticObjectFile object;
    object.points.resize(points);
    for (WorldVector& point : object.points) {
        for (float& coordinate : point)
            coordinate = in.F32();
    }
    for (uint32_t i = 0; i < polygons; ++i)
        object.polygons.push_back(GetPolygon(in));
    if (in.Left() != 0) Refuse(fileName, 0, fmt::format("has {} bytes after its polygons", in.Left()), REBUILD);
    CheckPolygons(fileName, object);
    return object;
}
