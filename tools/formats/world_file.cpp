#include "formats/world_file.h"

#include "formats/binary.h"
#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>

#include <utility>

namespace {

constexpr const char* REBUILD = "build it again with mapc";

void Put(ByteWriter& out, const WorldVector& v) {
    for (const float component : v)
        out.F32(component);
}

WorldVector GetVector(ByteReader& in) {
    WorldVector v;
    for (float& component : v)
        component = in.F32();
    return v;
}

void Put(ByteWriter& out, const WorldNode& node) {
    out.I16(node.front);
    out.I16(node.back);
    out.U16(static_cast<uint16_t>(node.plane));
    Put(out, node.centre);
    out.Zeros(12);
    Put(out, node.halfExtents);
}

WorldNode GetNode(ByteReader& in) {
    WorldNode node;
    node.front = in.I16();
    node.back = in.I16();
    node.plane = in.U16();
    node.centre = GetVector(in);
    in.Take(12);
    node.halfExtents = GetVector(in);
    return node;
}

void Put(ByteWriter& out, const WorldLeaf& leaf) {
    out.U16(static_cast<uint16_t>(leaf.polygonCount));
    out.Zeros(4);
    out.U16(static_cast<uint16_t>(leaf.firstPolygon));
    Put(out, leaf.centre);
    out.Zeros(12);
    Put(out, leaf.halfExtents);
}

WorldLeaf GetLeaf(ByteReader& in) {
    WorldLeaf leaf;
    leaf.polygonCount = in.U16();
    in.Take(4);
    leaf.firstPolygon = in.U16();
    leaf.centre = GetVector(in);
    in.Take(12);
    leaf.halfExtents = GetVector(in);
    return leaf;
}

void Put(ByteWriter& out, const WorldPlane& plane) {
    Put(out, plane.normal);
    out.F32(plane.offset);
}

WorldPlane GetPlane(ByteReader& in) {
    const WorldVector normal = GetVector(in);
    return {normal, in.F32()};
}

void Put(ByteWriter& out, const WorldPolygon& polygon) {
    out.U8(polygon.cornerCount);
    out.U8(polygon.texture);
    out.U8(polygon.shading);
    out.Zeros(3);
    out.U16(static_cast<uint16_t>(polygon.firstCorner));
    out.U16(static_cast<uint16_t>(polygon.plane));
}

WorldPolygon GetPolygon(ByteReader& in) {
    WorldPolygon polygon;
    polygon.cornerCount = in.U8();
    polygon.texture = in.U8();
    polygon.shading = in.U8();
    in.Take(3);
    polygon.firstCorner = in.U16();
    polygon.plane = in.U16();
    return polygon;
}

void Put(ByteWriter& out, const WorldPoint& point) {
    Put(out, point.position);
    Put(out, point.normal);
}

WorldPoint GetPoint(ByteReader& in) {
    const WorldVector position = GetVector(in);
    return {position, GetVector(in)};
}

void Put(ByteWriter& out, const WorldCorner& corner) {
    out.U32(corner.point);
    out.F32(corner.u);
    out.F32(corner.v);
    out.Zeros(4);
}

WorldCorner GetCorner(ByteReader& in) {
    WorldCorner corner;
    corner.point = in.U32();
    corner.u = in.F32();
    corner.v = in.F32();
    in.Take(4);
    return corner;
}

struct Table {
    const char* name;
    size_t recordSize;
};
constexpr std::array<Table, 6> TABLES{
    {{"nodes", 42}, {"leaves", 44}, {"planes", 16}, {"polygons", 10}, {"points", 24}, {"corners", 16}}};

template <class Record>
void PutTable(ByteWriter& out, const std::vector<Record>& records) {
    for (const Record& record : records)
        Put(out, record);
}

template <class Record>
std::vector<Record> GetTable(ByteReader& in, uint32_t count, Record (*get)(ByteReader&)) {
    std::vector<Record> records;
    records.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
        records.push_back(get(in));
    return records;
}

std::array<uint32_t, 6> ReadHeader(ByteReader& in) {
    if (in.Left() < 32) Refuse(in.File(), 0, "is too short for a world file", REBUILD);
    if (in.BigU32() != WORLD_MAGIC) Refuse(in.File(), 0, "is not a world file", REBUILD);
    if (const uint32_t version = in.BigU32(); version != WORLD_VERSION) {
        Refuse(in.File(), 0, fmt::format("is a world file of version {}, not {}", version, WORLD_VERSION), REBUILD);
    }
    std::array<uint32_t, 6> counts{};
    uint64_t needed = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        counts[i] = in.BigU32();
        needed += uint64_t{counts[i]} * TABLES[i].recordSize;
    }
    if (needed != in.Left()) {
        Refuse(in.File(), 0, fmt::format("holds {} bytes of tables, its counts ask for {}", in.Left(), needed),
               REBUILD);
    }
    return counts;
}

