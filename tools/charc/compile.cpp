#include "charc/compile.h"

#include "charc/recipe_reader.h"
#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace {

constexpr int DEPTH_SHOWN_MAX = 40;
constexpr double STRAY_MAX = 1;  // units; the user is told of a larger stray

template <class Numbers>
double Dot(const Numbers& a, const Numbers& b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

const ModelClip& FindClip(const Model& model, const std::string& name) {
    return *std::find_if(model.clips.begin(), model.clips.end(), [&](const ModelClip& c) { return c.name == name; });
}

void NeedClips(const Model& model, const CharacterRecipe& recipe) {
    std::vector<std::string> missing;
    for (const ClipRecipe& wanted : recipe.clips) {
        const bool found = std::any_of(model.clips.begin(), model.clips.end(),
                                       [&](const ModelClip& clip) { return clip.name == wanted.clip; });
        if (!found && std::find(missing.begin(), missing.end(), wanted.clip) == missing.end()) {
            missing.push_back(wanted.clip);
        }
    }
    if (missing.empty()) return;
    for (std::string& clip : missing)
        clip = Shown(clip);
    Refuse(model.file, 0, fmt::format("has no animation '{}'", fmt::join(missing, "', '")),
           fmt::format("add it to the model, or name another in {}", recipe.file));
}

// Blends go from any pose of one clip to any key of another without choosing the shorter way round.
void NoteLongTurns(const std::vector<BuiltClip>& clips, const CharacterRecipe& recipe,
                   std::vector<std::string>& notes) {
    const auto opposed = [](const RotationKey& a, const RotationKey& b) {
        return a.rotation[0] * b.rotation[0] + a.rotation[1] * b.rotation[1] + a.rotation[2] * b.rotation[2] +
                   a.rotation[3] * b.rotation[3] <
               0;
    };
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        for (const BuiltClip& to : clips) {
            const RotationKey& start = to.animation.bones[b].rotations.front();
            for (const BuiltClip& from : clips) {
                const auto& keys = from.animation.bones[b].rotations;
                if (std::none_of(keys.begin(), keys.end(), [&](const auto& key) { return opposed(key, start); }))
                    continue;
                notes.push_back(fmt::format("'{}' may turn the long way round from '{}' to '{}'", recipe.joints[b],
                                            from.report.clip, to.report.clip));
            }
        }
    }
}

void CheckFinite(const BuiltClip& clip, const Model& model) {
    for (const BoneTracks& bone : clip.animation.bones) {
        double sum = Dot(bone.pivot, bone.pivot);
        for (const RotationKey& key : bone.rotations)
            sum += Dot(key.rotation, key.rotation);
        for (const PositionKey& key : bone.positions)
            sum += Dot(key.position, key.position);
        if (std::isfinite(sum)) continue;
        Refuse(model.file, 0, fmt::format("moves to infinity in '{}'", Shown(clip.report.clip)),
               "look for huge numbers in its scales and places");
    }
}

void NoteStrays(const ClipReport& report, const CharacterRecipe& recipe, std::vector<std::string>& notes) {
    const auto joint = [&](const Stray& stray) { return recipe.joints[static_cast<size_t>(stray.bone)]; };
    if (report.atKeys.distance > STRAY_MAX) {
        notes.push_back(fmt::format("'{}' moves or scales '{}' by itself: up to {:.1f} units off, bones only turn",
                                    report.clip, joint(report.atKeys), report.atKeys.distance));
    }
    if (report.walksOff > WALK_MIN) {
        notes.push_back(
            fmt::format("'{}' walks {:.0f} units off by itself: taken back", Shown(report.clip), report.walksOff));
    }
    if (report.loopGap.distance > STRAY_MAX) {
        notes.push_back(fmt::format("'{}' does not end as it begins: {:.1f} units at '{}'", report.clip,
                                    report.loopGap.distance, joint(report.loopGap)));
    }
}

std::string Report(const CompiledCharacter& character) {
    std::string text = fmt::format("{} triangles of {}, {} points of {}\n", character.triangles,
                                   CHARACTER_TRIANGLES_MAX, character.points, CHARACTER_POINTS_MAX);
    for (const ClipReport& clip : character.clips) {
        const std::string& joint = character.joints[static_cast<size_t>(clip.betweenKeys.bone)];
        text += fmt::format("{:13} {:3} keys, between them up to {:.1f} units off ({})\n", clip.file, clip.keys,
                            clip.betweenKeys.distance, joint);
    }
    for (const std::string& note : character.notes)
        text += fmt::format("note: {}\n", note);
    return text;
}

