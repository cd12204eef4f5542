#include "charc/skin.h"

#include "formats/error.h"
#include "formats/image.h"
#include "formats/texture_file.h"

#include <fmt/format.h>
#include <meshoptimizer.h>

#include <algorithm>
#include <map>
#include <tuple>

namespace {

constexpr double HALF_TEXEL = 128;
constexpr double TEXEL = 256;

size_t BlockOf(int bone) {
    const auto found = std::find(CHARACTER_BLOCK_BONES.begin(), CHARACTER_BLOCK_BONES.end(), bone);
    return static_cast<size_t>(found - CHARACTER_BLOCK_BONES.begin());
}

// The strongest influences, in the order in which the game applies them. dropped: the weight of the others.
std::vector<BoneWeight> BoneWeights(const ModelVertex& vertex, const Skeleton& skeleton, double& dropped) {
    std::map<size_t, double> byBlock;
    for (const ModelInfluence& influence : vertex.influences)
        byBlock[BlockOf(skeleton.boneOfJoint[static_cast<size_t>(influence.joint)])] += influence.weight;
    std::vector<std::pair<double, size_t>> ranked;
    for (const auto& [block, weight] : byBlock)
        ranked.emplace_back(-weight, block);
    std::sort(ranked.begin(), ranked.end());
    if (ranked.size() > CHARACTER_MAX_INFLUENCES) ranked.resize(CHARACTER_MAX_INFLUENCES);
    double kept = 0;
    for (const auto& [negative, block] : ranked)
        kept -= negative;
    dropped = 1 - kept;
    std::sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
    std::vector<BoneWeight> weights;
    for (const auto& [negative, block] : ranked)
        weights.push_back({CHARACTER_BLOCK_BONES[block], -negative / kept});
    return weights;
}

std::array<float, 3> ToFloats(const Vector& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
}

// Vertices by what they are: files split them further, for normals and for other materials' meshes.
struct Vertices {
    std::vector<std::array<float, 3>> positions;
    std::vector<uint32_t> sources;  // the first of the model's vertices that is this one
    std::vector<std::array<uint32_t, 3>> triangles;
};

Vertices MergeVertices(const Model& model, const Skeleton& skeleton) {
    using Key = std::tuple<std::array<float, 3>, std::array<std::array<double, 2>, 2>, int, std::vector<double>>;
    std::map<Key, uint32_t> known;
    Vertices result;
    std::vector<uint32_t> merged;
    for (uint32_t i = 0; i < model.vertices.size(); ++i) {
        const ModelVertex& vertex = model.vertices[i];
        const std::array<float, 3> position = ToFloats(skeleton.meshToGame(vertex.position));
        std::vector<double> weights;
        for (const ModelInfluence& influence : vertex.influences) {
            weights.push_back(influence.joint);
            weights.push_back(influence.weight);
        }
        const auto [entry, isNew] = known.try_emplace({position, vertex.uv, vertex.material, std::move(weights)},
                                                      static_cast<uint32_t>(result.sources.size()));
        if (isNew) {
            result.sources.push_back(i);
            result.positions.push_back(position);
        }
        merged.push_back(entry->second);
    }
    for (const auto& triangle : model.triangles)
        result.triangles.push_back({merged[triangle[0]], merged[triangle[1]], merged[triangle[2]]});
    return result;
}

size_t CountPoints(const Vertices& vertices) {
    std::vector<std::array<float, 3>> used;
    for (const auto& triangle : vertices.triangles) {
        for (const uint32_t vertex : triangle)
            used.push_back(vertices.positions[vertex]);
    }
    std::sort(used.begin(), used.end());
    return static_cast<size_t>(std::unique(used.begin(), used.end()) - used.begin());
}

bool TooLarge(const Vertices& vertices) {
    return vertices.triangles.size() > CHARACTER_MAX_TRIANGLES || CountPoints(vertices) > CHARACTER_MAX_POINTS;
}

void Simplify(Vertices& vertices, const Model& model) {
    constexpr float ERROR_LIMIT = 0.2F;  // of the model's size
    std::vector<unsigned> indices;
    for (const auto& triangle : vertices.triangles)
        indices.insert(indices.end(), triangle.begin(), triangle.end());
    const size_t before = vertices.triangles.size();
    for (size_t target = CHARACTER_MAX_TRIANGLES; TooLarge(vertices); target = target * 15 / 16) {
        std::vector<unsigned> fewer(indices.size());
        fewer.resize(meshopt_simplify(fewer.data(), indices.data(), indices.size(), vertices.positions[0].data(),
                                      vertices.positions.size(), sizeof vertices.positions[0], target * 3, ERROR_LIMIT,
                                      0, nullptr));
        const bool stuck = target < CHARACTER_MAX_TRIANGLES / 4;
        if (stuck) {
            Refuse(model.file, 0,
                   fmt::format("has {} triangles, which cannot be simplified to {} with {} points", before,
                               CHARACTER_MAX_TRIANGLES, CHARACTER_MAX_POINTS),
                   "join its loose parts and texture islands, or decimate it in the modelling program");
        }
        vertices.triangles.clear();
        for (size_t i = 0; i + 2 < fewer.size(); i += 3)
            vertices.triangles.push_back({fewer[i], fewer[i + 1], fewer[i + 2]});
    }
}

bool IsFlat(const std::array<float, 3>& a, const std::array<float, 3>& b, const std::array<float, 3>& c) {
    const auto edge = [](const std::array<float, 3>& p, const std::array<float, 3>& q) {
        return Vector{static_cast<double>(q[0]) - static_cast<double>(p[0]),
                      static_cast<double>(q[1]) - static_cast<double>(p[1]),
                      static_cast<double>(q[2]) - static_cast<double>(p[2])};
    };
    constexpr double LEAST_DOUBLE_AREA = 1e-3;  // square units
    return Length(Cross(edge(a, b), edge(a, c))) < LEAST_DOUBLE_AREA;
}

std::vector<int> TexturesOfMaterials(const Model& model, const CharacterRecipe& recipe) {
    std::vector<int> textures;
    for (const std::string& name : model.materials) {
        const auto found = std::find(recipe.materials.begin(), recipe.materials.end(), name);
        textures.push_back(found == recipe.materials.end() ? -1 : static_cast<int>(found - recipe.materials.begin()));
    }
    return textures;
}

int TextureOf(const std::vector<int>& textures, int material, const Model& model) {
    if (material < 0 || static_cast<size_t>(material) >= textures.size()) {
        Refuse(model.file, 0, "has triangles without a material", "give them one that the recipe names");
    }
    const int texture = textures[static_cast<size_t>(material)];
    if (texture < 0) {
        Refuse(model.file, 0, fmt::format("uses the material '{}'", model.materials[static_cast<size_t>(material)]),
               "add it to 'materials', and a picture of it to every skin");
    }
    return texture;
}

// Points out of vertices: what differs in texture only is one point.
class Welder {
public:
    Welder(const Model& model, const Skeleton& skeleton, const Vertices& vertices)
        : model_(model), skeleton_(skeleton), vertices_(vertices) {}

