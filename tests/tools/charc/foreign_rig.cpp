#include "foreign_rig.h"

#include "charc/recipe.h"
#include "formats/binary.h"

#include <fmt/format.h>

#include <cmath>
#include <cstring>

namespace {

Quat Product(const Quat& a, const Quat& b) {
    return {
        a[0] * b[0] - a[1] * b[1] - a[2] * b[2] - a[3] * b[3], a[0] * b[1] + b[0] * a[1] + a[2] * b[3] - a[3] * b[2],
        a[0] * b[2] + b[0] * a[2] + a[3] * b[1] - a[1] * b[3], a[0] * b[3] + b[0] * a[3] + a[1] * b[2] - a[2] * b[1]};
}

// Floats at the end of the buffer, and the accessor that leads there.
int AddNumbers(tinygltf::Model& gltf, const std::vector<double>& values, int type, int componentType) {
    tinygltf::BufferView view;
    view.buffer = 0;
    auto& data = gltf.buffers[0].data;
    view.byteOffset = data.size();
    for (const double value : values) {
        const auto append = [&](auto number) {
            const size_t at = data.size();
            data.resize(at + sizeof number);
            std::memcpy(data.data() + at, &number, sizeof number);
        };
        if (componentType == TINYGLTF_COMPONENT_TYPE_FLOAT)
            append(static_cast<float>(value));
        else
            append(static_cast<uint16_t>(value));
    }
    view.byteLength = data.size() - view.byteOffset;
    data.resize((data.size() + 3) / 4 * 4);
    gltf.bufferViews.push_back(view);
    tinygltf::Accessor accessor;
    accessor.bufferView = static_cast<int>(gltf.bufferViews.size()) - 1;
    accessor.componentType = componentType;
    accessor.type = type;
    accessor.count = values.size() / static_cast<size_t>(tinygltf::GetNumComponentsInType(static_cast<uint32_t>(type)));
    if (type == TINYGLTF_TYPE_SCALAR || type == TINYGLTF_TYPE_VEC3) {
        const auto width = static_cast<size_t>(tinygltf::GetNumComponentsInType(static_cast<uint32_t>(type)));
        accessor.minValues.assign(width, -1e4);
        accessor.maxValues.assign(width, 1e4);
    }
    gltf.accessors.push_back(accessor);
    return static_cast<int>(gltf.accessors.size()) - 1;
}

void AddChannel(tinygltf::Animation& animation, int node, const char* path, int input, int output) {
    tinygltf::AnimationSampler sampler;
    sampler.input = input;
    sampler.output = output;
    sampler.interpolation = "LINEAR";
    animation.samplers.push_back(sampler);
    tinygltf::AnimationChannel channel;
    channel.sampler = static_cast<int>(animation.samplers.size()) - 1;
    channel.target_node = node;
    channel.target_path = path;
    animation.channels.push_back(channel);
}

std::vector<double> ToGltfOrder(const Quat& q) {
    return {q[1], q[2], q[3], q[0]};
}

constexpr double ARMATURE_SCALE = 0.01;
const Quat ARMATURE_TURN{std::sqrt(0.5), -std::sqrt(0.5), 0, 0};  // z up becomes y up

}  // namespace

Matrix Multiply(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 4; ++j) {
            for (size_t k = 0; k < 3; ++k)
                product[i][j] += a[i][k] * b[k][j];
        }
        product[i][3] += a[i][3];
    }
    return product;
}

Matrix Rotation(const Quat& q) {
    const auto& [w, x, y, z] = q;
    return {{{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y), 0},
             {2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x), 0},
             {2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z, 0}}};
}

Matrix Moved(Matrix m, const Vec& t) {
    for (size_t i = 0; i < 3; ++i)
        m[i][3] += t[i];
    return m;
}

Vec Apply(const Matrix& m, const Vec& p) {
    Vec r;
    for (size_t i = 0; i < 3; ++i)
        r[i] = m[i][0] * p[0] + m[i][1] * p[1] + m[i][2] * p[2] + m[i][3];
    return r;
}

Matrix InverseOf(const Matrix& rigid) {
    Matrix inverse{};
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 3; ++j) {
            inverse[i][j] = rigid[j][i];
            inverse[i][3] -= rigid[j][i] * rigid[j][3];
        }
    }
    return inverse;
}

double Random::Next() {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<double>(state_ >> 8) / 16777216.0;
}

Quat Random::Turn(double mostRadians) {
    const Vec axis{Next(-1, 1), Next(-1, 1), Next(-1, 1)};
    const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]) + 1e-9;
    const double half = Next(0, mostRadians) / 2;
    const double s = std::sin(half) / length;
    return {std::cos(half), axis[0] * s, axis[1] * s, axis[2] * s};
}

