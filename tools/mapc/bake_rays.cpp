#include "mapc/bake_rays.h"

#include "mapc/ray_tracer.h"

namespace {

constexpr unsigned SOLID = 0;
constexpr unsigned SKY = 1;
constexpr unsigned VEIL = 2;
constexpr float FARTHEST = 1e6f;
constexpr float SAME_DISTANCE = 1e-5f;
constexpr float BEFORE_END = 0.999f;  // share of the way that is looked at: a surface at the very end is not between

struct VeilHit {
    unsigned veil;
    float distance;
};

// A ray and the veils that it has gone through, in no order.
struct VeiledQuery {
    RayContext context;  // first, so that the ray tracer's pointer to it leads here
    std::array<VeilHit, 16> hits;
    ptrdiff_t count = 0;

    VeiledQuery() { InitRayContext(context); }
};

// Called for each veil that a ray meets: remembers it and lets the ray go on.
void GoThrough(const RTCFilterFunctionNArguments* args) {
    args->valid[0] = 0;
    auto* query = reinterpret_cast<VeiledQuery*>(args->context);
    const auto& veils = *static_cast<const std::vector<RayTriangle>*>(args->geometryUserPtr);
    const RTCRay ray = rtcGetRayFromRayN(args->ray, args->N, 0);
    const unsigned veil = rtcGetHitFromHitN(args->hit, args->N, 0).primID;
    // Each cut-out body counts once: where the ray goes into it, and not for each triangle whose edge it meets there.
    if (Dot({ray.dir_x, ray.dir_y, ray.dir_z}, FrontOf(veils[veil])) >= 0) return;
    const auto end = query->hits.begin() + query->count;
    const bool known = std::any_of(query->hits.begin(), end, [&](const VeilHit& other) {
        return std::abs(other.distance - ray.tfar) <= SAME_DISTANCE * ray.tfar;
    });
    if (!known && end != query->hits.end()) {
        *end = {veil, ray.tfar};
        ++query->count;
    }
}

// The part of the light that the veils before a distance let through.
double PassedVeils(const VeiledQuery& query, const std::vector<double>& cover, float end) {
    double passed = 1;
    for (ptrdiff_t i = 0; i < query.count; ++i) {
        const VeilHit& hit = query.hits[static_cast<size_t>(i)];
        if (hit.distance < end) passed *= 1 - cover[hit.veil];
    }
    return passed;
}

}  // namespace

RayScene::RayScene(RaySurfaces surfaces) : surfaces_(std::move(surfaces)), tracer_(std::make_unique<RayTracer>()) {
    for (const RayTriangle& triangle : surfaces_.solid) {
        const Vec3 front = FrontOf(triangle);
        const double length = Length(front);
        const Vec3 normal = length > 0 ? front * (1 / length) : Vec3{};
        solidPlanes_.push_back({normal, Dot(normal, triangle[0])});
    }
    tracer_->Add(SOLID, surfaces_.solid);
    tracer_->Add(SKY, surfaces_.sky);
    tracer_->Add(VEIL, surfaces_.veils, GoThrough);
    tracer_->Commit();
}

RayScene::~RayScene() = default;

RayHit RayScene::Trace(const Vec3& from, const Vec3& direction) const {
    VeiledQuery query;
    RTCRayHit traced;
    traced.ray = RayOf(from, direction, FARTHEST);
    traced.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    tracer_->Intersect(query.context, traced);
    RayHit hit;
    hit.passed = PassedVeils(query, surfaces_.veilCover, traced.ray.tfar);
    if (traced.hit.geomID == RTC_INVALID_GEOMETRY_ID) return hit;
    if (traced.hit.geomID == SKY) {
        hit.meets = Meets::Sky;
        return hit;
    }
    hit.triangle = traced.hit.primID;
    const Plane& plane = solidPlanes_[hit.triangle];
    const double approach = Dot(direction, plane.normal);
    hit.meets = approach < 0 ? Meets::Front : Meets::Back;
    hit.distance = approach != 0 ? -plane.Distance(from) / approach : 0;
    return hit;
}

double RayScene::Passed(const Vec3& from, const Vec3& to) const {
    VeiledQuery query;
    RTCRay ray = RayOf(from, to - from, BEFORE_END);
    tracer_->FindOccluder(query.context, ray);
    return ray.tfar < 0 ? 0 : PassedVeils(query, surfaces_.veilCover, 1);
}