void CheckIndex(const ByteReader& in, const char* owner, size_t number, const char* table, size_t end, size_t count) {
    if (end <= count) return;
    Refuse(in.File(), 0, fmt::format("{} {} points outside the {} {}", owner, number, count, table), REBUILD);
}

// The number of entries a table needs for the entry that a child code names.
size_t ChildEnd(int16_t child) {
    return static_cast<size_t>(child >= 0 ? child : ~child) + 1;
}

void CheckIndices(const ByteReader& in, const WorldFile& world) {
    for (size_t i = 0; i < world.nodes.size(); ++i) {
        const WorldNode& node = world.nodes[i];
        CheckIndex(in, "node", i, "planes", node.plane + size_t{1}, world.planes.size());
        for (const int16_t child : {node.front, node.back}) {
            const bool isNode = child >= 0;
            CheckIndex(in, "node", i, isNode ? "nodes" : "leaves", ChildEnd(child),
                       isNode ? world.nodes.size() : world.leaves.size());
        }
    }
    for (size_t i = 0; i < world.leaves.size(); ++i) {
        const size_t end = size_t{world.leaves[i].firstPolygon} + world.leaves[i].polygonCount;
        CheckIndex(in, "leaf", i, "polygons", end, world.polygons.size());
    }
    for (size_t i = 0; i < world.polygons.size(); ++i) {
        const WorldPolygon& polygon = world.polygons[i];
        CheckIndex(in, "polygon", i, "planes", polygon.plane + size_t{1}, world.planes.size());
        CheckIndex(in, "polygon", i, "corners", size_t{polygon.firstCorner} + polygon.cornerCount,
                   world.corners.size());
    }
    for (size_t i = 0; i < world.corners.size(); ++i) {
        CheckIndex(in, "corner", i, "points", world.corners[i].point + size_t{1}, world.points.size());
    }
}

}  // namespace

std::vector<uint8_t> EncodeWorld(const WorldFile& world) {
    ByteWriter out;
    out.BigU32(WORLD_MAGIC);
    out.BigU32(WORLD_VERSION);
    for (const size_t count : {world.nodes.size(), world.leaves.size(), world.planes.size(), world.polygons.size(),
                               world.points.size(), world.corners.size()}) {
        out.BigU32(static_cast<uint32_t>(count));
    }
    PutTable(out, world.nodes);
    PutTable(out, world.leaves);
    PutTable(out, world.planes);
    PutTable(out, world.polygons);
    PutTable(out, world.points);
    PutTable(out, world.corners);
    return std::move(out.bytes);
}

WorldFile DecodeWorld(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    const auto counts = ReadHeader(in);
    WorldFile world;
    world.nodes = GetTable(in, counts[0], GetNode);
    world.leaves = GetTable(in, counts[1], GetLeaf);
    world.planes = GetTable(in, counts[2], GetPlane);
    world.polygons = GetTable(in, counts[3], GetPolygon);
    world.points = GetTable(in, counts[4], GetPoint);
    world.corners = GetTable(in, counts[5], GetCorner);
    CheckIndices(in, world);
    return world;
}

WorldFile ReadWorldFile(const std::filesystem::path& path) {
    return DecodeWorld(ReadWholeFile(path), path.string());
}
