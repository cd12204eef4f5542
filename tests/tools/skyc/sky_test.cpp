#include "formats/files.h"
#include "skyc/compile.h"
#include "skyc/layers.h"
#include "support/content_error.h"

#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <cmath>
#include <cstring>

namespace {

namespace fs = std::filesystem;

const fs::path FOLDER = fs::path(testing::TempDir()) / "sky";
const std::vector<Material> MATERIALS = {{3, "blue", 128, 64}, {4, "star", 8, 8}, {92, "sky", 8, 8, MATERIAL_SKY}};

StaticObjectFile Compile(const std::string& text) {
    WriteWholeFile(FOLDER / "sky.toml", {text.begin(), text.end()});
    const StaticObjectFile sky = CompileSky(ReadSky(FOLDER / "sky.toml"), MATERIALS, "sky.toml");
    return DecodeStaticObject(EncodeStaticObject(sky, "sky.toml"), "sky.sob");
}

// Copies of one triangle of three corners, each of five floats: place, then u and v.
void WriteTriangle(const std::vector<float>& numbers, size_t copies = 1) {
    tinygltf::Model gltf;
    gltf.buffers.emplace_back().data.resize(numbers.size() * sizeof(float));
    std::memcpy(gltf.buffers[0].data.data(), numbers.data(), numbers.size() * sizeof(float));
    tinygltf::BufferView& view = gltf.bufferViews.emplace_back();
    view.buffer = 0;
    view.byteLength = gltf.buffers[0].data.size();
    view.byteStride = 5 * sizeof(float);
    for (const int type : {TINYGLTF_TYPE_VEC3, TINYGLTF_TYPE_VEC2}) {
        tinygltf::Accessor& accessor = gltf.accessors.emplace_back();
        accessor.bufferView = 0;
        accessor.byteOffset = type == TINYGLTF_TYPE_VEC3 ? 0 : 3 * sizeof(float);
        accessor.componentType = TINYGLTF_COMPONENT_TYPE_FLOAT;
        accessor.count = 3;
        accessor.type = type;
    }
    gltf.materials.emplace_back().name = "blue";
    tinygltf::Primitive& primitive = gltf.meshes.emplace_back().primitives.emplace_back();
    primitive.attributes = {{"POSITION", 0}, {"TEXCOORD_0", 1}};
    primitive.material = 0;
    gltf.meshes[0].primitives.resize(copies, tinygltf::Primitive(primitive));
    gltf.nodes.emplace_back().mesh = 0;
    gltf.nodes[0].translation = {0, 1, 0};
    gltf.scenes.emplace_back().nodes = {0};
    fs::create_directories(FOLDER);
    tinygltf::TinyGLTF().WriteGltfSceneToFile(&gltf, (FOLDER / "sky.glb").string(), true, true, false, true);
}

const std::string DOME = "[[layer]]\nkind = 'dome'\nsegments = 8\n"
                         "[[layer.band]]\nfrom = -90\nto = 10\nmaterial = 'blue'\nflat = 500\n"
                         "[[layer.band]]\nfrom = 10\nto = 90\nmaterial = 'blue'\naround = 4\nrows = 2\n";

}  // namespace

TEST(Sky, DomeClosesAroundTheEye) {
    const StaticObjectFile sky = Compile(DOME);
    EXPECT_EQ(sky.polygons.size(), 24u);
    EXPECT_EQ(sky.points.size(), 2 + 2 * 8u) << "bands meet in the same points";
    for (const WorldVector& p : sky.points)
        EXPECT_NEAR(std::hypot(p[0], p[1] - 77, p[2]), 1500, 0.01);
    // Every edge has a neighbour that runs the other way.
    std::vector<std::pair<int, int>> edges;
    for (const StaticObjectPolygon& polygon : sky.polygons) {
        EXPECT_EQ(polygon.texture, 3);
        for (size_t k = 0; k < polygon.corners.size(); ++k)
            edges.emplace_back(polygon.corners[k].point, polygon.corners[(k + 1) % polygon.corners.size()].point);
    }
    for (const auto& [a, b] : edges)
        EXPECT_EQ(std::count(edges.begin(), edges.end(), std::pair(b, a)), 1);
    // A picture of four around fills two segments and two rows, and keeps half a texel inside its border.
    const StaticObjectPolygon& first = sky.polygons[8];
    EXPECT_FLOAT_EQ(first.corners[0].u, 128);
    EXPECT_FLOAT_EQ(first.corners[1].u, 128 * 128);
    EXPECT_FLOAT_EQ(first.corners[0].v, 64 * 256 - 128);
    EXPECT_FLOAT_EQ(first.corners[2].v, 32 * 256);
}

