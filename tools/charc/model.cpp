#include "charc/model.h"

#include "formats/error.h"
#include "gltf/gltf_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

class ModelReader {
public:
    explicit ModelReader(const std::filesystem::path& path) : file_(path), gltf_(file_.Data()) {}

    Model Read() {
        model_.file = file_.Name();
        model_.nodes = file_.Nodes();
        ReadSkin();
        for (const tinygltf::Material& material : gltf_.materials)
            model_.materials.push_back(material.name);
        rest_ = PlacesOf(model_.nodes);
        for (size_t i = 0; i < gltf_.nodes.size(); ++i)
            ReadMeshOf(i);
        if (model_.triangles.empty()) file_.RefuseFile("has no triangles on its skeleton", "bind a mesh to the bones");
        for (const tinygltf::Animation& animation : gltf_.animations)
            ReadClip(animation);
        return std::move(model_);
    }

private:
    void ReadSkin() {
        if (gltf_.skins.empty()) {
            file_.RefuseFile("has no skin", "bind the mesh to a skeleton before exporting");
        }
        if (gltf_.skins.size() > 1) {
            file_.RefuseFile(fmt::format("has {} skeletons", gltf_.skins.size()), "join them to one");
        }
        jointOfNode_.assign(model_.nodes.nodes.size(), -1);
        const tinygltf::Skin& skin = gltf_.skins[0];
        GltfNumbers binds{{}, 16};
        if (skin.inverseBindMatrices >= 0) binds = file_.Read(skin.inverseBindMatrices, 16);
        if (skin.inverseBindMatrices >= 0 && binds.Count() < skin.joints.size()) {
            file_.RefuseFile("has fewer bind matrices than joints");
        }
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            file_.Pick(gltf_.nodes, skin.joints[j], "node");
            ModelJoint joint{skin.joints[j], {}};
            for (size_t i = 0; i < 3 && binds.Count() > 0; ++i) {
                const double* m = binds[j];
                joint.inverseBind.m[i] = {m[i], m[4 + i], m[8 + i], m[12 + i]};
            }
            if (std::abs(Determinant(joint.inverseBind)) < 1e-12) {
                file_.RefuseFile(
                    fmt::format("binds the joint '{}' flat", Shown(model_.nodes.nodes[AsIndex(joint.node)].name)));
            }
            jointOfNode_[AsIndex(joint.node)] = static_cast<int>(j);
            model_.joints.push_back(joint);
        }
    }

    static size_t AsIndex(int index) { return static_cast<size_t>(index); }

    void ReadMeshOf(size_t index) {
        const tinygltf::Node& node = gltf_.nodes[index];
        if (node.mesh < 0) return;
        const int carrier = node.skin < 0 ? JointAbove(index) : -1;
        if (node.skin < 0 && carrier < 0) {
            model_.notes.push_back(fmt::format("'{}' hangs on no skeleton and is left out", Shown(node.name)));
            return;
        }
        for (const tinygltf::Primitive& primitive : file_.Pick(gltf_.meshes, node.mesh, "mesh").primitives)
            ReadPrimitive(primitive, index, carrier);
    }

    // The joint that carries a node without weights: the next one above, -1 for none.
    int JointAbove(size_t node) const {
        for (int at = model_.nodes.nodes[node].parent; at >= 0; at = model_.nodes.nodes[AsIndex(at)].parent) {
            if (jointOfNode_[AsIndex(at)] >= 0) return jointOfNode_[AsIndex(at)];
        }
        return -1;
    }

    // From a node's own space to that of the skinned mesh, so that following the joint takes its points to where it
    // has them.
    Affine FromCarried(size_t node, const ModelJoint& joint) const {
        return Inverse(joint.inverseBind) * Inverse(rest_[AsIndex(joint.node)]) * rest_[node];
    }

    bool HasAttribute(const tinygltf::Primitive& primitive, const char* name) const {
        return primitive.attributes.contains(name);
    }

    // carrier: the joint that all of it follows, -1 when it has weights.
    void ReadPrimitive(const tinygltf::Primitive& primitive, size_t node, int carrier) {
        const std::string& nodeName = gltf_.nodes[node].name;
        if (!IsTriangles(primitive)) {
            model_.notes.push_back(fmt::format("lines, points or strips of '{}' are left out", Shown(nodeName)));
            return;
        }
        const size_t first = model_.vertices.size();
        const GltfNumbers positions = file_.Attribute(primitive, "POSITION", 3, 0);
        const size_t count = positions.Count();
        const GltfNumbers uv = file_.Attribute(primitive, "TEXCOORD_0", 2, count);
        const GltfNumbers uv1 =
            HasAttribute(primitive, "TEXCOORD_1") ? file_.Attribute(primitive, "TEXCOORD_1", 2, count) : uv;
        for (size_t i = 0; i < count; ++i) {
            ModelVertex vertex;
            vertex.position = {positions[i][0], positions[i][1], positions[i][2]};
            vertex.uv = {{{uv[i][0], uv[i][1]}, {uv1[i][0], uv1[i][1]}}};
            vertex.material = primitive.material;
            model_.vertices.push_back(vertex);
        }
        if (carrier >= 0) {
            const Affine place = FromCarried(node, model_.joints[AsIndex(carrier)]);
            for (size_t i = first; i < model_.vertices.size(); ++i) {
                model_.vertices[i].position = place(model_.vertices[i].position);
                model_.vertices[i].influences = {{carrier, 1}};
            }
            return AddTriangles(primitive, first, count);
        }
        for (int set = 0; set == 0 || HasAttribute(primitive, fmt::format("JOINTS_{}", set).c_str()); ++set) {
            AddInfluences(first, file_.Attribute(primitive, fmt::format("JOINTS_{}", set), 4, count),
                          file_.Attribute(primitive, fmt::format("WEIGHTS_{}", set), 4, count));
        }
        std::for_each(model_.vertices.begin() + static_cast<std::ptrdiff_t>(first), model_.vertices.end(),
                      [&](ModelVertex& vertex) { NormalizeWeights(vertex, nodeName); });
        AddTriangles(primitive, first, count);
    }

    void AddInfluences(size_t first, const GltfNumbers& joints, const GltfNumbers& weights) {
        for (size_t i = 0; i < joints.Count(); ++i) {
            for (size_t k = 0; k < 4; ++k) {
                if (weights[i][k] <= 0) continue;
                if (!(joints[i][k] >= 0 && joints[i][k] < static_cast<double>(model_.joints.size())))
                    file_.RefuseFile("has a vertex that follows a joint it has not");
                const auto joint = static_cast<int>(joints[i][k]);
                model_.vertices[first + i].influences.push_back({joint, weights[i][k]});
            }
        }
    }

    void NormalizeWeights(ModelVertex& vertex, const std::string& nodeName) const {
        double sum = 0;
        for (const ModelInfluence& influence : vertex.influences)
            sum += influence.weight;
        if (sum <= 0) {
            file_.RefuseFile(fmt::format("has a vertex of '{}' that follows no joint", Shown(nodeName)),
                             "give every vertex a weight");
        }
        for (ModelInfluence& influence : vertex.influences)
            influence.weight /= sum;
    }

    void AddTriangles(const tinygltf::Primitive& primitive, size_t first, size_t count) {
        const std::vector<uint32_t> corners = file_.TriangleCorners(primitive, count);
        const auto base = static_cast<uint32_t>(first);
        for (size_t i = 0; i < corners.size(); i += 3)
            model_.triangles.push_back({base + corners[i], base + corners[i + 1], base + corners[i + 2]});
    }

    void ReadClip(const tinygltf::Animation& animation) {
        ModelClip clip;
        clip.name = animation.name;
        for (const tinygltf::AnimationChannel& channel : animation.channels)
            ReadChannel(animation, channel, clip);
        if (clip.channels.empty()) return;
        clip.begin = clip.channels[0].times.front();
        for (const ModelChannel& channel : clip.channels) {
            clip.begin = std::min(clip.begin, channel.times.front());
            clip.end = std::max(clip.end, channel.times.back());
        }
        model_.clips.push_back(std::move(clip));
    }

    void ReadChannel(const tinygltf::Animation& animation, const tinygltf::AnimationChannel& source, ModelClip& clip) {
        static const std::map<std::string, ChannelTarget> targets{{"translation", ChannelTarget::TRANSLATION},
                                                                  {"rotation", ChannelTarget::ROTATION},
                                                                  {"scale", ChannelTarget::SCALE}};
        static const std::map<std::string, Interpolation> kinds{
            {"STEP", Interpolation::STEP}, {"LINEAR", Interpolation::LINEAR}, {"CUBICSPLINE", Interpolation::CUBIC}};
        const auto target = targets.find(source.target_path);
        if (target == targets.end() || source.target_node < 0) return;
        const tinygltf::AnimationSampler& sampler = file_.Pick(animation.samplers, source.sampler, "sampler");
        const auto kind = kinds.find(sampler.interpolation);
        if (kind == kinds.end()) {
            file_.RefuseFile(fmt::format("interpolates '{}' by '{}'", Shown(clip.name), Shown(sampler.interpolation)));
        }
        file_.Pick(model_.nodes.nodes, source.target_node, "node");
        ModelChannel channel{source.target_node, target->second, kind->second, file_.Read(sampler.input, 1).values, {}};
        const GltfNumbers values = file_.Read(sampler.output, target->second == ChannelTarget::ROTATION ? 4 : 3);
        const size_t needed = channel.times.size() * (kind->second == Interpolation::CUBIC ? 3 : 1);
        if (needed == 0 || values.Count() != needed || !std::is_sorted(channel.times.begin(), channel.times.end())) {
            file_.RefuseFile(fmt::format("has keys of '{}' in disorder", Shown(clip.name)));
        }
        for (size_t i = 0; i < needed; ++i) {
            std::array<double, 4> value{};
            std::copy_n(values[i], values.width, value.begin());
            channel.values.push_back(value);
        }
        clip.channels.push_back(std::move(channel));
    }

    GltfFile file_;
    const tinygltf::Model& gltf_;
    Model model_;
    std::vector<Affine> rest_;      // transforms of the nodes at rest
    std::vector<int> jointOfNode_;  // -1 for those that are none
};

}  // namespace

Model ReadModel(const std::filesystem::path& path) {
    return ModelReader(path).Read();
}
