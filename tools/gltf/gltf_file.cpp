#include "gltf/gltf_file.h"

#include "formats/binary.h"
#include "formats/error.h"
#include "formats/files.h"
#include "formats/nesting.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t TEXT_OFFSET = 20;  // behind the headers of the file and of its first chunk
constexpr size_t JSON_BYTES_MAX = 4 << 20;
constexpr size_t NUMBERS_MAX = 8'000'000;  // numbers of all accessors that are read; one counts as often as it is read
constexpr size_t LOADER_ERROR_MAX = 200;   // bytes

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

GltfNode ToNode(const tinygltf::Node& node) {
    GltfNode result;
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

}  // namespace

std::vector<Affine> PlacesOf(const GltfNodes& nodes) {
    std::vector<Affine> world(nodes.nodes.size());
    for (const int index : nodes.order) {
        const GltfNode& node = nodes.nodes[static_cast<size_t>(index)];
        const Affine local = node.hasMatrix ? node.matrix : FromParts(node.translation, node.rotation, node.scale);
        Affine& place = world[static_cast<size_t>(index)];
        place = node.parent < 0 ? local : world[static_cast<size_t>(node.parent)] * local;
    }
    return world;
}

GltfFile::GltfFile(const std::filesystem::path& path) : name_(path.string()) {
    const std::vector<uint8_t> content = ReadWholeFile(path);
    CheckText(content);
    tinygltf::TinyGLTF loader;
    loader.SetImageLoader([](auto...) { return true; }, nullptr);
    loader.SetFsCallbacks({});  // a .glb holds all that it needs
    std::string error, warning;
    const bool loaded = loader.LoadBinaryFromMemory(&data_, &error, &warning, content.data(),
                                                    static_cast<unsigned>(content.size()), "");
    if (!loaded) RefuseFile(fmt::format("is no glTF binary ({})", Shown(error, LOADER_ERROR_MAX)));
}

// The library calls itself for every level of the text, and takes some hundred bytes of memory for every value.
void GltfFile::CheckText(const std::vector<uint8_t>& content) const {
    if (content.size() < TEXT_OFFSET) return;
    ByteReader head(content, name_);
    head.Take(12);
    const size_t size = std::min<size_t>(head.U32(), content.size() - TEXT_OFFSET);
    if (size > JSON_BYTES_MAX) {
        RefuseFile(fmt::format("has {} bytes of JSON", size), fmt::format("{} are the most", JSON_BYTES_MAX));
    }
    CheckNesting({reinterpret_cast<const char*>(content.data()) + TEXT_OFFSET, size}, NestedText::Json, name_);
}

void GltfFile::RefuseFile(const std::string& problem, const std::string& remedy) const {
    Refuse(name_, 0, problem, remedy.empty() ? "export it again as glTF binary (.glb)" : remedy);
}

void GltfFile::RefuseIndex(int index, const char* what, size_t count) const {
    RefuseFile(fmt::format("names the {} {} of {}", what, index, count));
}

GltfNumbers GltfFile::Read(int accessorIndex, size_t width) const {
    const tinygltf::Accessor& accessor = Pick(data_.accessors, accessorIndex, "accessor");
    if (accessor.sparse.isSparse) RefuseFile("holds sparse data", "export it without");
    const tinygltf::BufferView& view = Pick(data_.bufferViews, accessor.bufferView, "buffer view");
    const auto& data = Pick(data_.buffers, view.buffer, "buffer").data;
    const int size = tinygltf::GetComponentSizeInBytes(static_cast<uint32_t>(accessor.componentType));
    const int components = tinygltf::GetNumComponentsInType(static_cast<uint32_t>(accessor.type));
    if (size < 1 || components != static_cast<int>(width)) RefuseFile("mixes up its kinds of numbers");
    const size_t element = static_cast<size_t>(size) * width;
    const size_t stride = view.byteStride == 0 ? element : view.byteStride;
    const size_t start = view.byteOffset + accessor.byteOffset;
    if (stride < element || start > data.size() || accessor.count > data.size() ||
        (accessor.count > 0 && (accessor.count - 1) * stride + element > data.size() - start)) {
        RefuseFile(fmt::format("ends before the numbers of accessor {}", accessorIndex));
    }
    taken_ += accessor.count * width;
    if (taken_ > NUMBERS_MAX) {
        RefuseFile(fmt::format("has more than {} numbers in its meshes and animations", NUMBERS_MAX),
                   "export each mesh once, and decimate it");
    }
    GltfNumbers numbers{{}, width};
    numbers.values.reserve(accessor.count * width);
    for (size_t i = 0; i < accessor.count; ++i) {
        for (size_t c = 0; c < width; ++c) {
            const unsigned char* at = data.data() + start + i * stride + c * static_cast<size_t>(size);
            numbers.values.push_back(Component(at, accessor.componentType, accessor.normalized));
        }
    }
    if (!std::all_of(numbers.values.begin(), numbers.values.end(), [](double v) { return std::isfinite(v); })) {
        RefuseFile(fmt::format("has a number in accessor {} that is not finite", accessorIndex));
    }
    return numbers;
}

GltfNumbers GltfFile::Attribute(const tinygltf::Primitive& primitive, const std::string& name, size_t width,
                                size_t count) const {
    const auto found = primitive.attributes.find(name);
    if (found == primitive.attributes.end()) {
        RefuseFile(fmt::format("has a mesh without {}", name), "export UVs, and skinning where there is any");
    }
    GltfNumbers numbers = Read(found->second, width);
    if (count != 0 && numbers.Count() != count) RefuseFile(fmt::format("has {} of too few vertices", name));
    return numbers;
}

std::vector<uint32_t> GltfFile::TriangleCorners(const tinygltf::Primitive& primitive, size_t vertexCount) const {
    std::vector<uint32_t> corners;
    if (primitive.indices < 0) {
        for (uint32_t i = 0; i < vertexCount; ++i)
            corners.push_back(i);
    } else {
        for (const double index : Read(primitive.indices, 1).values) {
            if (!(index >= 0 && index < static_cast<double>(vertexCount)))
                RefuseFile("has a triangle without vertices");
            corners.push_back(static_cast<uint32_t>(index));
        }
    }
    corners.resize(corners.size() / 3 * 3);
    return corners;
}

GltfNodes GltfFile::Nodes() const {
    GltfNodes result;
    for (const tinygltf::Node& node : data_.nodes)
        result.nodes.push_back(ToNode(node));
    for (size_t i = 0; i < data_.nodes.size(); ++i) {
        for (const int child : data_.nodes[i].children) {
            Pick(data_.nodes, child, "node");
            int& parent = result.nodes[static_cast<size_t>(child)].parent;
            if (parent >= 0) RefuseFile("has a node with two parents");
            parent = static_cast<int>(i);
        }
    }
    for (size_t i = 0; i < result.nodes.size(); ++i) {
        if (result.nodes[i].parent < 0) result.order.push_back(static_cast<int>(i));
    }
    for (size_t i = 0; i < result.order.size(); ++i) {
        const auto& children = data_.nodes[static_cast<size_t>(result.order[i])].children;
        result.order.insert(result.order.end(), children.begin(), children.end());
    }
    if (result.order.size() != result.nodes.size()) RefuseFile("has nodes that are their own ancestors");
    return result;
}

bool IsTriangles(const tinygltf::Primitive& primitive) {
    return primitive.mode == TINYGLTF_MODE_TRIANGLES || primitive.mode == -1;
}
