#include "mapc/winding.h"

namespace {

// The way is taken from the front point, so that the two polygons of a shared edge get the same new corner.
Vec3 CrossingPoint(const Vec3& front, double frontDistance, const Vec3& back, double backDistance, const Plane& plane) {
    Vec3 point = front + (back - front) * (frontDistance / (frontDistance - backDistance));
    for (int axis = 0; axis < 3; ++axis) {
        if (plane.normal[axis] == 1) point[axis] = plane.dist;
        if (plane.normal[axis] == -1) point[axis] = -plane.dist;
    }
    return point;
}

}  // namespace

Winding BaseWinding(const Plane& plane) {
    int major = 0;
    for (int axis = 1; axis < 3; ++axis) {
        if (std::abs(plane.normal[axis]) > std::abs(plane.normal[major])) major = axis;
    }
    Vec3 up = major == 2 ? Vec3{1, 0, 0} : Vec3{0, 0, 1};
    up = up - plane.normal * Dot(up, plane.normal);
    up = up * (1 / Length(up));
    const Vec3 right = Cross(up, plane.normal);
    const Vec3 centre = plane.normal * plane.dist;
    constexpr double REACH = MAP_EXTENT * 4;
    return {centre - right * REACH + up * REACH, centre - right * REACH - up * REACH,
            centre + right * REACH - up * REACH, centre + right * REACH + up * REACH};
}

PlaneSide ClassifyWinding(const Winding& winding, const Plane& plane, double epsilon) {
    bool front = false;
    bool back = false;
    for (const Vec3& p : winding) {
        const double distance = plane.Distance(p);
        front |= distance > epsilon;
        back |= distance < -epsilon;
    }
    if (front && back) return PlaneSide::Both;
    if (front) return PlaneSide::Front;
    return back ? PlaneSide::Back : PlaneSide::On;
}

void SplitWinding(const Winding& winding, const Plane& plane, Winding& front, Winding& back, double epsilon) {
    front.clear();
    back.clear();
    const PlaneSide side = ClassifyWinding(winding, plane, epsilon);
    if (side == PlaneSide::Front) front = winding;
    if (side == PlaneSide::Back) back = winding;
    if (side != PlaneSide::Both) return;
    front.reserve(winding.size() + 2);
    back.reserve(winding.size() + 2);
    double distance = plane.Distance(winding[0]);
    for (size_t i = 0; i < winding.size(); ++i) {
        const Vec3& p = winding[i];
        const Vec3& next = winding[i + 1 == winding.size() ? 0 : i + 1];
        const double nextDistance = plane.Distance(next);
        if (distance >= -epsilon) front.push_back(p);
        if (distance <= epsilon) back.push_back(p);
        const bool leavesFront = distance > epsilon && nextDistance < -epsilon;
        const bool leavesBack = distance < -epsilon && nextDistance > epsilon;
        if (leavesFront || leavesBack) {
            const Vec3 crossing = leavesFront ? CrossingPoint(p, distance, next, nextDistance, plane)
                                              : CrossingPoint(next, nextDistance, p, distance, plane);
            front.push_back(crossing);
            back.push_back(crossing);
        }
        distance = nextDistance;
    }
}

void KeepBack(Winding& winding, const Plane& plane, double epsilon) {
    Winding front;
    Winding back;
    SplitWinding(winding, plane, front, back, epsilon);
    winding = std::move(back);
}

Vec3 WindingNormal(const Winding& winding) {
    Vec3 sum;
    for (size_t i = 2; i < winding.size(); ++i) {
        sum = sum + Cross(winding[i - 1] - winding[0], winding[i] - winding[0]);
    }
    return sum;
}

Vec3 WindingCentre(const Winding& winding) {
    Vec3 sum;
    for (const Vec3& p : winding)
        sum = sum + p;
    return sum * (1.0 / static_cast<double>(winding.size()));
}

Box WindingBox(const Winding& winding) {
    Box box;
    for (const Vec3& p : winding)
        box.Add(p);
    return box;
}

double WindingArea(const Winding& winding) {
    return Length(WindingNormal(winding)) / 2;
}

double WindingWidth(const Winding& winding) {
    const Vec3 normal = WindingNormal(winding);
    double width = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < winding.size(); ++i) {
        const Vec3 across = Cross(normal, winding[(i + 1) % winding.size()] - winding[i]);
        const double length = Length(across);
        if (length == 0) continue;
        double farthest = 0;
        for (const Vec3& p : winding)
            farthest = std::max(farthest, Dot(across, p - winding[i]) / length);
        width = std::min(width, farthest);
    }
    return width;
}

void RemoveStraightCorners(Winding& winding) {
    constexpr double STRAIGHT = 1e-4;  // distance from the line of the neighbours
    for (size_t i = 0; i < winding.size() && winding.size() >= 3;) {
        const Vec3& before = winding[(i + winding.size() - 1) % winding.size()];
        const Vec3 along = winding[(i + 1) % winding.size()] - before;
        const Vec3 across = Cross(along, winding[i] - before);
        if (LengthSquared(across) < STRAIGHT * STRAIGHT * LengthSquared(along) || along == Vec3{}) {
            winding.erase(winding.begin() + static_cast<std::ptrdiff_t>(i));
            i = 0;
        } else {
            ++i;
        }
    }
}
