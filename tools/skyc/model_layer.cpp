#include "formats/error.h"
#include "gltf/gltf_file.h"
#include "skyc/layers.h"
#include "transforms/angles.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace {

constexpr float UNITS_PER_METRE = 100;
constexpr double REPEATS_MAX = 1000;

// Adds a model to the sky. The model's front, +z, points to where the player comes from.
class ModelLayer {
public:
    ModelLayer(const TomlTable& layer, const std::filesystem::path& path, double scale, double bearing)
        : layer_(layer), file_(path), scale_(scale), turn_(SineCosineOfDegrees(bearing)) {}

    void Read(SkyShape& shape) const {
        const GltfNodes nodes = file_.Nodes();
        const std::vector<Affine> places = PlacesOf(nodes);
        const size_t before = shape.size();
        for (size_t i = 0; i < nodes.nodes.size(); ++i) {
            const int mesh = file_.Data().nodes[i].mesh;
            if (mesh < 0) continue;
            for (const tinygltf::Primitive& primitive : file_.Pick(file_.Data().meshes, mesh, "mesh").primitives) {
                if (IsTriangles(primitive)) AddTriangles(primitive, places[i], shape);
            }
        }
        if (shape.size() == before) file_.RefuseFile("has no triangles", "export a mesh");
    }

private:
    Vector ToSky(const Vector& p) const {
        const double x = p.x, z = -p.z;
        return Vector{x * turn_.cosine + z * turn_.sine, p.y, z * turn_.cosine - x * turn_.sine} * scale_;
    }

    void AddTriangles(const tinygltf::Primitive& primitive, const Affine& place, SkyShape& shape) const {
        const GltfNumbers positions = file_.Attribute(primitive, "POSITION", 3, 0);
        const GltfNumbers uv = file_.Attribute(primitive, "TEXCOORD_0", 2, positions.Count());
        if (primitive.material < 0) file_.RefuseFile("has a mesh without material", "give it one of the level's names");
        const std::string& material = file_.Pick(file_.Data().materials, primitive.material, "material").name;
        const std::vector<uint32_t> corners = file_.TriangleCorners(primitive, positions.Count());
        CheckCount(shape.size() + corners.size() / 3, layer_);
        const bool mirrored = Determinant(place) < 0;
        for (size_t i = 0; i < corners.size(); i += 3) {
            SkyPolygon polygon{material, {}, false};
            const std::array<size_t, 3> order =
                mirrored ? std::array<size_t, 3>{0, 2, 1} : std::array<size_t, 3>{0, 1, 2};
            for (const size_t k : order) {
                const size_t vertex = corners[i + k];
                const double* p = positions[vertex];
                if (!(std::max(std::abs(uv[vertex][0]), std::abs(uv[vertex][1])) <= REPEATS_MAX))
                    file_.RefuseFile("has a texture coordinate of more than 1000 repeats", "lay out its UVs again");
                polygon.corners.push_back({ToSky(place({p[0], p[1], p[2]})), uv[vertex][0], uv[vertex][1]});
            }
            shape.push_back(std::move(polygon));
        }
    }

    const TomlTable& layer_;
    GltfFile file_;
    double scale_;
    SineCosine turn_;
};

}  // namespace

void AddModel(const TomlTable& layer, SkyShape& shape) {
    const std::filesystem::path path = std::filesystem::path(layer.File()).parent_path() / layer.NeedText("file");
    const auto scale = static_cast<double>(layer.Number("scale", UNITS_PER_METRE, 0.001f, 100000));
    ModelLayer(layer, path, scale, static_cast<double>(layer.Number("bearing", 0, -360, 360))).Read(shape);
}
