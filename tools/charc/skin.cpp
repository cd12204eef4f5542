#include "charc/skin.h"

#include "formats/error.h"
#include "formats/picture_scale.h"

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
    if (ranked.size() > CHARACTER_INFLUENCES_MAX) ranked.resize(CHARACTER_INFLUENCES_MAX);
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

// A point that the game moves as one: corners that differ only in their texture coordinates share it.
struct Point {
    std::array<float, 3> position;
    std::vector<BoneWeight> weights;
    double dropped = 0;  // weight of further bones
};

// The model's vertices without duplicates: files split them further, for normals and for other materials' meshes.
struct Vertices {
    std::vector<std::array<float, 3>> positions;
    std::vector<uint32_t> sources;  // the first of the model's vertices that is this one
    std::vector<uint32_t> points;   // into the table below
    std::vector<Point> pointTable;
    std::vector<std::array<uint32_t, 3>> triangles;
};

class VertexMerger {
public:
    VertexMerger(const Model& model, const Skeleton& skeleton) : model_(model), skeleton_(skeleton) {}

    Vertices Merge() {
        std::vector<uint32_t> merged;
        for (uint32_t i = 0; i < model_.vertices.size(); ++i)
            merged.push_back(Find(i));
        for (const auto& triangle : model_.triangles)
            out_.triangles.push_back({merged[triangle[0]], merged[triangle[1]], merged[triangle[2]]});
        return std::move(out_);
    }

private:
    using Position = std::array<float, 3>;
    using Numbers = std::vector<double>;

    uint32_t Find(uint32_t source) {
        const ModelVertex& vertex = model_.vertices[source];
        const Vector place = skeleton_.meshToGame(vertex.position);
        CheckVertex(vertex, place);
        const Position position = ToFloats(place);
        Numbers weights;
        for (const ModelInfluence& influence : vertex.influences) {
            weights.push_back(influence.joint);
            weights.push_back(influence.weight);
        }
        const auto [entry, isNew] = vertices_.try_emplace({position, vertex.uv, vertex.material, std::move(weights)},
                                                          static_cast<uint32_t>(out_.sources.size()));
        if (isNew) {
            out_.sources.push_back(source);
            out_.positions.push_back(position);
            out_.points.push_back(FindPoint(position, vertex));
        }
        return entry->second;
    }

    uint32_t FindPoint(const Position& position, const ModelVertex& vertex) {
        Point point{position, {}, 0};
        point.weights = BoneWeights(vertex, skeleton_, point.dropped);
        Numbers key;
        for (const BoneWeight& weight : point.weights) {
            key.push_back(weight.bone);
            key.push_back(weight.weight);
        }
        const auto [entry, isNew] =
            points_.try_emplace({position, std::move(key)}, static_cast<uint32_t>(out_.pointTable.size()));
        if (isNew) out_.pointTable.push_back(std::move(point));
        return entry->second;
    }

    // Refuses coordinates that are too large or not a number.
    void CheckVertex(const ModelVertex& vertex, const Vector& place) const {
        const double distance = Length(place);
        if (!(distance <= FARTHEST)) {
            Refuse(model_.file, 0, fmt::format("has a vertex {:.0f} units from its root joint", distance),
                   fmt::format("make the model or the recipe's 'scale' smaller: {:.0f} are the most", FARTHEST));
        }
        for (const auto& uv : vertex.uv) {
            if (std::max(std::abs(uv[0]), std::abs(uv[1])) <= REPEATS_MAX) continue;
            Refuse(model_.file, 0, fmt::format("has a texture coordinate ({} {})", uv[0], uv[1]),
                   fmt::format("keep within {:.0f} repeats of the picture", REPEATS_MAX));
        }
    }

    static constexpr double FARTHEST = 10000;
    static constexpr double REPEATS_MAX = 1000;

    const Model& model_;
    const Skeleton& skeleton_;
    Vertices out_;
    std::map<std::tuple<Position, std::array<std::array<double, 2>, 2>, int, Numbers>, uint32_t> vertices_;
    std::map<std::pair<Position, Numbers>, uint32_t> points_;
};

size_t CountPoints(const Vertices& vertices) {
    std::vector<uint32_t> used;
    for (const auto& triangle : vertices.triangles) {
        for (const uint32_t vertex : triangle)
            used.push_back(vertices.points[vertex]);
    }
    std::sort(used.begin(), used.end());
    return static_cast<size_t>(std::unique(used.begin(), used.end()) - used.begin());
}

bool TooLarge(const Vertices& vertices) {
    return vertices.triangles.size() > CHARACTER_TRIANGLES_MAX || CountPoints(vertices) > CHARACTER_POINTS_MAX;
}