ForeignRig::ForeignRig() {
    Random random;
    // 0 the hips; three legs of the tree grow from it and branch, so that walks need pushes and pops.
    parents = {-1, 0, 1, 2, 3, 2, 2, 0, 0, 7, 8, 9, 10, 11, 12, 5, 6, 15, 16, 17, 18, 4, 19, 20};
    for (size_t j = 0; j < parents.size(); ++j) {
        names.push_back(fmt::format("Bip.{:03}", j));
        bindTurns.push_back(random.Turn(3));
        bindPositions.push_back({random.Next(-15, 15), random.Next(-15, 15), j == 0 ? 95 : random.Next(5, 20)});
    }
    for (int j = 0; j < static_cast<int>(parents.size()); ++j)
        AddBlob(j, 2);
    for (int c = 0; c < 2; ++c) {
        Clip clip{fmt::format("Armature|take {}", c), {}, {}, {}};
        for (int k = 0; k < 5; ++k) {
            clip.times.push_back(0.5 + 0.25 * k);
            std::vector<Quat> turns;
            for (const Quat& bind : bindTurns)
                turns.push_back(Product(bind, random.Turn(2.5)));
            clip.turns.push_back(turns);
            clip.rootPositions.push_back({random.Next(-9, 9), random.Next(-9, 9), random.Next(80, 100)});
        }
        clips.push_back(clip);
    }
    // What folds has no motion of its own, or the game could not show it.
    for (Clip& clip : clips) {
        for (auto& turns : clip.turns) {
            turns[22] = bindTurns[22];
            turns[23] = bindTurns[23];
        }
    }
}

void ForeignRig::AddBlob(int joint, int rings) {
    Random random;
    const Vec centre = Apply(InArmature(bindTurns, bindPositions[0])[static_cast<size_t>(joint)], {0, 0, 0});
    const int parent = std::max(parents[static_cast<size_t>(joint)], 0);
    const int above = std::max(parents[static_cast<size_t>(parent)], 0);
    const auto first = static_cast<uint32_t>(vertices.size());
    const int columns = rings + 1;
    for (int i = 0; i <= rings; ++i) {
        for (int k = 0; k < columns; ++k) {
            const double up = 3.1 * i / rings + 0.02, around = 6.2831853 * k / columns;
            Vertex vertex;
            vertex.position = {centre[0] + 8 * std::sin(up) * std::cos(around),
                               centre[1] + 8 * std::sin(up) * std::sin(around), centre[2] + 8 * std::cos(up)};
            vertex.uv = {static_cast<double>(k) / columns, static_cast<double>(i) / rings};
            vertex.joints = {joint, parent, above, 0};
            const double a = random.Next(0.4, 1), b = i % 2 == 0 ? random.Next() : 0, c = k == 1 ? random.Next() : 0;
            vertex.weights = {a / (a + b + c), b / (a + b + c), c / (a + b + c), 0};
            vertices.push_back(vertex);
        }
    }
    for (int i = 0; i < rings; ++i) {
        for (int k = 0; k < columns; ++k) {
            const auto at = [&](int row, int column) {
                return first + static_cast<uint32_t>(row * columns + column % columns);
            };
            triangles.push_back({at(i, k), at(i + 1, k), at(i + 1, k + 1)});
            triangles.push_back({at(i, k), at(i + 1, k + 1), at(i, k + 1)});
        }
    }
}

Matrix ForeignRig::Armature() const {
    Matrix m = Rotation(ARMATURE_TURN);
    for (auto& row : m) {
        for (double& value : row)
            value *= ARMATURE_SCALE;
    }
    return Moved(m, {0.3, 0, -0.2});
}

std::vector<Matrix> ForeignRig::InArmature(const std::vector<Quat>& turns, const Vec& root) const {
    std::vector<Matrix> places;
    for (size_t j = 0; j < parents.size(); ++j) {
        const Matrix local = Moved(Rotation(turns[j]), j == 0 ? root : bindPositions[j]);
        places.push_back(j == 0 ? local : Multiply(places[static_cast<size_t>(parents[j])], local));
    }
    return places;
}

Vec ForeignRig::SkinnedVertex(const Vertex& vertex, const Clip& clip, size_t key) const {
    const std::vector<Matrix> bind = InArmature(bindTurns, bindPositions[0]);
    const std::vector<Matrix> posed = InArmature(clip.turns[key], clip.rootPositions[key]);
    Vec sum{};
    for (size_t k = 0; k < 4; ++k) {
        const auto j = static_cast<size_t>(vertex.joints[k]);
        const Vec p = Apply(Multiply(Armature(), Multiply(posed[j], InverseOf(bind[j]))), vertex.position);
        for (size_t i = 0; i < 3; ++i)
            sum[i] += vertex.weights[k] * p[i];
    }
    return sum;
}

