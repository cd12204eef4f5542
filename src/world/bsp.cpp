#include "world/bsp.h"

#include "memory/fatal.h"
#include "memory/files.h"
#include "memory/pool.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "world/bsp_check.h"
#include "world/polygon_lanes.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr double ROOT_2 = 1.414213562;
constexpr double VERTICAL_NORMAL = 0.0001;  // a plane normal whose horizontal part is shorter has no yaw

uint32_t PointCapacity() {
    return WorldGeometry.file.points + SPARE_POINTS;
}

uint32_t PolyVertexCapacity() {
    return WorldGeometry.file.polyVertices + SPARE_POLY_VERTICES;
}

uint32_t PolygonCapacity() {
    return WorldGeometry.file.polygons + SPARE_POLYGONS;
}

[[noreturn]] void RefuseWorld(const char* message, const char* path) {
    CloseReadStream();
    FatalError(0, message, path);
}

void ReadHeader(const char* path) {
    if (ReadLong() != BSP_MAGIC) RefuseWorld("Not a valid BSP file", path);
    if (ReadLong() != BSP_VERSION) RefuseWorld("Old BSP Version", path);
    WorldGeometry.nodeCount = ReadLong();
    WorldGeometry.leafCount = ReadLong();
    WorldGeometry.file.planes = ReadLong();
    WorldGeometry.file.polygons = ReadLong();
    WorldGeometry.file.points = ReadLong();
    WorldGeometry.file.polyVertices = ReadLong();
    if (!BspCountsAreValid() || BspTableBytes() > BytesLeft()) RefuseWorld("Not a valid BSP file", path);
}

template <typename Element>
bool Allocate(Element*& table, uint32_t count) {
    table = static_cast<Element*>(PoolMalloc(count * static_cast<uint32_t>(sizeof(Element))));
    return table != nullptr;
}

bool AllocateTables() {
    WorldGeometryTables& world = WorldGeometry;
    return Allocate(world.nodes, world.nodeCount) && Allocate(world.leaves, world.leafCount) &&
           Allocate(world.planes, world.file.planes + SPARE_PLANES) && Allocate(world.polygons, PolygonCapacity()) &&
           Allocate(world.polyFrames, PolygonCapacity()) && Allocate(world.points, PointCapacity()) &&
           Allocate(world.polyVertices, PolyVertexCapacity()) && Allocate(world.viewPoints, PointCapacity()) &&
           Allocate(world.outcodes, PointCapacity()) && Allocate(world.pointLight, PointCapacity()) &&
           Allocate(world.pointLightBase, PointCapacity()) && Allocate(world.pointLightStamps, PointCapacity()) &&
           Allocate(world.characterStamps, PointCapacity()) &&
           Allocate(world.cornerLightStamps, CornerLightStampCount()) &&
           Allocate(world.alternateVertices, PolyVertexCapacity()) && Allocate(world.renderList, 2 * world.leafCount);
}

template <typename Record>
bool ReadTable(Record* table, uint32_t count) {
    return ReadBlock(table, count * static_cast<uint32_t>(sizeof(Record)));
}

bool ReadTables() {
    const WorldGeometryTables& world = WorldGeometry;
    return ReadTable(world.nodes, world.nodeCount) && ReadTable(world.leaves, world.leafCount) &&
           ReadTable(world.planes, world.file.planes) && ReadTable(world.polygons, world.file.polygons) &&
           ReadTable(world.points, world.file.points) && ReadTable(world.polyVertices, world.file.polyVertices);
}

// Sky and character records leave their unused bytes alone, and light maps may bring fewer bytes than there are
// points: neither may depend on what the pool held before.
void ClearUnreadParts() {
    std::memset(WorldGeometry.polygons + WorldGeometry.file.polygons, 0, SPARE_POLYGONS * sizeof(PolyRecord));
    std::memset(WorldGeometry.pointLight, 0, PointCapacity());
    std::memset(WorldGeometry.pointLightBase, 0, PointCapacity());
    FillStamps(0);
}

PolyFrame FrameOfNormal(double x, double y, double z) {
    const double h = std::sqrt(x * x + z * z);
    const double l = std::sqrt(y * y + h * h);
    const bool hasYaw = h >= VERTICAL_NORMAL;
    PolyFrame frame;
    frame.pitchCos = l > 0.0 ? static_cast<float>(-h / l) : 0.0f;
    frame.yawSin = hasYaw ? static_cast<float>(x / h) : 0.0f;
    frame.pitchSin = l > 0.0 ? static_cast<float>(y / l) : 0.0f;
    frame.yawCos = hasYaw ? static_cast<float>(z / h) : 1.0f;
    frame.y = static_cast<float>(y);
    return frame;
}

// Kept as it is: radii reach from the centre of the file's box to the farthest corner, not to the box.
double FarthestCornerSquared(const BspLeaf& leaf, Vec3 centre, double farthest) {
    for (uint32_t p = leaf.firstPolygon; p < uint32_t{leaf.firstPolygon} + leaf.polygonCount; ++p) {
        const PolyRecord& polygon = WorldGeometry.polygons[p];
        const PolyVertex* corner = WorldGeometry.polyVertices + polygon.firstVertex;
        for (const PolyVertex* end = corner + polygon.cornerCount; corner != end; ++corner) {
            const Vec3 position = WorldGeometry.points[corner->point].position;
            const double x = double{position.x} - double{centre.x};
            const double y = double{position.y} - double{centre.y};
            const double z = double{position.z} - double{centre.z};
            farthest = std::max(farthest, x * x + y * y + z * z);
        }
    }
    return farthest;
}

