#include "charc/model.h"

#include "formats/binary.h"
#include "formats/error.h"

#include <fmt/format.h>
#include <tiny_gltf.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

namespace {

const char* const EXPORT_AGAIN = "export it again as glTF binary (.glb)";

[[noreturn]] void RefuseFile(const std::string& file, const std::string& problem,
                             const std::string& remedy = EXPORT_AGAIN) {
    Refuse(file, 0, problem, remedy);
}

// A list element, after a look at the index that the file gives for it.
template <class T>
const T& Pick(const std::vector<T>& list, int index, const char* what, const std::string& file) {
    if (index < 0 || static_cast<size_t>(index) >= list.size()) {
        RefuseFile(file, fmt::format("names the {} {} of {}", what, index, list.size()));
    }
    return list[static_cast<size_t>(index)];
}

double Component(const unsigned char* at, int type, bool normalized) {
    const auto as = [&](auto value, double most) {
        std::memcpy(&value, at, sizeof value);
        const auto number = static_cast<double>(value);
        return normalized ? std::max(number / most, -1.0) : number;
    };
    switch (type) {
    case TINYGLTF_COMPONENT_TYPE_BYTE: return as(int8_t{}, 127);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE: return as(uint8_t{}, 255);
    case TINYGLTF_COMPONENT_TYPE_SHORT: return as(int16_t{}, 32767);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT: return as(uint16_t{}, 65535);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT: return as(uint32_t{}, 4294967295.0);
    default: return as(float{}, 1);
    }
}

// Numbers of an accessor, `width` to an element.
struct Numbers {
    std::vector<double> values;
    size_t width = 1;
    size_t Count() const { return values.size() / width; }
    const double* operator[](size_t i) const { return values.data() + i * width; }
};

class GltfReader {
public:
    explicit GltfReader(const std::filesystem::path& path) : file_(path.string()) {
        const std::vector<uint8_t> content = ReadWholeFile(path);
        tinygltf::TinyGLTF loader;
        loader.SetImageLoader([](auto...) { return true; }, nullptr);
        std::string error, warning;
        const bool loaded = loader.LoadBinaryFromMemory(&gltf_, &error, &warning, content.data(),
                                                        static_cast<unsigned>(content.size()), "");
        std::replace(error.begin(), error.end(), '\n', ' ');
        if (!loaded) RefuseFile(file_, fmt::format("is no glTF binary ({})", error));
    }

    Model Read() {
        model_.file = file_;
        ReadNodes();
        ReadSkin();
        for (const tinygltf::Material& material : gltf_.materials)
            model_.materials.push_back(material.name);
        for (size_t i = 0; i < gltf_.nodes.size(); ++i)
            ReadMeshOf(gltf_.nodes[i]);
        if (model_.triangles.empty()) RefuseFile(file_, "has no triangles on its skeleton", "bind a mesh to the bones");
        for (const tinygltf::Animation& animation : gltf_.animations)
            ReadClip(animation);
        return std::move(model_);
    }

private:
    Numbers Read(int accessorIndex, size_t width) const {
        const tinygltf::Accessor& accessor = Pick(gltf_.accessors, accessorIndex, "accessor", file_);
        if (accessor.sparse.isSparse) RefuseFile(file_, "holds sparse data", "export it without");
        const tinygltf::BufferView& view = Pick(gltf_.bufferViews, accessor.bufferView, "buffer view", file_);
        const auto& data = Pick(gltf_.buffers, view.buffer, "buffer", file_).data;
        const int size = tinygltf::GetComponentSizeInBytes(static_cast<uint32_t>(accessor.componentType));
        const int components = tinygltf::GetNumComponentsInType(static_cast<uint32_t>(accessor.type));
        if (size < 1 || components != static_cast<int>(width)) RefuseFile(file_, "mixes up its kinds of numbers");
        const size_t element = static_cast<size_t>(size) * width;
        const size_t stride = view.byteStride == 0 ? element : view.byteStride;
        const size_t start = view.byteOffset + accessor.byteOffset;
        if (stride < element || start > data.size() || accessor.count > data.size() ||
            (accessor.count > 0 && (accessor.count - 1) * stride + element > data.size() - start)) {
            RefuseFile(file_, fmt::format("ends before the numbers of accessor {}", accessorIndex));
        }
        Numbers numbers{{}, width};
        for (size_t i = 0; i < accessor.count; ++i) {
            for (size_t c = 0; c < width; ++c) {
                const unsigned char* at = data.data() + start + i * stride + c * static_cast<size_t>(size);
                numbers.values.push_back(Component(at, accessor.componentType, accessor.normalized));
            }
        }
        if (!std::all_of(numbers.values.begin(), numbers.values.end(), [](double v) { return std::isfinite(v); })) {
            RefuseFile(file_, fmt::format("has a number in accessor {} that is not finite", accessorIndex));
        }
        return numbers;
    }