    uint32_t PointOf(uint32_t vertex, SkinnedMesh& mesh) {
        double dropped = 0;
        std::vector<BoneWeight> weights = BoneWeights(model_.vertices[vertices_.sources[vertex]], skeleton_, dropped);
        std::vector<double> key;
        for (const BoneWeight& weight : weights) {
            key.push_back(weight.bone);
            key.push_back(weight.weight);
        }
        const auto& position = vertices_.positions[vertex];
        const auto [entry, isNew] =
            known_.try_emplace({position, std::move(key)}, static_cast<uint32_t>(mesh.mesh.points.size()));
        if (isNew) {
            mesh.mesh.points.push_back(position);
            mesh.weights.push_back(std::move(weights));
            worst_ = std::max(worst_, dropped);
            reduced_ += dropped > 1e-6 ? 1 : 0;
        }
        return entry->second;
    }

    void Report(std::vector<std::string>& notes) const {
        if (reduced_ == 0) return;
        notes.push_back(fmt::format("{} points lose all but three bones, the worst {:.0f} % of its weight", reduced_,
                                    100 * worst_));
    }

private:
    const Model& model_;
    const Skeleton& skeleton_;
    const Vertices& vertices_;
    std::map<std::pair<std::array<float, 3>, std::vector<double>>, uint32_t> known_;
    double worst_ = 0;
    size_t reduced_ = 0;
};

}  // namespace

