#include "character/leaf_bins.h"

#include "platform/timer.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

uint32_t DroppedPolygons;

namespace {

constexpr float START_DISTANCE = 100.0f;  // planes farther than this from the actor do not cut it
constexpr float PLANE_THICKNESS = 1.0f;   // corners this near count as on the plane
constexpr uint32_t SCRATCH_GAP = 100;     // entries between the used counts and this one's scratch, left to the clipper
constexpr uint32_t PIECE_CORNERS = 12;    // the most corners that the pipeline takes in an unclipped polygon

enum class Side : uint8_t { On, Front, Back };

struct Corner {
    Side side;
    float distance;
};

// The visible list; the sub-lists of the recursion lie behind it.
uint16_t Visible[BIN_MAX];
uint32_t VisibleUsed;
uint16_t BinPool[BIN_MAX];
uint32_t BinPoolUsed;
uint32_t NextPolygon, NextPoint, NextVertex;

void RestartScratch() {
    BinPoolUsed = 0;
    NextPolygon = WorldGeometry.used.polygons + SCRATCH_GAP + 1;
    NextPoint = WorldGeometry.used.points + SCRATCH_GAP;
    NextVertex = WorldGeometry.used.polyVertices + SCRATCH_GAP;
}

float PlaneDistance(const PlaneRecord& plane, float x, float y, float z) {
    return plane.nx * x + plane.ny * y + plane.nz * z + plane.d;
}

// On which sides of the plane the polygon has corners; on both: it must be split.
struct Classification {
    bool anyFront, anyBack;
};

Classification Classify(const PolyRecord& polygon, const PlaneRecord& plane, Corner* corners) {
    Classification result{};
    for (uint32_t i = 0; i < polygon.cornerCount; ++i) {
        const ViewPoint& p = WorldGeometry.viewPoints[WorldGeometry.polyVertices[polygon.firstVertex + i].point];
        const float distance = PlaneDistance(plane, p.x, p.y, p.z);
        corners[i] = {distance < -PLANE_THICKNESS  ? Side::Back
                      : distance > PLANE_THICKNESS ? Side::Front
                                                   : Side::On,
                      distance};
        result.anyFront |= corners[i].side == Side::Front;
        result.anyBack |= corners[i].side == Side::Back;
    }
    return result;
}

// Makes a new point where the edge i -> j crosses the plane, and returns a corner on it.
PolyVertex SplitEdge(const PolyVertex& vi, const PolyVertex& vj, float di, float dj) {
    const float t = di / (di - dj);
    const uint32_t point = NextPoint++;
    const ViewPoint& pi = WorldGeometry.viewPoints[vi.point];
    const ViewPoint& pj = WorldGeometry.viewPoints[vj.point];
    ViewPoint& view = WorldGeometry.viewPoints[point];
    view.x = pi.x + (pj.x - pi.x) * t;
    view.y = pi.y + (pj.y - pi.y) * t;
    view.z = pi.z + (pj.z - pi.z) * t;
    const Vec3& ni = WorldGeometry.points[vi.point].normal;
    const Vec3& nj = WorldGeometry.points[vj.point].normal;
    WorldGeometry.points[point].normal = {ni.x + (nj.x - ni.x) * t, ni.y + (nj.y - ni.y) * t, ni.z + (nj.z - ni.z) * t};
    return {point, vi.u + (vj.u - vi.u) * t, vi.v + (vj.v - vi.v) * t,
            vi.intensity + (vj.intensity - vi.intensity) * t};
}

bool Crosses(const Corner& from, const Corner& to) {
    return from.side != Side::On && to.side != Side::On && from.side != to.side;
}

// Whether the piece on the kept side fits the scratch tables and has few enough corners for the pipeline.
bool PieceFits(const PolyRecord& source, Side kept, const Corner* corners) {
    uint32_t cornerCount = 0, crossings = 0;
    for (uint32_t i = 0; i < source.cornerCount; ++i) {
        cornerCount += corners[i].side == Side::On || corners[i].side == kept;
        crossings += Crosses(corners[i], corners[i + 1 == source.cornerCount ? 0 : i + 1]);
    }
    cornerCount += crossings;
    return cornerCount <= PIECE_CORNERS && NextPolygon < WorldGeometry.file.polygons + SPARE_POLYGONS &&
           NextPoint + crossings <= WorldGeometry.file.points + SPARE_POINTS &&
           NextVertex + cornerCount <= WorldGeometry.file.polyVertices + SPARE_POLY_VERTICES;
}

// Makes the part of the polygon on the kept side a new scratch polygon. False: it does not fit, and was dropped.
bool SplitPolygon(uint32_t polygon, Side kept, const Corner* corners, uint32_t& piece) {
    const PolyRecord source = WorldGeometry.polygons[polygon];
    if (!PieceFits(source, kept, corners)) {
        DroppedPolygons += 1;
        return false;
    }
    piece = NextPolygon++;
    const uint32_t first = NextVertex;
    for (uint32_t i = 0; i < source.cornerCount; ++i) {
        const uint32_t j = i + 1 == source.cornerCount ? 0 : i + 1;
        const PolyVertex vi = WorldGeometry.polyVertices[source.firstVertex + i];
        const PolyVertex vj = WorldGeometry.polyVertices[source.firstVertex + j];
        if (corners[i].side == Side::On || corners[i].side == kept) WorldGeometry.polyVertices[NextVertex++] = vi;
        if (Crosses(corners[i], corners[j])) {
            WorldGeometry.polyVertices[NextVertex++] = SplitEdge(vi, vj, corners[i].distance, corners[j].distance);
        }
    }
    PolyRecord& record = WorldGeometry.polygons[piece];
    record = source;
    record.cornerCount = static_cast<uint8_t>(NextVertex - first);
    record.firstVertex = static_cast<uint16_t>(first);
    return true;
}

void BinIntoLeaf(uint32_t leaf, std::span<const uint16_t> list) {
    const auto room = static_cast<size_t>(BIN_MAX - BinPoolUsed);
    const size_t count = std::min(list.size(), room);
    DroppedPolygons += static_cast<uint32_t>(list.size() - count);
    WorldGeometry.leaves[leaf].frameStamp = FrameCount;
    LeafBins[leaf] = {BinPool + BinPoolUsed, static_cast<int32_t>(count)};
    std::copy_n(list.begin(), count, BinPool + BinPoolUsed);
    BinPoolUsed += static_cast<uint32_t>(count);
}

// The bounding box of all points of the visible list, and therefore of its pieces.
struct Box {
    Vec3 least, greatest;
};
Box box;

Box BoxAround(std::span<const uint16_t> list) {
    constexpr float FAR = std::numeric_limits<float>::max();
    Box around = {{FAR, FAR, FAR}, {-FAR, -FAR, -FAR}};
    for (const uint16_t number : list) {
        const PolyRecord& polygon = WorldGeometry.polygons[number];
        for (uint32_t i = 0; i < polygon.cornerCount; ++i) {
            const ViewPoint& p = WorldGeometry.viewPoints[WorldGeometry.polyVertices[polygon.firstVertex + i].point];
            around.least = {std::min(around.least.x, p.x), std::min(around.least.y, p.y),
                            std::min(around.least.z, p.z)};
            around.greatest = {std::max(around.greatest.x, p.x), std::max(around.greatest.y, p.y),
                               std::max(around.greatest.z, p.z)};
        }
    }
    return around;
}

// The side on which Classify finds every polygon inside the box, with a margin for rounding. On: not known.
Side SideOfBox(const PlaneRecord& plane) {
    const Vec3 normal = {plane.nx, plane.ny, plane.nz};
    float nearest = plane.d, farthest = plane.d, size = std::fabs(plane.d);
    for (float Vec3::*axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
        const float a = normal.*axis * box.least.*axis;
        const float b = normal.*axis * box.greatest.*axis;
        nearest += std::min(a, b);
        farthest += std::max(a, b);
        size += std::max(std::fabs(a), std::fabs(b));
    }
    const float rounding = 1e-5f * size;
    if (nearest - rounding > -PLANE_THICKNESS) return Side::Front;
    if (farthest + rounding < -PLANE_THICKNESS) return Side::Back;
    return Side::On;
}

struct SubLists {
    std::span<uint16_t> front, back;
};

// Splits the list at the plane. Both sub-lists lie directly behind `list`, the front one first.
SubLists Divide(std::span<const uint16_t> list, const PlaneRecord& plane, uint16_t* free, const uint16_t* limit) {
    const auto room = static_cast<size_t>(limit - free) / 2;
    if (list.size() > room) {
        DroppedPolygons += static_cast<uint32_t>(list.size() - room);
        list = list.first(room);
    }
    const Side side = SideOfBox(plane);
    if (side != Side::On) {
        uint16_t* const end = std::copy(list.begin(), list.end(), free);
        return side == Side::Front ? SubLists{{free, end}, {end, end}} : SubLists{{free, free}, {free, end}};
    }
    uint16_t* const back = free + list.size();
    size_t frontCount = 0;
    size_t backCount = 0;
    for (const uint16_t polygon : list) {
        Corner corners[PIECE_CORNERS + 1];
        const auto [anyFront, anyBack] = Classify(WorldGeometry.polygons[polygon], plane, corners);
        uint32_t piece;
        if (!anyBack) {
            free[frontCount++] = polygon;
        } else if (!anyFront) {
            back[backCount++] = polygon;
        } else {
            if (SplitPolygon(polygon, Side::Front, corners, piece)) free[frontCount++] = static_cast<uint16_t>(piece);
            if (SplitPolygon(polygon, Side::Back, corners, piece)) back[backCount++] = static_cast<uint16_t>(piece);
        }
    }
    std::copy_n(back, backCount, free + frontCount);
    return {{free, frontCount}, {free + frontCount, backCount}};
}

void BinPolygons(int32_t index, std::span<const uint16_t> list, uint16_t* free) {
    if (index < 0) {
        BinIntoLeaf(static_cast<uint32_t>(~index), list);
        return;
    }
    const BspNode& node = WorldGeometry.nodes[index];
    const SubLists lists = Divide(list, WorldGeometry.planes[node.plane], free, Visible + BIN_MAX);
    uint16_t* const behind = lists.back.data() + lists.back.size();
    if (!lists.back.empty()) BinPolygons(node.backChild, lists.back, behind);
    if (!lists.front.empty()) BinPolygons(node.frontChild, lists.front, behind);
}

int32_t StartNode(float x, float y, float z) {
    int32_t index = 0;
    while (index >= 0) {
        const BspNode& node = WorldGeometry.nodes[index];
        const float distance = PlaneDistance(WorldGeometry.planes[node.plane], x, y, z);
        if (distance > START_DISTANCE) {
            index = node.frontChild;
        } else if (distance < -START_DISTANCE) {
            index = node.backChild;
        } else {
            break;
        }
    }
    return index;
}

}  // namespace

void ClearVisibleList() {
    VisibleUsed = 0;
    DroppedPolygons = 0;
}

void AppendVisible(uint32_t polygon) {
    if (VisibleUsed < BIN_MAX) {
        Visible[VisibleUsed++] = static_cast<uint16_t>(polygon);
    } else {
        DroppedPolygons += 1;
    }
}

uint32_t VisibleCount() {
    return VisibleUsed;
}

void BinActorPolygons(uint32_t count, float x, float y, float z) {
    if (count == 0) return;
    RestartScratch();
    box = BoxAround({Visible, count});
    BinPolygons(StartNode(x, y, z), {Visible, count}, Visible + count);
}
