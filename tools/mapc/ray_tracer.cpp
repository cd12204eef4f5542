#include "mapc/ray_tracer.h"

#include <fmt/format.h>

#include <stdexcept>

namespace {

// The same set of instructions on every processor, because different ones give different results.
constexpr const char* DEVICE_SETTINGS = "isa=sse4.2,threads=1";

}  // namespace

RayTracer::RayTracer() : device_(rtcNewDevice(DEVICE_SETTINGS)), scene_(nullptr) {
    Check();
    scene_ = rtcNewScene(device_);
    rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);  // nothing slips through between two triangles
}

RayTracer::~RayTracer() {
    rtcReleaseScene(scene_);
    rtcReleaseDevice(device_);
}

void RayTracer::Check() const {
    const RTCError error = rtcGetDeviceError(device_);
    if (error != RTC_ERROR_NONE)
        throw std::runtime_error(fmt::format("the ray tracer fails with error {}", static_cast<int>(error)));
}

void RayTracer::Add(unsigned geometry, const std::vector<RayTriangle>& triangles, RTCFilterFunctionN passes) {
    if (triangles.empty()) return;
    RTCGeometry added = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* corner = static_cast<float*>(
        rtcSetNewGeometryBuffer(added, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 12, triangles.size() * 3));
    auto* index = static_cast<unsigned*>(
        rtcSetNewGeometryBuffer(added, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 12, triangles.size()));
    Check();
    unsigned next = 0;
    for (const RayTriangle& triangle : triangles) {
        for (const Vec3& p : triangle) {
            for (int axis = 0; axis < 3; ++axis)
                *corner++ = static_cast<float>(p[axis]);
            *index++ = next++;
        }
    }
    if (passes) {
        rtcSetGeometryUserData(added, const_cast<std::vector<RayTriangle>*>(&triangles));
        rtcSetGeometryIntersectFilterFunction(added, passes);
        rtcSetGeometryOccludedFilterFunction(added, passes);
    }
    rtcCommitGeometry(added);
    rtcAttachGeometryByID(scene_, added, geometry);
    rtcReleaseGeometry(added);
}

void RayTracer::Commit() {
    rtcCommitScene(scene_);
    Check();
}

#if RTC_VERSION_MAJOR == 3

void InitRayContext(RayContext& context) {
    rtcInitIntersectContext(&context);
}

void RayTracer::Intersect(RayContext& context, RTCRayHit& ray) const {
    rtcIntersect1(scene_, &context, &ray);
}

void RayTracer::FindOccluder(RayContext& context, RTCRay& ray) const {
    rtcOccluded1(scene_, &context, &ray);
}

#else

void InitRayContext(RayContext& context) {
    rtcInitRayQueryContext(&context);
}

void RayTracer::Intersect(RayContext& context, RTCRayHit& ray) const {
    RTCIntersectArguments arguments;
    rtcInitIntersectArguments(&arguments);
    arguments.context = &context;
    rtcIntersect1(scene_, &ray, &arguments);
}

void RayTracer::FindOccluder(RayContext& context, RTCRay& ray) const {
    RTCOccludedArguments arguments;
    rtcInitOccludedArguments(&arguments);
    arguments.context = &context;
    rtcOccluded1(scene_, &ray, &arguments);
}

#endif

RTCRay RayOf(const Vec3& from, const Vec3& direction, float farthest) {
    RTCRay ray{};
    ray.org_x = static_cast<float>(from.x);
    ray.org_y = static_cast<float>(from.y);
    ray.org_z = static_cast<float>(from.z);
    ray.dir_x = static_cast<float>(direction.x);
    ray.dir_y = static_cast<float>(direction.y);
    ray.dir_z = static_cast<float>(direction.z);
    ray.tfar = farthest;
    ray.mask = ~0U;
    return ray;
}
