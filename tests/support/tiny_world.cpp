#include "support/tiny_world.h"

#include "math/world_planes.h"

#include <algorithm>

namespace {

Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct Box {
    Vec3 lowest, highest;
};

void Include(Box& box, const Vec3& p) {
    box.lowest = {std::min(box.lowest.x, p.x), std::min(box.lowest.y, p.y), std::min(box.lowest.z, p.z)};
    box.highest = {std::max(box.highest.x, p.x), std::max(box.highest.y, p.y), std::max(box.highest.z, p.z)};
}

template <class Record>
void StoreBox(Record& record, const Box& box) {
    const Vec3 &a = box.lowest, &b = box.highest;
    record.centre = {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
    record.halfExtents = {(b.x - a.x) / 2, (b.y - a.y) / 2, (b.z - a.z) / 2};
}

template <class Record>
Box BoxOf(const Record& record) {
    const Vec3 c = record.centre, h = record.halfExtents;
    return {{c.x - h.x, c.y - h.y, c.z - h.z}, {c.x + h.x, c.y + h.y, c.z + h.z}};
}

// The corners of that side of the box that a viewer sees who stands at `towardsViewer` from it.
Corners RoomSide(const Vec3& a, const Vec3& b, const Vec3& towardsViewer) {
    const Vec3 middle = {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
    const Vec3 half = {(b.x - a.x) / 2, (b.y - a.y) / 2, (b.z - a.z) / 2};
    Corners corners = FacingSquare({0, 0, 0}, towardsViewer, 1.0f);
    for (Vec3& corner : corners) {
        corner.x = middle.x + half.x * (corner.x - towardsViewer.x);
        corner.y = middle.y + half.y * (corner.y - towardsViewer.y);
        corner.z = middle.z + half.z * (corner.z - towardsViewer.z);
    }
    return corners;
}

template <class Record>
void AppendRecords(std::vector<uint8_t>& bytes, const Record* records, uint32_t count) {
    const auto* first = reinterpret_cast<const uint8_t*>(records);
    bytes.insert(bytes.end(), first, first + count * sizeof(Record));
}

}  // namespace

std::vector<uint8_t> WorldFileBytes() {
    const WorldGeometryTables& world = WorldGeometry;
    std::vector<uint8_t> bytes = {'G', 'b', 's', 'p'};
    for (const uint32_t value : {10u, world.nodeCount, world.leafCount, world.file.planes, world.file.polygons,
                                 world.file.points, world.file.polyVertices}) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<uint8_t>(value >> shift));
    }
    AppendRecords(bytes, world.nodes, world.nodeCount);
    AppendRecords(bytes, world.leaves, world.leafCount);
    AppendRecords(bytes, world.planes, world.file.planes);
    AppendRecords(bytes, world.polygons, world.file.polygons);
    AppendRecords(bytes, world.points, world.file.points);
    AppendRecords(bytes, world.polyVertices, world.file.polyVertices);
    return bytes;
}

Corners FacingSquare(const Vec3& centre, const Vec3& towardsViewer, float halfSize) {
    const Vec3 reference = towardsViewer.y != 0.0f ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
    const Vec3 u = Cross(reference, towardsViewer);
    const Vec3 w = Cross(u, towardsViewer);  // u x w points away from the viewer, as the plane's normal does
    Corners corners;
    for (const auto& [s, t] : {std::pair{-1, -1}, std::pair{1, -1}, std::pair{1, 1}, std::pair{-1, 1}}) {
        const float a = halfSize * static_cast<float>(s), b = halfSize * static_cast<float>(t);
        corners.push_back({centre.x + a * u.x + b * w.x, centre.y + a * u.y + b * w.y, centre.z + a * u.z + b * w.z});
    }
    return corners;
}

std::vector<Corners> RoomSides(const Vec3& lowest, const Vec3& highest) {
    std::vector<Corners> sides;
    for (const Vec3& axis :
         {Vec3{1, 0, 0}, Vec3{-1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, -1, 0}, Vec3{0, 0, 1}, Vec3{0, 0, -1}})
        sides.push_back(RoomSide(lowest, highest, axis));
    return sides;
}

int32_t AppendPolygon(const std::vector<ViewCorner>& corners, uint8_t texture) {
    const WorldGeometryTables& world = WorldGeometry;
    GeometryCounts& used = WorldGeometry.used;
    world.polygons[used.polygons] = {static_cast<uint8_t>(corners.size()),     texture, SHADE_POINT_LIGHT, 0, 0,
                                     static_cast<uint16_t>(used.polyVertices), 0};
    for (const ViewCorner& c : corners) {
        world.polyVertices[used.polyVertices++] = {used.points, c.u, c.v, c.intensity};
        ViewPoint& point = world.viewPoints[used.points];
        point = {};
        point.x = c.x;
        point.y = c.y;
        point.z = c.z;
        world.points[used.points] = {{c.x, c.y, c.z}, {}};
        world.outcodes[used.points++] = static_cast<uint8_t>((c.x > c.z ? OUT_RIGHT : 0) | (c.x < -c.z ? OUT_LEFT : 0) |
                                                             (c.y > c.z ? OUT_TOP : 0) | (c.y < -c.z ? OUT_BOTTOM : 0));
    }
    return static_cast<int32_t>(used.polygons++);
}

