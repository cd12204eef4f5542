#include "world/collision.h"

#include "app/app_tables.h"
#include "math/convert.h"
#include "math/world_planes.h"
#include "memory/fatal.h"
#include "platform/timer.h"
#include "records/character_records.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>

int32_t ContactList[CONTACTS_MAX + 1];
int16_t ContactCount;

namespace {

constexpr float SKIP_LENGTH = 1.0f;  // velocities shorter than this are ignored
constexpr float STOP_LENGTH = 0.5f;  // a rest of the move this short ends it

float LengthL1(const Vec3& v) {
    return std::fabs(v.x) + std::fabs(v.y) + std::fabs(v.z);
}
Vec3 Normal(const PlaneRecord& plane) {
    return {plane.nx, plane.ny, plane.nz};
}
float Distance(const PlaneRecord& plane, const Vec3& p) {
    return plane.nx * p.x + plane.ny * p.y + plane.nz * p.z + plane.d;
}

// Whether q lies inside the polygon's outline grown outward by r. Kept as it is: an edge too short to have a normal
// holds nothing out.
bool InsideGrownOutline(const PolyRecord& polygon, const IntVec3& q, int32_t r) {
    const Vec3 n = Normal(WorldGeometry.planes[polygon.plane]);
    const Vec3 point = ToFloat(q);
    for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
        const Vec3& from = CornerPosition(polygon, k);
        const Vec3 e = CornerPosition(polygon, k + 1u == polygon.cornerCount ? 0 : k + 1) - from;
        const Vec3 m = Cross(e, n);
        const float length = std::sqrt(Dot(m, m));
        const Vec3 outward = {m.x / length, m.y / length, m.z / length};
        if (!std::isfinite(outward.x) || !std::isfinite(outward.y) || !std::isfinite(outward.z)) continue;
        if (Dot(point - from, outward) > static_cast<float>(r)) return false;
    }
    return true;
}

struct SphereQuery {
    Vec3 centre;
    int32_t radius;
    float radiusSquared;
};

void AppendContact(int32_t polygon) {
    ContactList[ContactCount++] = polygon;
    if (ContactCount > CONTACTS_MAX) FatalError(1, "Opps too many faces.\n", LevelTable[LoadedLevel].worldFile);
}

void GatherLeaf(const BspLeaf& leaf, const SphereQuery& query) {
    const Vec3 centre = leaf.centre;
    const Vec3 d = centre - query.centre;
    if (Dot(d, d) > leaf.radiusRoot2 * leaf.radiusRoot2) return;
    for (int32_t i = leaf.firstPolygon; i < leaf.firstPolygon + leaf.polygonCount; ++i) {
        const PolyRecord polygon = WorldGeometry.polygons[i];
        const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
        const float s = Distance(plane, query.centre);
        if (std::fabs(s) > static_cast<float>(query.radius)) continue;
        const IntVec3 q = Truncate(query.centre + Vec3{s * plane.nx, s * plane.ny, s * plane.nz});
        if (InsideGrownOutline(polygon, q, query.radius)) AppendContact(i);
    }
}

void GatherNode(int32_t index, const SphereQuery& query) {
    if (index < 0) {
        GatherLeaf(WorldGeometry.leaves[~index], query);
        return;
    }
    const BspNode& node = WorldGeometry.nodes[index];
    const Vec3 centre = node.centre;
    const Vec3 d = centre - query.centre;
    if (Dot(d, d) > query.radiusSquared + node.radiusRoot2 * node.radiusRoot2 / 2.0f) return;
    const bool behind = NodeSideOfPoint(index) < 0;
    GatherNode(behind ? node.backChild : node.frontChild, query);
    GatherNode(behind ? node.frontChild : node.backChild, query);
}

// The first contact in list order that a move from start to end crosses, or -1. Kept as it is: the move stops at its
// start, not where it crosses, and the slide carries the rest.
int32_t SweepContacts(const Vec3& start, const Vec3& end, int32_t radius) {
    const auto r = static_cast<float>(radius);
    for (const int32_t* contact = ContactList; *contact != -1; ++contact) {
        const PolyRecord polygon = WorldGeometry.polygons[*contact];
        const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
        const float startDistance = Distance(plane, start);
        const float endDistance = Distance(plane, end);
        if (startDistance > r && endDistance > r) continue;
        if (-startDistance > r && -endDistance > r) continue;
        // Kept as it is: what moves more slowly than LEAST_MOVE passes.
        if (endDistance < startDistance || std::fabs(endDistance - startDistance) < LEAST_MOVE) continue;
        const Vec3 projected =
            ToFloat(Truncate(end)) - Vec3{endDistance * plane.nx, endDistance * plane.ny, endDistance * plane.nz};
        if (InsideGrownOutline(polygon, Truncate(projected), radius)) return *contact;
    }
    return -1;
}

