#include "charc/skeleton.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

constexpr size_t LISTED_MAX = 22;

std::string JointName(const Model& model, size_t joint) {
    return model.nodes.nodes[static_cast<size_t>(model.joints[joint].node)].name;
}

std::string List(const std::vector<std::string>& names) {
    std::string list;
    for (size_t i = 0; i < std::min(names.size(), LISTED_MAX); ++i)
        list += fmt::format("{}'{}'", i == 0 ? "" : ", ", Shown(names[i]));
    return names.size() <= LISTED_MAX ? list : fmt::format("{} and {} more", list, names.size() - LISTED_MAX);
}

// The bone of each joint by its name, -1 for folded ones.
std::vector<int> NameBones(const Model& model, const CharacterRecipe& recipe, std::vector<std::string>& notes) {
    std::map<std::string, int> bones;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        const std::string& name = recipe.joints[b];
        if (!name.empty() && !bones.emplace(name, static_cast<int>(b)).second) {
            Refuse(recipe.file, 0, fmt::format("names the joint '{}' for two bones", Shown(name)),
                   "leave one of them empty");
        }
    }
    const std::set<std::string> folded(recipe.folded.begin(), recipe.folded.end());
    std::vector<int> boneOfJoint;
    std::vector<std::string> strangers;
    for (size_t j = 0; j < model.joints.size(); ++j) {
        const std::string name = JointName(model, j);
        const auto found = bones.find(name);
        boneOfJoint.push_back(found == bones.end() ? -1 : found->second);
        if (found != bones.end())
            bones.erase(found);
        else if (!folded.contains(name))
            strangers.push_back(name);
    }
    std::vector<std::string> missing;
    for (const auto& [name, bone] : bones)
        missing.push_back(name);
    if (!missing.empty()) {
        Refuse(model.file, 0, "has no joint " + List(missing), fmt::format("correct 'joints' in {}", recipe.file));
    }
    if (!strangers.empty() && recipe.foldsRest) {
        notes.push_back(fmt::format("{} joints follow the next bone above: {}", strangers.size(), List(strangers)));
    } else if (!strangers.empty()) {
        Refuse(model.file, 0, fmt::format("has joints without a bone: {}", List(strangers)),
               fmt::format("the game has 22 bones: add them to 'fold' in {} to let them follow the bone above",
                           recipe.file));
    }
    return boneOfJoint;
}

// The bone of the nearest node above that has one.
int BoneAbove(const Model& model, const std::map<int, int>& boneOfNode, int node) {
    for (node = model.nodes.nodes[static_cast<size_t>(node)].parent; node >= 0;
         node = model.nodes.nodes[static_cast<size_t>(node)].parent) {
        if (const auto found = boneOfNode.find(node); found != boneOfNode.end()) return found->second;
    }
    return -1;
}

void AddCommands(const Skeleton& skeleton, int bone, std::vector<int32_t>& commands) {
    commands.push_back(bone);
    std::vector<int> children;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        if (skeleton.bones[b].parent == bone) children.push_back(static_cast<int>(b));
    }
    for (const int child : children) {
        const bool last = child == children.back();
        if (!last) commands.push_back(COMMAND_PUSH);
        AddCommands(skeleton, child, commands);
        if (!last) commands.push_back(COMMAND_POP);
    }
}

void LinkBones(const Model& model, Skeleton& skeleton) {
    std::map<int, int> boneOfNode;
    for (size_t j = 0; j < model.joints.size(); ++j) {
        const int bone = skeleton.boneOfJoint[j];
        if (bone < 0) continue;
        boneOfNode.emplace(model.joints[j].node, bone);
        skeleton.bones[static_cast<size_t>(bone)].joint = static_cast<int>(j);
    }
    for (size_t j = 0; j < model.joints.size(); ++j) {
        int& bone = skeleton.boneOfJoint[j];
        const int above = BoneAbove(model, boneOfNode, model.joints[j].node);
        if (bone == 0) continue;
        if (above < 0 && bone < 0) {
            bone = 0;  // a joint above the root: the root is the nearest to it
            continue;
        }
        if (above < 0) {
            Refuse(model.file, 0, fmt::format("has the joint '{}' outside the root joint", Shown(JointName(model, j))),
                   "hang it below the root, or name another joint first in 'joints'");
        }
        if (bone < 0)
            bone = above;
        else
            skeleton.bones[static_cast<size_t>(bone)].parent = above;
    }
}

Vector PivotInMesh(const ModelJoint& joint) {
    return Inverse(joint.inverseBind).Column(3);
}

struct Heights {
    double lowest = 1e300, highest = -1e300;
};

// The lowest and the highest of the model's points at rest.
Heights MeasureHeights(const Model& model) {
    const std::vector<Affine> rest = RestPose(model);
    Heights heights;
    for (const ModelVertex& vertex : model.vertices) {
        double y = 0;
        for (const ModelInfluence& influence : vertex.influences) {
            const ModelJoint& joint = model.joints[static_cast<size_t>(influence.joint)];
            y += (rest[static_cast<size_t>(joint.node)] * joint.inverseBind)(vertex.position).y * influence.weight;
        }
        heights.lowest = std::min(heights.lowest, y);
        heights.highest = std::max(heights.highest, y);
    }
    return heights;
}