SkinnedMesh BuildSkinnedMesh(const Model& model, const Skeleton& skeleton, const CharacterRecipe& recipe) {
    SkinnedMesh result;
    Vertices vertices = MergeVertices(model, skeleton);
    if (TooLarge(vertices)) {
        const size_t before = vertices.triangles.size();
        Simplify(vertices, model);
        result.notes.push_back(fmt::format("simplified from {} to {} triangles", before, vertices.triangles.size()));
    }
    const std::vector<int> textures = TexturesOfMaterials(model, recipe);
    Welder welder(model, skeleton, vertices);
    size_t flat = 0;
    for (const auto& triangle : vertices.triangles) {
        if (IsFlat(vertices.positions[triangle[0]], vertices.positions[triangle[1]], vertices.positions[triangle[2]])) {
            ++flat;
            continue;
        }
        std::array<uint32_t, 3> points, sources;
        for (size_t k = 0; k < 3; ++k) {
            points[k] = welder.PointOf(triangle[k], result);
            sources[k] = vertices.sources[triangle[k]];
        }
        result.mesh.triangles.push_back(points);
        result.vertices.push_back(sources);
        result.textures.push_back(TextureOf(textures, model.vertices[sources[0]].material, model));
    }
    if (flat > 0) result.notes.push_back(fmt::format("{} triangles without area are left out", flat));
    welder.Report(result.notes);
    return result;
}

std::vector<SkinTriangle> BuildSkin(const Model& model, const SkinnedMesh& mesh, const SkinRecipe& skin) {
    std::vector<Image> pictures;
    for (const auto& path : skin.pictures) {
        pictures.push_back(ReadPng(path));
        if (!IsTextureSide(pictures.back().width) || !IsTextureSide(pictures.back().height)) {
            Refuse(path.string(), 0, fmt::format("is {} x {} texels", pictures.back().width, pictures.back().height),
                   "make each side 8, 16, 32, 64 or 128");
        }
    }
    std::vector<SkinTriangle> triangles;
    for (size_t i = 0; i < mesh.vertices.size(); ++i) {
        SkinTriangle triangle;
        triangle.texture = static_cast<uint32_t>(mesh.textures[i]);
        const Image& picture = pictures[triangle.texture];
        for (size_t k = 0; k < 3; ++k) {
            const auto& uv = model.vertices[mesh.vertices[i][k]].uv[skin.uvSet];
            const double sides[2] = {picture.width * TEXEL, picture.height * TEXEL};
            for (size_t c = 0; c < 2; ++c) {
                // Half a texel inside, where no renderer wraps around to the other edge.
                const double inside = std::clamp(uv[c] * sides[c], HALF_TEXEL, sides[c] - HALF_TEXEL);
                triangle.corners[k][c] = static_cast<float>(uv[c] >= 0 && uv[c] <= 1 ? inside : uv[c] * sides[c]);
            }
        }
        triangles.push_back(triangle);
    }
    return triangles;
}

std::vector<WeightBlock> BuildWeightBlocks(const SkinnedMesh& mesh) {
    std::vector<WeightBlock> blocks(CHARACTER_BONES);
    for (size_t point = 0; point < mesh.weights.size(); ++point) {
        double sum = 0;
        for (const BoneWeight& weight : mesh.weights[point]) {
            WeightBlock& block = blocks[BlockOf(weight.bone)];
            sum += weight.weight;
            const auto index = static_cast<uint16_t>(point);
            if (&weight == &mesh.weights[point].front()) {
                block.hard.push_back(index);
                continue;
            }
            const double share = std::min(65535.0, std::floor(weight.weight / sum * 65536 + 0.5));
            if (share > 0) block.soft.push_back({index, static_cast<uint16_t>(share)});
        }
    }
    return blocks;
}