    static ModelNode ToNode(const tinygltf::Node& node) {
        ModelNode result;
        result.name = node.name;
        if (const auto& m = node.matrix; m.size() == 16) {
            result.hasMatrix = true;
            for (size_t i = 0; i < 3; ++i)
                result.matrix.m[i] = {m[i], m[4 + i], m[8 + i], m[12 + i]};
        }
        if (const auto& t = node.translation; t.size() == 3) result.translation = {t[0], t[1], t[2]};
        if (const auto& r = node.rotation; r.size() == 4) result.rotation = Normalized({r[3], r[0], r[1], r[2]});
        if (const auto& s = node.scale; s.size() == 3) result.scale = {s[0], s[1], s[2]};
        return result;
    }

    void ReadNodes() {
        for (const tinygltf::Node& node : gltf_.nodes)
            model_.nodes.push_back(ToNode(node));
        for (size_t i = 0; i < gltf_.nodes.size(); ++i) {
            for (const int child : gltf_.nodes[i].children) {
                Pick(gltf_.nodes, child, "node", file_);
                int& parent = model_.nodes[static_cast<size_t>(child)].parent;
                if (parent >= 0) RefuseFile(file_, "has a node with two parents");
                parent = static_cast<int>(i);
            }
        }
        for (size_t i = 0; i < model_.nodes.size(); ++i) {
            if (model_.nodes[i].parent < 0) model_.order.push_back(static_cast<int>(i));
        }
        for (size_t i = 0; i < model_.order.size(); ++i) {
            const auto& children = gltf_.nodes[static_cast<size_t>(model_.order[i])].children;
            model_.order.insert(model_.order.end(), children.begin(), children.end());
        }
        if (model_.order.size() != model_.nodes.size()) RefuseFile(file_, "has nodes that are their own ancestors");
    }

    void ReadSkin() {
        if (gltf_.skins.empty()) {
            RefuseFile(file_, "has no skin", "bind the mesh to a skeleton before exporting");
        }
        if (gltf_.skins.size() > 1) {
            RefuseFile(file_, fmt::format("has {} skeletons", gltf_.skins.size()), "join them to one");
        }
        const tinygltf::Skin& skin = gltf_.skins[0];
        Numbers binds{{}, 16};
        if (skin.inverseBindMatrices >= 0) binds = Read(skin.inverseBindMatrices, 16);
        if (skin.inverseBindMatrices >= 0 && binds.Count() < skin.joints.size()) {
            RefuseFile(file_, "has fewer bind matrices than joints");
        }
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            Pick(gltf_.nodes, skin.joints[j], "node", file_);
            ModelJoint joint{skin.joints[j], {}};
            for (size_t i = 0; i < 3 && binds.Count() > 0; ++i) {
                const double* m = binds[j];
                joint.inverseBind.m[i] = {m[i], m[4 + i], m[8 + i], m[12 + i]};
            }
            if (std::abs(Determinant(joint.inverseBind)) < 1e-12) {
                RefuseFile(file_, fmt::format("binds the joint '{}' flat", model_.nodes[AsIndex(joint.node)].name));
            }
            model_.joints.push_back(joint);
        }
    }

    static size_t AsIndex(int index) { return static_cast<size_t>(index); }

    void ReadMeshOf(const tinygltf::Node& node) {
        if (node.mesh < 0) return;
        if (node.skin < 0) {
            model_.notes.push_back(fmt::format("'{}' hangs on no skeleton and is left out", node.name));
            return;
        }
        for (const tinygltf::Primitive& primitive : Pick(gltf_.meshes, node.mesh, "mesh", file_).primitives)
            ReadPrimitive(primitive, node.name);
    }

    bool HasAttribute(const tinygltf::Primitive& primitive, const char* name) const {
        return primitive.attributes.contains(name);
    }

    Numbers Attribute(const tinygltf::Primitive& primitive, const std::string& name, size_t width, size_t count) const {
        const auto found = primitive.attributes.find(name);
        if (found == primitive.attributes.end()) {
            RefuseFile(file_, fmt::format("has a mesh without {}", name), "export normals off, UVs and skinning on");
        }
        Numbers numbers = Read(found->second, width);
        if (count != 0 && numbers.Count() != count) RefuseFile(file_, fmt::format("has {} of too few vertices", name));
        return numbers;
    }

