#include "mapc/plane_table.h"

namespace {

constexpr double NORMAL_TOLERANCE = 1e-5;
constexpr double DISTANCE_TOLERANCE = 0.02;
constexpr double SNAP = 1e-4;  // distances this near to a whole number are that number
constexpr double BUCKET_SIZE = 8;

int64_t BucketOf(double dist) {
    return static_cast<int64_t>(std::floor(dist / BUCKET_SIZE));
}

Plane Snapped(Plane plane) {
    for (int axis = 0; axis < 3; ++axis) {
        if (std::abs(plane.normal[axis]) < 1 - NORMAL_TOLERANCE * NORMAL_TOLERANCE) continue;
        const double direction = plane.normal[axis] > 0 ? 1 : -1;
        plane.normal = {};
        plane.normal[axis] = direction;
    }
    const double whole = std::floor(plane.dist + 0.5);
    if (std::abs(plane.dist - whole) < SNAP) plane.dist = whole;
    return plane;
}

// Decided by the first component that is not tiny, so that a plane and its reverse agree on which comes first.
bool PointsForward(const Vec3& normal) {
    for (int axis = 0; axis < 3; ++axis) {
        if (std::abs(normal[axis]) > NORMAL_TOLERANCE) return normal[axis] > 0;
    }
    return true;
}

}  // namespace

int PlaneTable::Search(const Plane& plane, int64_t bucket) const {
    const auto found = buckets_.find(bucket);
    if (found == buckets_.end()) return -1;
    for (const int id : found->second) {
        const Plane& known = planes_[static_cast<size_t>(id)];
        const Vec3 difference = known.normal - plane.normal;
        if (std::abs(difference.x) < NORMAL_TOLERANCE && std::abs(difference.y) < NORMAL_TOLERANCE &&
            std::abs(difference.z) < NORMAL_TOLERANCE && std::abs(known.dist - plane.dist) < DISTANCE_TOLERANCE) {
            return id;
        }
    }
    return -1;
}

int PlaneTable::Find(const Vec3& normal, double dist) {
    Plane plane = Snapped({normal, dist});
    const bool forward = PointsForward(plane.normal);
    if (!forward) plane = plane.Flipped();
    const int direction = forward ? 0 : 1;
    const int64_t low = BucketOf(plane.dist - DISTANCE_TOLERANCE);
    const int64_t high = BucketOf(plane.dist + DISTANCE_TOLERANCE);
    int id = Search(plane, low);
    if (id < 0 && high != low) id = Search(plane, high);
    if (id >= 0) return id ^ direction;
    id = Count();
    planes_.push_back(plane);
    planes_.push_back(plane.Flipped());
    buckets_[BucketOf(plane.dist)].push_back(id);
    return id ^ direction;
}