void Simplify(Vertices& vertices, const Model& model) {
    constexpr float ERROR_MAX = 0.2f;  // share of the model's size
    std::vector<unsigned> indices;
    for (const auto& triangle : vertices.triangles)
        indices.insert(indices.end(), triangle.begin(), triangle.end());
    const size_t before = vertices.triangles.size();
    const size_t points = CountPoints(vertices);
    const size_t first = std::min(before, CHARACTER_TRIANGLES_MAX);  // few triangles may have too many points
    for (size_t target = first; TooLarge(vertices); target = target * 15 / 16) {
        std::vector<unsigned> fewer(indices.size());
        fewer.resize(meshopt_simplify(fewer.data(), indices.data(), indices.size(), vertices.positions[0].data(),
                                      vertices.positions.size(), sizeof vertices.positions[0], target * 3, ERROR_MAX, 0,
                                      nullptr));
        const bool stuck = target < first / 4;
        if (stuck) {
            Refuse(model.file, 0,
                   fmt::format("has {} triangles with {} points, which cannot be simplified to {} with {}", before,
                               points, CHARACTER_TRIANGLES_MAX, CHARACTER_POINTS_MAX),
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
    constexpr double DOUBLE_AREA_MIN = 1e-3;  // square units
    return Length(Cross(edge(a, b), edge(a, c))) < DOUBLE_AREA_MIN;
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
        Refuse(model.file, 0,
               fmt::format("uses the material '{}'", Shown(model.materials[static_cast<size_t>(material)])),
               "add it to 'materials', and a picture of it to every skin");
    }
    return texture;
}

// Takes the points that triangles use into the mesh, in the order of their use.
class PointTaker {
public:
    explicit PointTaker(const Vertices& vertices) : vertices_(vertices), taken_(vertices.pointTable.size(), NONE) {}

    uint32_t Take(uint32_t vertex, SkinnedMesh& mesh) {
        const size_t number = vertices_.points[vertex];
        const Point& point = vertices_.pointTable[number];
        if (taken_[number] == NONE) {
            taken_[number] = static_cast<uint32_t>(mesh.mesh.points.size());
            mesh.mesh.points.push_back(point.position);
            mesh.weights.push_back(point.weights);
            worst_ = std::max(worst_, point.dropped);
            reduced_ += point.dropped > 1e-6 ? 1 : 0;
        }
        return taken_[number];
    }

    void Report(std::vector<std::string>& notes) const {
        if (reduced_ == 0) return;
        notes.push_back(fmt::format("{} points lose all but three bones, the worst {:.0f} % of its weight", reduced_,
                                    100 * worst_));
    }

private:
    static constexpr uint32_t NONE = UINT32_MAX;

    const Vertices& vertices_;
    std::vector<uint32_t> taken_;  // for each point its number in the mesh
    double worst_ = 0;
    size_t reduced_ = 0;
};

}  // namespace

SkinnedMesh BuildSkinnedMesh(const Model& model, const Skeleton& skeleton, const CharacterRecipe& recipe) {
    SkinnedMesh result;
    Vertices vertices = VertexMerger(model, skeleton).Merge();
    if (TooLarge(vertices)) {
        const size_t before = vertices.triangles.size();
        Simplify(vertices, model);
        result.notes.push_back(fmt::format("simplified from {} to {} triangles", before, vertices.triangles.size()));
    }
    const std::vector<int> textures = TexturesOfMaterials(model, recipe);
    PointTaker taker(vertices);
    size_t flat = 0;
    for (const auto& triangle : vertices.triangles) {
        if (IsFlat(vertices.positions[triangle[0]], vertices.positions[triangle[1]], vertices.positions[triangle[2]])) {
            ++flat;
            continue;
        }
        std::array<uint32_t, 3> points, sources;
        for (size_t k = 0; k < 3; ++k) {
            points[k] = taker.Take(triangle[k], result);
            sources[k] = vertices.sources[triangle[k]];
        }
        result.mesh.triangles.push_back(points);
        result.vertices.push_back(sources);
        result.textures.push_back(TextureOf(textures, model.vertices[sources[0]].material, model));
    }
    if (flat > 0) result.notes.push_back(fmt::format("{} triangles without area are left out", flat));
    taker.Report(result.notes);
    return result;
}

std::vector<SkinTriangle> BuildSkin(const Model& model, const SkinnedMesh& mesh, const SkinRecipe& skin) {
    std::vector<Image> pictures;
    for (const auto& path : skin.pictures)
        pictures.push_back(ScaledToTexture(ReadPng(path)));  // as texc does
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