tinygltf::Model ForeignRig::ToGltf() const {
    tinygltf::Model gltf;
    gltf.asset.version = "2.0";
    gltf.buffers.emplace_back();
    tinygltf::Primitive primitive;
    std::vector<double> positions, uvs, joints, weights, indices;
    for (const Vertex& vertex : vertices) {
        positions.insert(positions.end(), vertex.position.begin(), vertex.position.end());
        uvs.insert(uvs.end(), vertex.uv.begin(), vertex.uv.end());
        joints.insert(joints.end(), vertex.joints.begin(), vertex.joints.end());
        weights.insert(weights.end(), vertex.weights.begin(), vertex.weights.end());
    }
    for (const auto& triangle : triangles)
        indices.insert(indices.end(), triangle.begin(), triangle.end());
    constexpr int FLOAT = TINYGLTF_COMPONENT_TYPE_FLOAT, SHORT = TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT;
    primitive.attributes["POSITION"] = AddNumbers(gltf, positions, TINYGLTF_TYPE_VEC3, FLOAT);
    primitive.attributes["TEXCOORD_0"] = AddNumbers(gltf, uvs, TINYGLTF_TYPE_VEC2, FLOAT);
    primitive.attributes["JOINTS_0"] = AddNumbers(gltf, joints, TINYGLTF_TYPE_VEC4, SHORT);
    primitive.attributes["WEIGHTS_0"] = AddNumbers(gltf, weights, TINYGLTF_TYPE_VEC4, FLOAT);
    primitive.indices = AddNumbers(gltf, indices, TINYGLTF_TYPE_SCALAR, SHORT);
    primitive.material = 0;
    primitive.mode = TINYGLTF_MODE_TRIANGLES;
    gltf.meshes.emplace_back();
    gltf.meshes[0].primitives.push_back(primitive);
    gltf.materials.emplace_back();
    gltf.materials[0].name = "Material.001";
    tinygltf::Skin skin;
    std::vector<double> binds;
    const std::vector<Matrix> places = InArmature(bindTurns, bindPositions[0]);
    for (size_t j = 0; j < parents.size(); ++j) {
        tinygltf::Node node;
        node.name = names[j];
        node.rotation = ToGltfOrder(bindTurns[j]);
        node.translation.assign(bindPositions[j].begin(), bindPositions[j].end());
        gltf.nodes.push_back(node);
        if (j > 0) gltf.nodes[static_cast<size_t>(parents[j])].children.push_back(static_cast<int>(j));
        skin.joints.push_back(static_cast<int>(j));
        const Matrix inverse = InverseOf(places[j]);
        for (size_t c = 0; c < 4; ++c) {
            for (size_t r = 0; r < 3; ++r)
                binds.push_back(inverse[r][c]);
            binds.push_back(c == 3 ? 1 : 0);
        }
    }
    skin.inverseBindMatrices = AddNumbers(gltf, binds, TINYGLTF_TYPE_MAT4, FLOAT);
    gltf.skins.push_back(skin);
    tinygltf::Node body, armature;
    body.name = "Body";
    body.mesh = body.skin = 0;
    armature.name = "Armature";
    armature.rotation = ToGltfOrder(ARMATURE_TURN);
    armature.scale.assign(3, ARMATURE_SCALE);
    armature.translation = {0.3, 0, -0.2};
    armature.children = {0, static_cast<int>(parents.size())};
    gltf.nodes.push_back(body);
    gltf.nodes.push_back(armature);
    for (const Clip& clip : clips) {
        tinygltf::Animation animation;
        animation.name = clip.name;
        const int input = AddNumbers(gltf, clip.times, TINYGLTF_TYPE_SCALAR, FLOAT);
        for (size_t j = 0; j < parents.size(); ++j) {
            std::vector<double> turns;
            for (const auto& key : clip.turns) {
                const std::vector<double> turn = ToGltfOrder(key[j]);
                turns.insert(turns.end(), turn.begin(), turn.end());
            }
            AddChannel(animation, static_cast<int>(j), "rotation", input,
                       AddNumbers(gltf, turns, TINYGLTF_TYPE_VEC4, FLOAT));
        }
        std::vector<double> roots;
        for (const Vec& position : clip.rootPositions)
            roots.insert(roots.end(), position.begin(), position.end());
        AddChannel(animation, 0, "translation", input, AddNumbers(gltf, roots, TINYGLTF_TYPE_VEC3, FLOAT));
        gltf.animations.push_back(animation);
    }
    return gltf;
}

void ForeignRig::Write(const std::filesystem::path& path) const {
    WriteGltf(ToGltf(), path);
}

std::string ForeignRig::Recipe(const std::string& model) const {
    const std::vector<std::string> bones(names.begin(), names.begin() + 22);
    std::string text = fmt::format("model = '{}'\nscale = 80\norigin = 100\njoints = ['{}']\nfold = ['{}', '{}']\n"
                                   "materials = ['Material.001']\n",
                                   model, fmt::join(bones, "', '"), names[22], names[23]);
    for (const char* const skin : CHARACTER_SKIN_FILES)
        text += fmt::format("[[skin]]\nfile = '{}'\npictures = ['skin.png']\n", skin);
    for (size_t i = 0; i < CHARACTER_CLIP_FILES.size(); ++i) {
        text += fmt::format("[[clip]]\nfile = '{}'\nclip = '{}'\nlength = 410\nkeys = [10, 110, 210, 310, 410]\n",
                            CHARACTER_CLIP_FILES[i], clips[i % clips.size()].name);
    }
    return text;
}

void WriteGltf(const tinygltf::Model& gltf, const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    tinygltf::TinyGLTF().WriteGltfSceneToFile(&gltf, path.string(), true, true, false, true);
}

void WriteText(const std::filesystem::path& path, const std::string& text) {
    WriteWholeFile(path, {text.begin(), text.end()});
}