// A vector in the frame of a polygon: two components along its plane and one along its normal.
struct FrameVector {
    float across, upward, normal;
};

FrameVector ToFrame(const PolyFrame& f, const Vec3& v) {
    const float a = f.yawSin * v.x + f.yawCos * v.z;
    return {f.yawCos * v.x - f.yawSin * v.z, a * f.pitchSin + f.pitchCos * v.y, -a * f.pitchCos + f.pitchSin * v.y};
}

Vec3 FromFrame(const PolyFrame& f, const FrameVector& v) {
    const float horizontal = -f.pitchCos * v.normal + v.upward * f.pitchSin;
    return {horizontal * f.yawSin + v.across * f.yawCos, v.upward * f.pitchCos + v.normal * f.pitchSin,
            horizontal * f.yawCos - f.yawSin * v.across};
}

Vec3 Slide(const PolyFrame& f, const Vec3& v, bool keepNormal) {
    FrameVector local = ToFrame(f, v);
    if (!keepNormal) local.normal = 0.0f;
    return FromFrame(f, local);
}

float HighestCorner(const PolyRecord& polygon) {
    float top = CornerPosition(polygon, 0).y;
    for (uint32_t k = 1; k < polygon.cornerCount; ++k)
        top = std::max(top, CornerPosition(polygon, k).y);
    return top;
}

void GatherCandidates(const Vec3& start, const Vec3& v) {
    const Vec3 half = {v.x / 2.0f, v.y / 2.0f, v.z / 2.0f};
    const IntVec3 centre = Truncate(start + half);
    const float reach = std::sqrt(Dot(v, v)) / 2.0f + GATHER_MARGIN;
    WorldSphereContacts(centre.x, centre.y, centre.z, TruncToInt(static_cast<double>(reach)));
}

}  // namespace

int16_t WorldSphereContacts(int32_t x, int32_t y, int32_t z, int32_t radius) {
    ContactCount = 0;
    SideTestPoint = {x, y, z};
    const auto unsignedRadius = static_cast<uint32_t>(radius);
    const auto squared = static_cast<int32_t>(unsignedRadius * unsignedRadius);  // kept as it is: wraps
    GatherNode(0, {ToFloat(SideTestPoint), radius, static_cast<float>(squared)});
    ContactList[ContactCount] = -1;
    return ContactCount;
}

void MoveAgainstWorld(Actor& actor) {
    const StateRecord& state = actor.states[actor.state];
    Vec3 v = actor.velocity;
    if (LengthL1(v) < SKIP_LENGTH) return;
    Vec3 start = {actor.position.x, actor.position.y - SPHERE_LOWERING, actor.position.z};
    Vec3 end = start + v;
    GatherCandidates(start, v);

    actor.onContact = 0;
    actor.ticksSinceContact += static_cast<int32_t>(FrameTicks);
    actor.contactSlope = 0.0f;
    Vec3 kept = v;  // the velocity the actor will keep
    Vec3 result = end;
    float stepUp = 0.0f;  // height of an accepted step; it holds for the rest of the move
    // Kept as it is: the height of the last ledge looked at, accepted or not, is what the lift adds.
    float ledgeHeight = 0.0f;
    int32_t lastHit = -1;
    for (int pass = 0; pass < MOVE_PASSES_MAX; ++pass) {
        result = end;
        const int32_t hit = SweepContacts(start, end, MOVE_SPHERE_RADIUS);
        if (hit == -1) break;
        // Kept as it is: the first contact is slid along, the last one gives the slope.
        lastHit = hit;
        const PolyFrame& frame = WorldGeometry.polyFrames[hit];
        // Kept as it is: walls and ceilings count as ground, too.
        actor.onContact = 1;
        actor.ticksSinceContact = 0;
        actor.contactSlope = std::fabs(frame.y);
        if (actor.contactSlope < STEEP_SLOPE && (state.flags & STATE_CAN_STEP)) {
            ledgeHeight = HighestCorner(WorldGeometry.polygons[hit]) - (start.y - MOVE_SPHERE_RADIUS) + LEDGE_CLEARANCE;
            if (ledgeHeight < LEDGE_MAX) stepUp = ledgeHeight;
        }
        result = start;  // the move stops at its start
        v = Slide(frame, v, false);
        kept = Slide(frame, kept, stepUp != 0.0f);
        if (stepUp != 0.0f) v.y += ledgeHeight;
        end = start + v;
        if (LengthL1(v) <= STOP_LENGTH) break;
    }
    if (actor.onContact) {
        const PolyFrame& frame = WorldGeometry.polyFrames[lastHit];
        const FrameVector local = ToFrame(frame, kept);
        kept = FromFrame(frame, {local.across * state.slideFactor, local.upward * state.slideFactor, 0.0f});
    }
    actor.velocity = kept;
    actor.position = {result.x, result.y + SPHERE_LOWERING, result.z};
}
