// A glTF 2.0 file (.glb) as it was read, with checked access to its tables, numbers and nodes. Metres, y up, +z is the
// front.
#pragma once

#include "transforms/transform.h"

#include <tiny_gltf.h>

#include <filesystem>
#include <string>
#include <vector>

// Numbers of an accessor, `width` to an element.
struct GltfNumbers {
    std::vector<double> values;
    size_t width = 1;
    size_t Count() const { return values.size() / width; }
    const double* operator[](size_t i) const { return values.data() + i * width; }
};

struct GltfNode {
    std::string name;
    int parent = -1;
    Vector translation;
    Quaternion rotation;
    Vector scale{1, 1, 1};
    bool hasMatrix = false;  // `matrix` holds in place of the three above; no animation moves it
    Affine matrix;
};

struct GltfNodes {
    std::vector<GltfNode> nodes;  // as in the file
    std::vector<int> order;       // parents first
};

std::vector<Affine> PlacesOf(const GltfNodes& nodes);  // in the world

// Every member throws a ContentError for a file that breaks the format's rules, and for one that asks for too much:
// more than 64 levels or 4 MiB of JSON, or 8,000,000 numbers in what is read of it.
class GltfFile {
public:
    explicit GltfFile(const std::filesystem::path& path);

    const std::string& Name() const { return name_; }
    const tinygltf::Model& Data() const { return data_; }

    // An element of a list, after checking the index that the file gives for it.
    template <class T>
    const T& Pick(const std::vector<T>& list, int index, const char* what) const {
        if (index < 0 || static_cast<size_t>(index) >= list.size()) RefuseIndex(index, what, list.size());
        return list[static_cast<size_t>(index)];
    }

    GltfNumbers Read(int accessor, size_t width) const;
    // Numbers of one element for each vertex; `count` 0: as many as there are.
    GltfNumbers Attribute(const tinygltf::Primitive& primitive, const std::string& name, size_t width,
                          size_t count) const;
    // Three indices for each triangle, all below `vertexCount`.
    std::vector<uint32_t> TriangleCorners(const tinygltf::Primitive& primitive, size_t vertexCount) const;
    GltfNodes Nodes() const;

    [[noreturn]] void RefuseFile(const std::string& problem, const std::string& remedy = "") const;

private:
    [[noreturn]] void RefuseIndex(int index, const char* what, size_t count) const;

    void CheckText(const std::vector<uint8_t>& content) const;

    std::string name_;
    tinygltf::Model data_;
    mutable size_t taken_ = 0;  // numbers read so far
};

bool IsTriangles(const tinygltf::Primitive& primitive);  // as against lines, points and strips