double FarthestCornerSquared(int16_t subtree, Vec3 centre, double farthest) {
    if (subtree < 0) return FarthestCornerSquared(WorldGeometry.leaves[~subtree], centre, farthest);
    const BspNode& node = WorldGeometry.nodes[subtree];
    farthest = FarthestCornerSquared(node.frontChild, centre, farthest);
    return FarthestCornerSquared(node.backChild, centre, farthest);
}

template <typename NodeOrLeaf>
void StoreRadii(NodeOrLeaf& record, double radiusSquared) {
    const double radius = std::sqrt(radiusSquared);
    record.radius = static_cast<float>(radius);
    record.radiusRoot2 = static_cast<float>(radius * ROOT_2);
    record.radiusAspect = static_cast<float>(radius * double{ScreenAspect} * ROOT_2);
}

CornerBox Join(const CornerBox& a, const CornerBox& b) {
    return {{std::min(a.low.x, b.low.x), std::min(a.low.y, b.low.y), std::min(a.low.z, b.low.z)},
            {std::max(a.high.x, b.high.x), std::max(a.high.y, b.high.y), std::max(a.high.z, b.high.z)}};
}

CornerBox BoxAroundCorners(const BspLeaf& leaf) {
    constexpr float FAR = std::numeric_limits<float>::max();
    CornerBox box = {{FAR, FAR, FAR}, {-FAR, -FAR, -FAR}};
    for (uint32_t p = leaf.firstPolygon; p < uint32_t{leaf.firstPolygon} + leaf.polygonCount; ++p) {
        const PolyRecord& polygon = WorldGeometry.polygons[p];
        for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
            const Vec3 corner =
                WorldGeometry.points[WorldGeometry.polyVertices[polygon.firstVertex + k].point].position;
            box = Join(box, {corner, corner});
        }
    }
    return box;
}

CornerBox GenerateRadiiBelow(int16_t subtree) {
    if (subtree < 0) {
        BspLeaf& leaf = WorldGeometry.leaves[~subtree];
        StoreRadii(leaf, FarthestCornerSquared(leaf, leaf.centre, 0.0));
        return BoxAroundCorners(leaf);
    }
    BspNode& node = WorldGeometry.nodes[subtree];
    StoreRadii(node, FarthestCornerSquared(subtree, node.centre, 0.0));
    return CornerBoxes[subtree] = Join(GenerateRadiiBelow(node.frontChild), GenerateRadiiBelow(node.backChild));
}

}  // namespace

void LoadBspWorld(const char* path) {
    ReadStream = OpenGameFile(path, "rb");
    // Kept as it is: a missing world ends the program with exit status 0.
    if (!ReadStream) FatalError(0, "No .BSP file found", path);
    ReadHeader(path);
    if (!AllocateTables()) RefuseWorld("Not enough memory for the BSP file", path);
    if (!ReadTables() || !BspTablesAreValid()) RefuseWorld("Not a valid BSP file", path);
    CloseReadStream();

    WorldGeometry.used = WorldGeometry.file;
    FrameCount = 1;
    ClearUnreadParts();
    ComputePolyFrames();
}

void ComputePolyFrames() {
    for (uint32_t i = 0; i < WorldGeometry.file.polygons; ++i) {
        const PlaneRecord& plane = WorldGeometry.planes[WorldGeometry.polygons[i].plane];
        WorldGeometry.polyFrames[i] = FrameOfNormal(-double{plane.nx}, -double{plane.ny}, -double{plane.nz});
    }
}

void GenerateNodeRadii() {
    GenerateRadiiBelow(0);
    GeneratePolygonLanes();
}

void SetStaticMarks() {
    WorldGeometry.fixed = WorldGeometry.used;
}

void ResetViewCache() {
    for (uint32_t i = 0; i < WorldGeometry.used.points; ++i) {
        WorldGeometry.viewPoints[i].transformStamp = 0;
        WorldGeometry.viewPoints[i].projectionStamp = 0;
    }
}

void FillStamps(uint16_t value) {
    for (uint32_t i = 0; i < WorldGeometry.leafCount; ++i)
        WorldGeometry.leaves[i].frameStamp = value;
    for (uint32_t i = 0; i < PointCapacity(); ++i) {
        WorldGeometry.viewPoints[i].transformStamp = value;
        WorldGeometry.viewPoints[i].projectionStamp = value;
    }
    std::fill_n(WorldGeometry.pointLightStamps, PointCapacity(), value);
    std::fill_n(WorldGeometry.characterStamps, PointCapacity(), value);
    std::fill_n(WorldGeometry.cornerLightStamps, CornerLightStampCount(), value);
    std::fill_n(IntensityCacheStamps, INTENSITY_CACHE_SIZE, value);
}
