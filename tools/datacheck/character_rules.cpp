#include "datacheck/rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace {

const char* const REBUILD = "build it again with charc";
constexpr double UNIT_TOLERANCE = 0.01;

void CheckMesh(const CharacterData& character, Report& report) {
    const CharacterMesh& mesh = *character.mesh;
    const auto limit = [&](const char* what, size_t count, size_t most, const char* remedy) {
        if (count > most)
            report.Problem(character.MeshPath(), "", fmt::format("{}: {}, at most {}", what, count, most), remedy);
    };
    limit("points", mesh.points.size(), CHARACTER_POINTS_MAX, "simplify the model");
    limit("triangles", mesh.triangles.size(), CHARACTER_TRIANGLES_MAX, "simplify the model");
    if (mesh.boneCount == CHARACTER_BONES) return;
    report.Problem(character.MeshPath(), "",
                   fmt::format("has {} bones, {} are needed", mesh.boneCount, CHARACTER_BONES), REBUILD);
}

void CheckSkin(const std::string& path, const std::vector<SkinTriangle>& skin, const CharacterData& character,
               Report& report) {
    if (character.mesh && skin.size() != character.mesh->triangles.size()) {
        report.Problem(path, "",
                       fmt::format("has {} triangles, the mesh {}", skin.size(), character.mesh->triangles.size()),
                       REBUILD);
    }
    for (size_t i = 0; i < skin.size(); ++i) {
        if (skin[i].texture < CHAR_TEXTURE_COUNT) continue;
        report.Problem(path, fmt::format("triangle {}", i),
                       fmt::format("uses the skin's texture {}, there are {}", skin[i].texture, CHAR_TEXTURE_COUNT),
                       REBUILD);
    }
}

// A point is placed by one bone, then blended towards others. Blending a point that is not placed would use the frame
// before.
void CheckWeights(const CharacterData& character, Report& report) {
    const std::vector<WeightBlock>& blocks = *character.weights;
    if (blocks.size() != CHARACTER_BONES) {
        report.Problem(character.WeightsPath(), "",
                       fmt::format("has {} blocks, {} are needed", blocks.size(), CHARACTER_BONES), REBUILD);
    }
    if (!character.mesh) return;
    std::vector<int> placed(character.mesh->points.size(), 0);
    const auto tell = [&](size_t point, const char* wrong) {
        report.Problem(character.WeightsPath(), fmt::format("point {}", point), wrong, REBUILD);
    };
    for (const WeightBlock& block : blocks) {
        for (const uint16_t point : block.hard) {
            if (point >= placed.size())
                tell(point, "is no point of the mesh");
            else
                ++placed[point];
        }
        for (const SoftPoint& soft : block.soft) {
            if (soft.point >= placed.size())
                tell(soft.point, "is no point of the mesh");
            else if (placed[soft.point] == 0)
                tell(soft.point, "is blended before it is placed");
        }
    }
    for (size_t point = 0; point < placed.size(); ++point) {
        if (placed[point] != 1) tell(point, placed[point] == 0 ? "is moved by no bone" : "is placed more than once");
    }
}

bool IsRotation(const RotationKey& key) {
    double square = 0;
    for (const double component : key.rotation)
        square += component * component;
    return std::abs(square - 1) < UNIT_TOLERANCE;
}

// For each bone whether points follow it. A bone without any, which the model lacks, needs no pose.
std::vector<char> BonesInUse(const CharacterData& character) {
    std::vector<char> used(CHARACTER_BONES, character.weights ? 0 : 1);
    used[0] = 1;
    for (size_t i = 0; character.weights && i < std::min(character.weights->size(), size_t{CHARACTER_BONES}); ++i) {
        const WeightBlock& block = (*character.weights)[i];
        if (!block.hard.empty() || !block.soft.empty()) used[static_cast<size_t>(CHARACTER_BLOCK_BONES[i])] = 1;
    }
    return used;
}

void CheckClip(const std::string& path, const CharacterAnimation& clip, const std::vector<char>& used, Report& report) {
    if (clip.length <= CHARACTER_FIRST_TIME) report.Problem(path, "", "has no length", REBUILD);
    if (clip.bones.size() < CHARACTER_BONES) {
        report.Problem(path, "",
                       fmt::format("has tracks for {} bones, {} are needed", clip.bones.size(), CHARACTER_BONES),
                       REBUILD);
    }
    for (size_t bone = 0; bone < clip.bones.size(); ++bone) {
        const std::string place = fmt::format("bone {}", bone);
        const auto poses = std::count(clip.commands.begin(), clip.commands.end(), static_cast<int32_t>(bone));
        const bool isLacking = poses == 0 && bone < used.size() && !used[bone];
        if (poses != 1 && !isLacking) report.Problem(path, place, fmt::format("is posed {} times", poses), REBUILD);
        const std::vector<RotationKey>& keys = clip.bones[bone].rotations;
        if (!std::all_of(keys.begin(), keys.end(), IsRotation)) {
            report.Problem(path, place, "has a key that is no rotation", REBUILD);
        }
    }
}

}  // namespace

void CheckCharacter(const CharacterData& character, Report& report) {
    if (character.mesh) CheckMesh(character, report);
    if (character.weights) CheckWeights(character, report);
    for (const auto& [path, skin] : character.skins)
        CheckSkin(path, skin, character, report);
    const std::vector<char> used = BonesInUse(character);
    for (const auto& [path, clip] : character.clips)
        CheckClip(path, clip, used, report);
}
