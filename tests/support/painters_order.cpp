#include "support/painters_order.h"

#include "math/vectors.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "support/view.h"
#include "world/draw/render_world.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace {

constexpr double EDGE_MARGIN = 0.01;   // hits nearer than this to an edge are left out: either side may be right
constexpr double DEPTH_MARGIN = 0.05;  // polygons nearer than this to each other have no order
constexpr double VIEW_MARGIN = 0.95;   // of the view volume in which rays are cast

struct Ray {
    double origin[3];
    double direction[3];
};

double Component(const Vec3& v, int axis) {
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

// The distance along the ray, or infinity.
double Hit(const Ray& ray, int polygon) {
    const PolyRecord record = WorldGeometry.polygons[polygon];
    const PlaneRecord& plane = WorldGeometry.planes[record.plane];
    const double normal[3] = {plane.nx, plane.ny, plane.nz};
    double distance = plane.d;
    double speed = 0.0;
    for (int i = 0; i < 3; ++i) {
        distance += normal[i] * ray.origin[i];
        speed += normal[i] * ray.direction[i];
    }
    constexpr double MISS = std::numeric_limits<double>::infinity();
    if (distance >= 0.0 || speed < 1e-6) return MISS;
    const double t = -distance / speed;
    double hit[3];
    for (int i = 0; i < 3; ++i)
        hit[i] = ray.origin[i] + t * ray.direction[i];
    for (int k = 0; k < record.cornerCount; ++k) {
        const Vec3 a = WorldGeometry.points[WorldGeometry.polyVertices[record.firstVertex + k].point].position;
        const int next = (k + 1) % record.cornerCount;
        const Vec3 b = WorldGeometry.points[WorldGeometry.polyVertices[record.firstVertex + next].point].position;
        double edge[3], inside[3], length = 0.0, side = 0.0;
        for (int i = 0; i < 3; ++i) {
            edge[i] = Component(b, i) - Component(a, i);
            inside[i] = hit[i] - Component(a, i);
            length += edge[i] * edge[i];
        }
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3;
            const int l = (i + 2) % 3;
            side += normal[i] * (edge[j] * inside[l] - edge[l] * inside[j]);
        }
        if (side < EDGE_MARGIN * std::sqrt(length)) return MISS;
    }
    return t;
}

std::vector<int> FacingPolygonsOf(const BspLeaf& leaf) {
    std::vector<int> facing;
    for (int p = leaf.firstPolygon; p < leaf.firstPolygon + leaf.polygonCount; ++p) {
        if (PolySideOfCamera(p) < 0) facing.push_back(p);
    }
    return facing;
}

std::vector<int> DrawnPolygons() {
    std::vector<int> drawn;
    for (int i = 0; i < RenderListCount; ++i) {
        const int32_t entry = WorldGeometry.renderList[i];
        if (entry >= CHARACTER_ENTRY) continue;
        const std::vector<int> leaf = FacingPolygonsOf(WorldGeometry.leaves[entry < 0 ? ~entry : entry]);
        drawn.insert(drawn.end(), leaf.begin(), leaf.end());
    }
    return drawn;
}

std::string Describe(const char* what, Vec3 eye, int polygon, int other) {
    char text[160];
    std::snprintf(text, sizeof text, "from (%.1f, %.1f, %.1f): polygon %d %s %d", double{eye.x}, double{eye.y},
                  double{eye.z}, polygon, what, other);
    return text;
}

class Checker {
public:
    Checker(unsigned seed, const std::function<bool(int)>& canBeSeen) : canBeSeen_(canBeSeen), random_(seed) {}

    void LookAround(Vec3 eye, int rays) {
        const float pitch = Between(-60.0f, 60.0f);
        LookFrom(eye, pitch, Between(0.0f, 360.0f));
        FrameCount = static_cast<uint16_t>(FrameCount + 1);
        RenderWorld();
        std::vector<int> drawn = DrawnPolygons();
        std::erase_if(drawn, [&](int polygon) { return !canBeSeen_(polygon); });
        for (int i = 0; i < rays; ++i)
            Cast(RandomRay(eye), eye, drawn);
    }

    PaintersOrderReport report;

private:
    float Between(float low, float high) {
        const double unit = static_cast<double>(random_()) / std::mt19937::max();
        return low + static_cast<float>(unit) * (high - low);
    }

    Ray RandomRay(Vec3 eye) {
        const float limit = static_cast<float>(VIEW_MARGIN);
        const float x = Between(-limit, limit);
        RotateVectorT(x, Between(-limit, limit) / ScreenAspect, 1.0f, CameraRotation);
        return {{eye.x, eye.y, eye.z}, {RotatedVector.x, RotatedVector.y, RotatedVector.z}};
    }

    void Cast(const Ray& ray, Vec3 eye, const std::vector<int>& drawn) {
        double nearest = std::numeric_limits<double>::infinity();
        int nearestPolygon = -1;
        for (const int polygon : drawn) {
            const double t = Hit(ray, polygon);
            if (std::isinf(t)) continue;
            ++report.crossings;
            if (t > nearest + DEPTH_MARGIN) {
                report.faults.push_back(Describe("is drawn over the nearer", eye, polygon, nearestPolygon));
            }
            if (t < nearest) {
                nearest = t;
                nearestPolygon = polygon;
            }
        }
        CheckNothingIsMissing(ray, eye, nearest, nearestPolygon);
    }

    void CheckNothingIsMissing(const Ray& ray, Vec3 eye, double nearest, int nearestPolygon) {
        for (uint32_t p = 0; p < WorldGeometry.file.polygons; ++p) {
            const double t = canBeSeen_(static_cast<int>(p)) ? Hit(ray, static_cast<int>(p)) : nearest;
            if (t < nearest - DEPTH_MARGIN && t < double{FarDistance}) {
                report.faults.push_back(Describe("is culled, which hides", eye, static_cast<int>(p), nearestPolygon));
            }
        }
    }

    const std::function<bool(int)>& canBeSeen_;
    std::mt19937 random_;
};

}  // namespace

PaintersOrderReport CheckPaintersOrder(const std::vector<Vec3>& eyes, int raysPerEye, unsigned seed,
                                       const std::function<bool(int polygon)>& canBeSeen) {
    Checker checker(seed, canBeSeen);
    for (const Vec3 eye : eyes)
        checker.LookAround(eye, raysPerEye);
    return checker.report;
}