// The nodes that are joints or have joints below them, and how far down each is.
std::vector<std::pair<int, int>> JointTree(const Model& model) {
    std::vector<char> shown(model.nodes.nodes.size());
    for (const ModelJoint& joint : model.joints) {
        for (int node = joint.node; node >= 0 && !shown[static_cast<size_t>(node)];) {
            shown[static_cast<size_t>(node)] = 1;
            node = model.nodes.nodes[static_cast<size_t>(node)].parent;
        }
    }
    std::vector<std::vector<int>> below(shown.size() + 1);  // the last for those on top
    for (size_t i = shown.size(); i-- > 0;) {
        const int parent = model.nodes.nodes[i].parent;
        if (shown[i]) below[parent < 0 ? shown.size() : static_cast<size_t>(parent)].push_back(static_cast<int>(i));
    }
    std::vector<std::pair<int, int>> tree, open;
    for (const int node : below.back())
        open.emplace_back(node, 0);
    while (!open.empty()) {
        const auto [node, depth] = open.back();
        open.pop_back();
        tree.emplace_back(node, depth);
        for (const int child : below[static_cast<size_t>(node)])
            open.emplace_back(child, std::min(depth + 1, DEPTH_SHOWN_MAX));
    }
    return tree;
}

// For each node how many points follow it.
std::map<int, size_t> FollowersOf(const Model& model) {
    std::map<int, size_t> followers;
    for (const ModelJoint& joint : model.joints)
        followers[joint.node] = 0;
    for (const ModelVertex& vertex : model.vertices) {
        for (const ModelInfluence& influence : vertex.influences)
            ++followers[model.joints[static_cast<size_t>(influence.joint)].node];
    }
    return followers;
}

}  // namespace

std::string ListModel(const std::filesystem::path& path) {
    const Model model = ReadModel(path);
    const std::map<int, size_t> followers = FollowersOf(model);
    std::string text = "joints, and how many points follow each:\n";
    for (const auto& [node, depth] : JointTree(model)) {
        const auto found = followers.find(node);
        text +=
            fmt::format("{:{}}'{}' {}\n", "", 2 + 2 * depth, Shown(model.nodes.nodes[static_cast<size_t>(node)].name),
                        found == followers.end() ? "(no joint)" : std::to_string(found->second));
    }
    text += "clips:\n";
    for (const ModelClip& clip : model.clips)
        text += fmt::format("  '{}' {:.2f} seconds\n", Shown(clip.name), clip.end - clip.begin);
    text += "materials:\n";
    for (const std::string& material : model.materials)
        text += fmt::format("  '{}'\n", Shown(material));
    for (const std::string& note : model.notes)
        text += fmt::format("note: {}\n", note);
    return text;
}

CompiledCharacter CompileCharacter(const CharacterRecipe& given) {
    const Model model = ReadModel(given.model);
    const CharacterRecipe recipe = WithoutIdleRoot(model, given);
    const Skeleton skeleton = BuildSkeleton(model, recipe);
    NeedClips(model, recipe);
    const SkinnedMesh mesh = BuildSkinnedMesh(model, skeleton, recipe);
    CompiledCharacter character;
    character.joints = recipe.joints;
    character.triangles = mesh.mesh.triangles.size();
    character.points = mesh.mesh.points.size();
    character.notes = model.notes;
    character.notes.insert(character.notes.end(), recipe.notes.begin(), recipe.notes.end());
    character.notes.insert(character.notes.end(), skeleton.notes.begin(), skeleton.notes.end());
    character.notes.insert(character.notes.end(), mesh.notes.begin(), mesh.notes.end());
    character.files.push_back({CHARACTER_MESH_FILE, EncodeMesh(mesh.mesh)});
    character.files.push_back({CHARACTER_WEIGHTS_FILE, EncodeWeights(BuildWeightBlocks(mesh))});
    for (const SkinRecipe& skin : recipe.skins)
        character.files.push_back({skin.file, EncodeSkin(BuildSkin(model, mesh, skin))});
    std::vector<BuiltClip> clips;
    for (const ClipRecipe& clip : recipe.clips) {
        clips.push_back(BuildClip(model, skeleton, mesh, FindClip(model, clip.clip), clip));
        CheckFinite(clips.back(), model);
        character.files.push_back({clip.file, EncodeAnimation(clips.back().animation)});
        character.clips.push_back(clips.back().report);
        NoteStrays(clips.back().report, recipe, character.notes);
    }
    NoteLongTurns(clips, recipe, character.notes);
    return character;
}

std::string CompileToFolder(const std::filesystem::path& recipePath, const std::filesystem::path& folder) {
    const CharacterRecipe recipe = ReadRecipe(recipePath);
    CompiledCharacter character = CompileCharacter(recipe);
    for (OutputFile& file : character.files)
        file.path = folder / file.path;
    WriteWholeFiles(character.files);
    return Report(character);
}
