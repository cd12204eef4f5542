#include "charc/clips.h"

#include <algorithm>
#include <map>

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

bool Same(const Quaternion& a, const Quaternion& b) {
    constexpr double NEARLY = 1e-6;
    return std::abs(a.w - b.w) < NEARLY && std::abs(a.x - b.x) < NEARLY && std::abs(a.y - b.y) < NEARLY &&
           std::abs(a.z - b.z) < NEARLY;
}

using PosesByTime = std::map<uint32_t, BoneTurns>;

// The game turns from key to key by the quaternions as they stand, so neighbours must lie on the same side of the
// sphere: the others are negated.
std::vector<RotationKey> RotationsOf(size_t bone, const PosesByTime& poses, const std::vector<uint32_t>& times) {
    const Quaternion& first = poses.at(times[0]).turns[bone];
    const bool still =
        std::all_of(poses.begin(), poses.end(), [&](const auto& pose) { return Same(pose.second.turns[bone], first); });
    std::vector<RotationKey> keys;
    Quaternion before = {1, 0, 0, 0};
    for (const uint32_t time : times) {
        Quaternion q = poses.at(time).turns[bone];
        if (Dot(q, before) < 0) q = Negated(q);
        before = q;
        keys.push_back({time, {q.w, q.x, q.y, q.z}});
        if (still) break;
    }
    return keys;
}

std::vector<PositionKey> PositionsOf(const PosesByTime& poses, const std::vector<uint32_t>& times) {
    std::vector<PositionKey> keys;
    for (const uint32_t time : times) {
        const Vector& p = poses.at(time).position;
        keys.push_back({time, {p.x, p.y, p.z}});
    }
    return keys;
}

// The last key before a time that is not the first, the one after it, and how far between them the time is.
template <class Key>
struct Segment {
    const Key &from, &to;
    double part;
};
template <class Key>
Segment<Key> SegmentAt(const std::vector<Key>& keys, double time) {
    if (keys.size() == 1) return {keys[0], keys[0], 0};
    const auto after = std::find_if(keys.begin() + 1, keys.end() - 1, [&](const Key& key) { return key.time >= time; });
    const Key &from = after[-1], &to = *after;
    return {from, to, (time - from.time) / (to.time - from.time)};
}

// What the game shows at a time between keys, but for the evenness of the turn.
BoneTurns TurnsAt(const CharacterAnimation& animation, double time) {
    BoneTurns pose;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        const auto [from, to, part] = SegmentAt(animation.bones[b].rotations, time);
        const auto along = [&, &a = from.rotation, &c = to.rotation, t = part](size_t i) {
            return a[i] + (c[i] - a[i]) * t;
        };
        pose.turns[b] = Normalized({along(0), along(1), along(2), along(3)});
    }
    const auto [from, to, part] = SegmentAt(animation.bones[0].positions, time);
    const Vector a = {from.position[0], from.position[1], from.position[2]};
    const Vector c = {to.position[0], to.position[1], to.position[2]};
    pose.position = a + (c - a) * part;
    return pose;
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
    PosesByTime poses;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        for (const uint32_t time : recipe.TimesOf(b))
            poses[time];
    }
    for (auto& [time, pose] : poses) {
        const BonePlaces wanted = wantedAt(time);
        pose = TurnsOf(skeleton, wanted);
        Measure(points, wanted, PlacesOf(skeleton, pose), built.report.atKeys);
    }
    BoneTurns &start = poses.begin()->second, &end = poses.rbegin()->second;
    if (recipe.loop) {
        Measure(points, PlacesOf(skeleton, start), PlacesOf(skeleton, end), built.report.loopGap);
        end = start;
    }
    built.animation.length = recipe.times.back();
    built.animation.commands = skeleton.commands;
    for (size_t b = 0; b < CHARACTER_BONES; ++b) {
        const Vector& pivot = skeleton.bones[b].pivot;
        built.animation.bones.push_back(
            {{pivot.x, pivot.y, pivot.z}, RotationsOf(b, poses, recipe.TimesOf(b)), {{CHARACTER_FIRST_TIME, {}}}});
    }
    built.animation.bones[0].positions = PositionsOf(poses, recipe.TimesOf(0));
    for (auto to = std::next(poses.begin()); to != poses.end(); ++to) {
        const double middle = (std::prev(to)->first + to->first) * 0.5;
        Measure(points, wantedAt(middle), PlacesOf(skeleton, TurnsAt(built.animation, middle)),
                built.report.betweenKeys);
    }
    return built;
}
