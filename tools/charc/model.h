// A rigged model read from a glTF 2.0 file (.glb): its joints, its skinned triangles, its named animations. Metres, y
// up, facing +z.
#pragma once

#include "gltf/gltf_file.h"

#include <filesystem>
#include <string>
#include <vector>

struct ModelJoint {
    int node = 0;
    Affine inverseBind;  // from the mesh to the joint, in the pose the mesh was bound in
};

struct ModelInfluence {
    int joint = 0;
    double weight = 0;
};

struct ModelVertex {
    Vector position;
    std::array<std::array<double, 2>, 2> uv{};  // two sets; the second is the first where the file has but one
    int material = -1;
    std::vector<ModelInfluence> influences;  // sum 1, none 0
};

enum class ChannelTarget { TRANSLATION, ROTATION, SCALE };
enum class Interpolation { STEP, LINEAR, CUBIC };

struct ModelChannel {
    int node = 0;
    ChannelTarget target = ChannelTarget::TRANSLATION;
    Interpolation interpolation = Interpolation::LINEAR;
    std::vector<double> times;                  // seconds, rising
    std::vector<std::array<double, 4>> values;  // x y z (w); CUBIC: in-tangent, value, out-tangent for each time
};

struct ModelClip {
    std::string name;
    double begin = 0, end = 0;  // seconds
    std::vector<ModelChannel> channels;
};

struct Model {
    std::string file;
    GltfNodes nodes;
    std::vector<ModelJoint> joints;
    std::vector<ModelVertex> vertices;
    std::vector<std::array<uint32_t, 3>> triangles;
    std::vector<std::string> materials;
    std::vector<ModelClip> clips;
    std::vector<std::string> notes;  // what was left out, for the user
};

// Meshes without weights that hang under a joint (hats, weapons) follow it.
// ContentError for a file that is no .glb, has no skinned mesh or several skeletons, or breaks the format's rules.
Model ReadModel(const std::filesystem::path& path);

// Where the nodes are in the world: at rest, or at a moment of a clip (held at its ends).
std::vector<Affine> RestPose(const Model& model);
std::vector<Affine> PoseAt(const Model& model, const ModelClip& clip, double seconds);
