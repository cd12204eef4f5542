#include "charc/model.h"

#include <algorithm>

namespace {

using Value = std::array<double, 4>;

Value Blend(const Value& a, const Value& b, double t) {
    Value value;
    for (size_t i = 0; i < 4; ++i)
        value[i] = a[i] + (b[i] - a[i]) * t;
    return value;
}

Quaternion ToQuaternion(const Value& v) {
    return Normalized({v[3], v[0], v[1], v[2]});
}

Value Cubic(const ModelChannel& channel, size_t k, double t) {
    const double span = channel.times[k + 1] - channel.times[k];
    const Value& from = channel.values[3 * k + 1];
    const Value& leaving = channel.values[3 * k + 2];
    const Value& arriving = channel.values[3 * k + 3];
    const Value& to = channel.values[3 * k + 4];
    const double t2 = t * t, t3 = t2 * t;
    Value value;
    for (size_t i = 0; i < 4; ++i) {
        value[i] = (2 * t3 - 3 * t2 + 1) * from[i] + span * (t3 - 2 * t2 + t) * leaving[i] + (3 * t2 - 2 * t3) * to[i] +
                   span * (t3 - t2) * arriving[i];
    }
    return value;
}

Value Sample(const ModelChannel& channel, double seconds) {
    const bool cubic = channel.interpolation == Interpolation::CUBIC;
    const auto keyValue = [&](size_t k) { return channel.values[cubic ? 3 * k + 1 : k]; };
    const auto after = std::upper_bound(channel.times.begin(), channel.times.end(), seconds);
    if (after == channel.times.begin()) return keyValue(0);
    const auto k = static_cast<size_t>(after - channel.times.begin()) - 1;
    if (after == channel.times.end() || channel.interpolation == Interpolation::STEP) return keyValue(k);
    const double t = (seconds - channel.times[k]) / (channel.times[k + 1] - channel.times[k]);
    if (cubic) return Cubic(channel, k, t);
    if (channel.target != ChannelTarget::ROTATION) return Blend(keyValue(k), keyValue(k + 1), t);
    const Quaternion q = Slerp(ToQuaternion(keyValue(k)), ToQuaternion(keyValue(k + 1)), t);
    return {q.x, q.y, q.z, q.w};
}

void Apply(const ModelChannel& channel, double seconds, GltfNode& node) {
    const Value v = Sample(channel, seconds);
    switch (channel.target) {
    case ChannelTarget::TRANSLATION: node.translation = {v[0], v[1], v[2]}; break;
    case ChannelTarget::ROTATION: node.rotation = ToQuaternion(v); break;
    case ChannelTarget::SCALE: node.scale = {v[0], v[1], v[2]}; break;
    }
}

}  // namespace

std::vector<Affine> RestPose(const Model& model) {
    return PlacesOf(model.nodes);
}

std::vector<Affine> PoseAt(const Model& model, const ModelClip& clip, double seconds) {
    GltfNodes nodes = model.nodes;
    for (const ModelChannel& channel : clip.channels)
        Apply(channel, seconds, nodes.nodes[static_cast<size_t>(channel.node)]);
    return PlacesOf(nodes);
}
