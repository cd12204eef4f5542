#include "charc/clips.h"

#include <algorithm>

namespace {

// The points of the mesh, in its frame, by the bones that move them.
using BonePoints = std::array<std::vector<Vector>, CHARACTER_BONES>;

BonePoints GroupPoints(const SkinnedMesh& mesh) {
    BonePoints groups;
    for (size_t i = 0; i < mesh.weights.size(); ++i) {
        const auto& p = mesh.mesh.points[i];
        for (const BoneWeight& weight : mesh.weights[i]) {
            groups[static_cast<size_t>(weight.bone)].push_back(
                {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])});
        }
    }
    return groups;
}

void Measure(const BonePoints& points, const BonePlaces& wanted, const BonePlaces& got, Stray& worst) {
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        for (const Vector& p : points[b]) {
            const double distance = Length(wanted[b](p) - got[b](p));
            if (distance > worst.distance) worst = {distance, static_cast<int>(b)};
        }
    }
}

Quaternion Middle(const Quaternion& a, const Quaternion& b) {
    return Normalized({a.w + b.w, a.x + b.x, a.y + b.y, a.z + b.z});
}

BoneTurns Middle(const BoneTurns& a, const BoneTurns& b) {
    BoneTurns middle;
    for (size_t i = 0; i < CHARACTER_BONES; ++i)
        middle.turns[i] = Middle(a.turns[i], b.turns[i]);
    middle.position = (a.position + b.position) * 0.5;
    return middle;
}

// Negates quaternions where needed: the game turns from key to key by the quaternions as they stand, so neighbours must
// lie on the same side of the sphere.
void KeepSides(std::vector<BoneTurns>& poses) {
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        for (size_t k = 0; k < poses.size(); ++k) {
            Quaternion& q = poses[k].turns[b];
            const bool flip = k == 0 ? q.w < 0 : Dot(q, poses[k - 1].turns[b]) < 0;
            if (flip) q = Negated(q);
        }
    }
}

bool Same(const Quaternion& a, const Quaternion& b) {
    constexpr double NEARLY = 1e-6;
    return std::abs(a.w - b.w) < NEARLY && std::abs(a.x - b.x) < NEARLY && std::abs(a.y - b.y) < NEARLY &&
           std::abs(a.z - b.z) < NEARLY;
}

BoneTracks TracksOf(const Bone& bone, size_t index, const std::vector<BoneTurns>& poses,
                    const std::vector<uint32_t>& times) {
    BoneTracks tracks;
    tracks.pivot = {bone.pivot.x, bone.pivot.y, bone.pivot.z};
    const Quaternion& first = poses[0].turns[index];
    const bool still =
        std::all_of(poses.begin(), poses.end(), [&](const BoneTurns& pose) { return Same(pose.turns[index], first); });
    for (size_t k = 0; k < (still ? 1 : poses.size()); ++k) {
        const Quaternion& q = poses[k].turns[index];
        tracks.rotations.push_back({times[k], {q.w, q.x, q.y, q.z}});
    }
    if (index != 0) {
        tracks.positions.push_back({CHARACTER_FIRST_TIME, {}});
        return tracks;
    }
    for (size_t k = 0; k < poses.size(); ++k) {
        const Vector& p = poses[k].position;
        tracks.positions.push_back({times[k], {p.x, p.y, p.z}});
    }
    return tracks;
}

// The part of the model's animation that belongs to the part of the game's that is over.
double PartOf(ClipPlay play, double part) {
    if (play == ClipPlay::FIRST_POSE) return 0;
    return play == ClipPlay::BACKWARDS ? 1 - part : part;
}

}  // namespace

BuiltClip BuildClip(const Model& model, const Skeleton& skeleton, const SkinnedMesh& mesh, const ModelClip& clip,
                    const ClipRecipe& recipe) {
    BuiltClip built;
    built.report = {recipe.file, recipe.clip, recipe.times.size(), {}, {}, {}, 0};
    const BonePoints points = GroupPoints(mesh);
    const double span = recipe.times.back() - CHARACTER_FIRST_TIME;
    const auto placesAt = [&](double part) {
        return PlaceBones(model, skeleton, PoseAt(model, clip, clip.begin + part * (clip.end - clip.begin)));
    };
    // The game itself moves the character over the ground.
    Vector walked;
    if (recipe.loop) walked = placesAt(1)[0].Column(3) - placesAt(0)[0].Column(3);
    walked.y = 0;
    built.report.walksOff = Length(walked);
    const auto wantedAt = [&](double time) {
        const double part = PartOf(recipe.play, (time - CHARACTER_FIRST_TIME) / span);
        BonePlaces places = placesAt(part);
        if (built.report.walksOff <= WALK_MIN) return places;
        for (Affine& place : places)
            place = Translation(walked * -part) * place;
        return places;
    };
    std::vector<BoneTurns> poses;
    for (const uint32_t time : recipe.times) {
        const BonePlaces wanted = wantedAt(time);
        poses.push_back(TurnsOf(skeleton, wanted));
        Measure(points, wanted, PlacesOf(skeleton, poses.back()), built.report.atKeys);
    }
    if (recipe.loop) {
        Measure(points, PlacesOf(skeleton, poses.front()), PlacesOf(skeleton, poses.back()), built.report.loopGap);
        poses.back() = poses.front();
    }
    KeepSides(poses);
    for (size_t k = 1; k < poses.size(); ++k) {
        Measure(points, wantedAt((recipe.times[k - 1] + recipe.times[k]) * 0.5),
                PlacesOf(skeleton, Middle(poses[k - 1], poses[k])), built.report.betweenKeys);
    }
    built.animation.length = recipe.times.back();
    built.animation.commands = skeleton.commands;
    for (size_t b = 0; b < CHARACTER_BONES; ++b)
        built.animation.bones.push_back(TracksOf(skeleton.bones[b], b, poses, recipe.times));
    return built;
}