    void ReadPrimitive(const tinygltf::Primitive& primitive, const std::string& nodeName) {
        if (primitive.mode != TINYGLTF_MODE_TRIANGLES && primitive.mode != -1) {
            model_.notes.push_back(fmt::format("lines, points or strips of '{}' are left out", nodeName));
            return;
        }
        const size_t first = model_.vertices.size();
        const Numbers positions = Attribute(primitive, "POSITION", 3, 0);
        const size_t count = positions.Count();
        const Numbers uv = Attribute(primitive, "TEXCOORD_0", 2, count);
        const Numbers uv1 = HasAttribute(primitive, "TEXCOORD_1") ? Attribute(primitive, "TEXCOORD_1", 2, count) : uv;
        for (size_t i = 0; i < count; ++i) {
            ModelVertex vertex;
            vertex.position = {positions[i][0], positions[i][1], positions[i][2]};
            vertex.uv = {{{uv[i][0], uv[i][1]}, {uv1[i][0], uv1[i][1]}}};
            vertex.material = primitive.material;
            model_.vertices.push_back(vertex);
        }
        for (int set = 0; set == 0 || HasAttribute(primitive, fmt::format("JOINTS_{}", set).c_str()); ++set) {
            AddInfluences(first, Attribute(primitive, fmt::format("JOINTS_{}", set), 4, count),
                          Attribute(primitive, fmt::format("WEIGHTS_{}", set), 4, count));
        }
        std::for_each(model_.vertices.begin() + static_cast<std::ptrdiff_t>(first), model_.vertices.end(),
                      [&](ModelVertex& vertex) { NormalizeWeights(vertex, nodeName); });
        AddTriangles(primitive, first, count);
    }

    void AddInfluences(size_t first, const Numbers& joints, const Numbers& weights) {
        for (size_t i = 0; i < joints.Count(); ++i) {
            for (size_t k = 0; k < 4; ++k) {
                if (weights[i][k] <= 0) continue;
                const auto joint = static_cast<int>(joints[i][k]);
                Pick(model_.joints, joint, "joint", file_);
                model_.vertices[first + i].influences.push_back({joint, weights[i][k]});
            }
        }
    }

    void NormalizeWeights(ModelVertex& vertex, const std::string& nodeName) const {
        double sum = 0;
        for (const ModelInfluence& influence : vertex.influences)
            sum += influence.weight;
        if (sum <= 0) {
            RefuseFile(file_, fmt::format("has a vertex of '{}' that follows no joint", nodeName),
                       "give every vertex a weight");
        }
        for (ModelInfluence& influence : vertex.influences)
            influence.weight /= sum;
    }

    void AddTriangles(const tinygltf::Primitive& primitive, size_t first, size_t count) {
        std::vector<double> indices;
        if (primitive.indices >= 0) {
            indices = Read(primitive.indices, 1).values;
        } else {
            for (size_t i = 0; i < count; ++i)
                indices.push_back(static_cast<double>(i));
        }
        for (size_t i = 0; i + 2 < indices.size(); i += 3) {
            std::array<uint32_t, 3> triangle;
            for (size_t k = 0; k < 3; ++k) {
                if (indices[i + k] >= static_cast<double>(count)) RefuseFile(file_, "has a triangle without vertices");
                triangle[k] = static_cast<uint32_t>(first + static_cast<size_t>(indices[i + k]));
            }
            model_.triangles.push_back(triangle);
        }
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
        const tinygltf::AnimationSampler& sampler = Pick(animation.samplers, source.sampler, "sampler", file_);
        const auto kind = kinds.find(sampler.interpolation);
        if (kind == kinds.end()) {
            RefuseFile(file_, fmt::format("interpolates '{}' by '{}'", clip.name, sampler.interpolation));
        }
        Pick(model_.nodes, source.target_node, "node", file_);
        ModelChannel channel{source.target_node, target->second, kind->second, Read(sampler.input, 1).values, {}};
        const Numbers values = Read(sampler.output, target->second == ChannelTarget::ROTATION ? 4 : 3);
        const size_t needed = channel.times.size() * (kind->second == Interpolation::CUBIC ? 3 : 1);
        if (needed == 0 || values.Count() != needed || !std::is_sorted(channel.times.begin(), channel.times.end())) {
            RefuseFile(file_, fmt::format("has keys of '{}' in disorder", clip.name));
        }
        for (size_t i = 0; i < needed; ++i) {
            std::array<double, 4> value{};
            std::copy_n(values[i], values.width, value.begin());
            channel.values.push_back(value);
        }
        clip.channels.push_back(std::move(channel));
    }

    std::string file_;
    tinygltf::Model gltf_;
    Model model_;
};

}  // namespace

Model ReadModel(const std::filesystem::path& path) {
    return GltfReader(path).Read();
}