TinyWorld::~TinyWorld() {
    WorldGeometry = {};
}

uint32_t TinyWorld::PointAt(const Vec3& position) {
    const auto found = std::find_if(points.begin(), points.end(), [&](const WorldPoint& point) {
        return point.position.x == position.x && point.position.y == position.y && point.position.z == position.z;
    });
    if (found != points.end()) return static_cast<uint32_t>(found - points.begin());
    points.push_back({position, {}});
    return static_cast<uint32_t>(points.size() - 1);
}

void TinyWorld::AddPolygon(const Corners& corners) {
    const auto first = static_cast<uint16_t>(polyVertices.size());
    for (const Vec3& corner : corners)
        polyVertices.push_back({PointAt(corner), 0.0f, 0.0f, 0.0f});
    polygons.push_back({static_cast<uint8_t>(corners.size()), 0, SHADE_POINT_LIGHT, 0, 0, first,
                        static_cast<uint16_t>(planes.size())});
    planes.push_back({});
}

int16_t TinyWorld::AddLeaf(const std::vector<Corners>& leafPolygons) {
    BspLeaf leaf = {};
    leaf.polygonCount = static_cast<uint16_t>(leafPolygons.size());
    leaf.firstPolygon = static_cast<uint16_t>(polygons.size());
    if (!leafPolygons.empty()) {
        Box box = {leafPolygons[0][0], leafPolygons[0][0]};
        for (const Corners& corners : leafPolygons) {
            AddPolygon(corners);
            for (const Vec3& corner : corners)
                Include(box, corner);
        }
        StoreBox(leaf, box);
    }
    leaves.push_back(leaf);
    return static_cast<int16_t>(~(leaves.size() - 1));
}

int16_t TinyWorld::AddNode(const PlaneRecord& plane, int16_t frontChild, int16_t backChild) {
    const auto box = [this](int16_t child) {
        return child < 0 ? BoxOf(leaves[static_cast<size_t>(~child)]) : BoxOf(nodes[static_cast<size_t>(child)]);
    };
    Box both = box(frontChild);
    Include(both, box(backChild).lowest);
    Include(both, box(backChild).highest);
    BspNode node = {};
    node.frontChild = frontChild;
    node.backChild = backChild;
    node.plane = static_cast<uint16_t>(planes.size());
    StoreBox(node, both);
    nodes.push_back(node);
    planes.push_back(plane);
    return static_cast<int16_t>(nodes.size() - 1);
}

void TinyWorld::PutRootFirst() {
    const auto moved = [last = static_cast<int16_t>(nodes.size() - 1)](int16_t child) {
        return child < 0 ? child : static_cast<int16_t>(last - child);
    };
    std::reverse(nodes.begin(), nodes.end());
    for (BspNode& node : nodes) {
        node.frontChild = moved(node.frontChild);
        node.backChild = moved(node.backChild);
    }
}

void TinyWorld::MakeTables() {
    WorldGeometryTables& world = WorldGeometry;
    const auto make = [](auto& records, auto*& table, size_t size) {
        records.resize(size);
        table = records.data();
    };
    make(nodes, world.nodes, nodes.size());
    make(leaves, world.leaves, leaves.size());
    make(planes, world.planes, planes.size() + SPARE_PLANES);
    make(polygons, world.polygons, polygons.size() + SPARE_POLYGONS);
    make(polyFrames, world.polyFrames, polygons.size());
    make(points, world.points, points.size() + SPARE_POINTS);
    make(polyVertices, world.polyVertices, polyVertices.size() + SPARE_POLY_VERTICES);
    alternateVertices = polyVertices;
    world.alternateVertices = alternateVertices.data();
    make(viewPoints, world.viewPoints, points.size());
    make(outcodes, world.outcodes, points.size());
    make(pointLight, world.pointLight, points.size());
    make(pointLightBase, world.pointLightBase, points.size());
    make(pointLightStamps, world.pointLightStamps, points.size());
    make(characterStamps, world.characterStamps, points.size());
    make(cornerLightStamps, world.cornerLightStamps, 8 * std::max<size_t>(polygons.size(), CORNER_LIGHT_POLYGONS));
    make(renderList, world.renderList, 2 * leaves.size());
}

void TinyWorld::Publish() {
    if (nodes.empty()) AddNode({0, 1, 0, 1e9f}, static_cast<int16_t>(~0), AddLeaf({}));
    PutRootFirst();
    const auto count = [](const auto& table) { return static_cast<uint32_t>(table.size()); };
    const GeometryCounts counts = {count(planes), count(polygons), count(points), count(polyVertices)};
    MakeTables();
    WorldGeometry.nodeCount = count(nodes);
    WorldGeometry.leafCount = count(leaves);
    WorldGeometry.file = WorldGeometry.used = WorldGeometry.fixed = counts;
    for (uint32_t i = 0; i < counts.polygons; ++i)
        ComputePolyPlane(static_cast<int32_t>(i));
}