// The joints of bones that have no other bone between them and the joint.
std::vector<size_t> BonesBelow(const Model& model, const CharacterRecipe& recipe, size_t joint) {
    std::map<int, int> named;  // nodes
    for (size_t j = 0; j < model.joints.size(); ++j) {
        const auto found = std::find(recipe.joints.begin(), recipe.joints.end(), JointName(model, j));
        if (found != recipe.joints.end()) named.emplace(model.joints[j].node, static_cast<int>(j));
    }
    std::vector<size_t> below;
    for (const auto& [node, j] : named) {
        if (BoneAbove(model, named, node) == static_cast<int>(joint)) below.push_back(static_cast<size_t>(j));
    }
    return below;
}

bool MovesPoints(const Model& model, size_t joint) {
    return std::any_of(model.vertices.begin(), model.vertices.end(), [&](const ModelVertex& vertex) {
        return std::any_of(vertex.influences.begin(), vertex.influences.end(),
                           [&](const ModelInfluence& influence) { return influence.joint == static_cast<int>(joint); });
    });
}

}  // namespace

CharacterRecipe WithoutIdleRoot(const Model& model, CharacterRecipe recipe) {
    for (;;) {
        size_t root = 0;
        while (root < model.joints.size() && JointName(model, root) != recipe.joints[0])
            ++root;
        if (root == model.joints.size() || MovesPoints(model, root)) return recipe;
        const std::vector<size_t> below = BonesBelow(model, recipe, root);
        if (below.size() != 1) return recipe;
        const std::string name = JointName(model, below[0]);
        if (name == recipe.joints[0]) return recipe;
        recipe.notes.push_back(
            fmt::format("'{}' moves no point: '{}' is the root in its place", Shown(recipe.joints[0]), Shown(name)));
        recipe.folded.push_back(recipe.joints[0]);
        *std::find(recipe.joints.begin(), recipe.joints.end(), name) = "";
        recipe.joints[0] = name;
    }
}

Skeleton BuildSkeleton(const Model& model, const CharacterRecipe& recipe) {
    Skeleton skeleton;
    skeleton.boneOfJoint = NameBones(model, recipe, skeleton.notes);
    LinkBones(model, skeleton);
    AddCommands(skeleton, 0, skeleton.commands);
    // glTF faces +z and is right-handed, the game's characters face -z and are left-handed: one mirror does both.
    double scale = recipe.scale, ground = 0;
    if (recipe.height > 0) {
        const Heights heights = MeasureHeights(model);
        const double tall = heights.highest - heights.lowest;
        if (!(tall > 1e-6 && tall < 1e6))
            Refuse(model.file, 0, fmt::format("is {} tall", tall), "let it stand along y");
        scale = recipe.height / tall;
        ground = heights.lowest * scale;
    }
    const Affine toUnits = Scaling(scale, scale, -scale) * FromParts({}, recipe.turn, {1, 1, 1});
    const ModelJoint& root = model.joints[static_cast<size_t>(skeleton.bones[0].joint)];
    const Affine upright = RestPose(model)[static_cast<size_t>(root.node)] * root.inverseBind;
    if (std::abs(Determinant(upright)) < 1e-12) Refuse(model.file, 0, "has a flat root joint", "scale it back to 1");
    skeleton.meshToGame = toUnits * Translation(upright(PivotInMesh(root)) * -1) * upright;
    skeleton.gameToMesh = Inverse(skeleton.meshToGame);
    skeleton.worldToActor = Translation({0, -recipe.origin - ground, 0}) * toUnits;
    for (Bone& bone : skeleton.bones) {
        if (bone.joint < 0) continue;
        bone.pivot = skeleton.meshToGame(PivotInMesh(model.joints[static_cast<size_t>(bone.joint)]));
    }
    skeleton.bones[0].pivot = {};  // exactly
    return skeleton;
}

BonePlaces PlaceBones(const Model& model, const Skeleton& skeleton, const std::vector<Affine>& pose) {
    BonePlaces places;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        if (skeleton.bones[b].joint < 0) continue;
        const ModelJoint& joint = model.joints[static_cast<size_t>(skeleton.bones[b].joint)];
        places[b] =
            skeleton.worldToActor * pose[static_cast<size_t>(joint.node)] * joint.inverseBind * skeleton.gameToMesh;
    }
    return places;
}

BoneTurns TurnsOf(const Skeleton& skeleton, const BonePlaces& places) {
    BoneTurns result;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        const Bone& bone = skeleton.bones[b];
        if (bone.joint < 0) continue;
        result.turns[b] = RotationOf(places[b]);
        if (bone.parent < 0) continue;
        const Quaternion above = RotationOf(places[static_cast<size_t>(bone.parent)]);
        result.turns[b] = Normalized(Conjugate(above) * result.turns[b]);
    }
    result.position = places[0].Column(3);
    return result;
}

BonePlaces PlacesOf(const Skeleton& skeleton, const BoneTurns& turns) {
    BonePlaces places;
    for (const int32_t command : skeleton.commands) {
        if (command < 0) continue;
        const auto b = static_cast<size_t>(command);
        const Bone& bone = skeleton.bones[b];
        const Affine turn =
            Translation(bone.pivot) * FromParts({}, turns.turns[b], {1, 1, 1}) * Translation(bone.pivot * -1);
        places[b] =
            bone.parent < 0 ? Translation(turns.position) * turn : places[static_cast<size_t>(bone.parent)] * turn;
    }
    return places;
}