TEST(Sky, PicturesStandWhereTheDescriptionSays) {
    const StaticObjectFile sky = Compile("[[layer]]\nkind='disc'\nmaterial='star'\nbearing=90\nelevation=0\nsize=10\n"
                                         "[[layer]]\nkind='stars'\nmaterial='star'\ncount=40\nfrom=20\n");
    const float half = 1500 * std::tan(5 * 3.14159265f / 180);
    const WorldVector& corner = sky.points[sky.polygons[0].corners[0].point];  // lower left, as the eye sees it
    EXPECT_NEAR(corner[0], 1500, 0.01);
    EXPECT_NEAR(corner[1], 77 - half, 0.01);
    EXPECT_NEAR(corner[2], half, 0.01);
    ASSERT_EQ(sky.polygons.size(), 41u);
    for (size_t i = 4; i < sky.points.size(); ++i)
        EXPECT_GT(sky.points[i][1], 77 + 1500 * 0.33f);
}

TEST(Sky, ModelKeepsItsPlaceAndItsSide) {
    const std::string layer = "[[layer]]\nkind = 'model'\nfile = 'sky.glb'\n";
    WriteTriangle({-1, 0, -10, 0, 1, 1, 0, -10, 1, 1, 0, 2, -10, 0.5f, 0});
    const StaticObjectFile sky = Compile(layer);
    ASSERT_EQ(sky.polygons.size(), 1u);
    EXPECT_EQ(sky.points[0], (WorldVector{-100, 177, 1000})) << "what is behind the model's front lies ahead";
    EXPECT_FLOAT_EQ(sky.polygons[0].corners[1].u, 128 * 256);
    EXPECT_FLOAT_EQ(sky.polygons[0].plane.normal[2], 1);
    WriteTriangle({1, 0, -10, 1, 1, -1, 0, -10, 0, 1, 0, 2, -10, 0.5f, 0});
    ExpectRefusal("turned away from the eye", [&] { Compile(layer); });
    WriteTriangle({-1, 0, -10, 0, 1, 1, 0, -10, 1, 1, 0, 2, -10, 0.5f, 0}, 1001);
    ExpectRefusal("sky.toml:1: the sky has 1001 polygons up to this layer", [&] { Compile(layer); });
    WriteTriangle({-1, 0, -10, 0, 1, 1, 0, -10, 1e30f, 1, 0, 2, -10, 0.5f, 0});
    ExpectRefusal("a texture coordinate of more than 1000 repeats", [&] { Compile(layer); });
}

TEST(Sky, BadDescriptionsAreRefusedWithTheirPlace) {
    const std::string band = "[[layer]]\nkind = 'dome'\n[[layer.band]]\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[[layer]]\nkind = 'cube'\n", "sky.toml:2: 'kind' 'cube' is not known"},
        {"[[layer]]\nkind = 'dome'\n", "sky.toml:1: the dome has no bands"},
        {band + "from = 20\nto = 10\nmaterial = 'blue'\n", "sky.toml:5: 'to' is not above 'from'"},
        {band + "from = 0\nto = 10\nmaterial = 'blue'\n[[layer.band]]\nfrom = 11\nmaterial = 'blue'\n",
         "sky.toml:8: 'from' is not where the band before ends"},
        {band + "material = 'blue'\naround = 5\n", "sky.toml:5: 'around' does not divide the 16 segments"},
        {"", "sky.toml:1: the sky has no layers"},
        {"\n" + band + "material = 'green'\n", "sky.toml:2: the level has no material 'green'"},
        {band + "material = 'sky'\n", "'sky' is never drawn"},
        {band + "material = 'blue'\nradios = 3\n", "sky.toml:5: 'radios' is not known here"},
        {"[[layer]]\nkind = 'disc'\nmaterial = 'star'\nradius = 7000\n", "'radius' is 7000: give a number"},
        {"[[layer]]\nkind = 'disc'\nmaterial = 'star'\nradius = 6000\n", "has a corner 60"},
        {"[[layer]]\nkind = 'stars'\nmaterial = 'star'\ncount = 990\n" + DOME,
         "the sky has 1014 polygons up to this layer"},
        {"[[layer]]\nkind = 'sheet'\nmaterial = 'blue'\n", "'flat' is missing"},
        {"[[layer]]\nkind = 'model'\nfile = 'none.glb'\n", "none.glb"},
    };
    for (const auto& row : cases)
        ExpectRefusal(row.second, [&] { Compile(row.first); });
}
