// The skeleton walk of character/animation.h: from the actor's base down the command list to every bone.

#include "character/animation.h"
#include "character/animation_layout.h"
#include "math/matrix_stack.h"
#include "math/quaternions.h"
#include "math/vectors.h"
#include "memory/file_fields.h"

#include <algorithm>

namespace {

struct Track {
    const uint8_t* image;
    uint32_t keys;  // offset of key 0 in the file
    uint32_t keyBytes;
    uint32_t count;

    uint32_t Time(uint32_t key) const { return FileField<uint32_t>(image, keys + keyBytes * key); }
    Quat Rotation(uint32_t key) const { return FileField<Quat>(image, keys + keyBytes * key + KEY_TIME_BYTES); }
    double Position(uint32_t key, uint32_t axis) const {
        return FileField<double>(image, keys + keyBytes * key + KEY_TIME_BYTES + 8 * axis);
    }
};

struct BoneTracks {
    Track rotation, position;
    double pivot[3];
    uint32_t time;  // clock of the layer that the tracks come from
};

Transform CurrentTransform;  // transform of the bone that the walk stands at
bool FirstBoneDone;          // the first bone was placed: only its position keys move the skeleton

Track TrackOf(const AnimRecord& record, uint32_t table, uint32_t bone, const TrackShape& shape) {
    const auto offset = FileField<uint32_t>(record.image, table + TABLE_HEADER_BYTES + TABLE_ENTRY_BYTES * bone);
    const uint32_t keys = offset + shape.headerBytes;
    return {record.image, keys, shape.keyBytes, FileField<uint32_t>(record.image, keys - KEY_COUNT_BYTES)};
}

// Takes the first layer that animates this bone, otherwise the last one that has tracks for it; layer 0 always has.
BoneTracks ChooseLayer(const Actor& actor, uint32_t bone) {
    const StateRecord& state = actor.states[actor.state];
    BoneTracks tracks{};
    for (int layer = 0; layer < 3 && state.animations[layer] != -1; ++layer) {
        const AnimRecord& record = *actor.animations[state.animations[layer]].record;
        // Kept as it is: a clip may lack tracks.
        if (bone >= record.trackCount) continue;
        tracks.rotation = TrackOf(record, record.rotationTable, bone, ROTATION_TRACK);
        tracks.position = TrackOf(record, record.positionTable, bone, POSITION_TRACK);
        tracks.time = actor.layerTimes[layer];
        if (tracks.rotation.count > 1) break;
    }
    for (uint32_t i = 0; i < 3; ++i) {
        const uint32_t header = tracks.rotation.keys - ROTATION_TRACK.headerBytes;
        tracks.pivot[i] = FileField<double>(tracks.rotation.image, header + PIVOT_AT + 8 * i);
    }
    return tracks;
}

// The last key before time t, or key 0.
uint32_t FindKey(const Track& track, uint32_t t) {
    uint32_t k = 0;
    // Kept as it is: of several keys of one time the first is reached, and the last is left from.
    while (k + 1 < track.count && track.Time(k + 1) < t)
        ++k;
    return k;
}

// How far t lies between two times, 0 to 1; a t outside them counts as the nearer one.
double Fraction(uint32_t t, uint32_t from, uint32_t to) {
    if (t <= from) return t < from || to > from ? 0.0 : 1.0;
    if (t >= to) return 1.0;
    return static_cast<double>(t - from) / static_cast<double>(to - from);
}

Quat EvaluateRotation(const Track& track, uint32_t t) {
    const uint32_t k = FindKey(track, t);
    if (k + 1 >= track.count) return track.Rotation(k);
    Quat q;
    QuatSlerp(track.Rotation(k), track.Rotation(k + 1), q, Fraction(t, track.Time(k), track.Time(k + 1)));
    return q;
}

void EvaluatePosition(const Track& track, uint32_t t, double out[3]) {
    const uint32_t k = FindKey(track, t);
    const uint32_t next = std::min(k + 1, track.count - 1);
    const double f = Fraction(t, track.Time(k), track.Time(next));
    for (uint32_t i = 0; i < 3; ++i) {
        const double from = track.Position(k, i);
        out[i] = from + (track.Position(next, i) - from) * f;
    }
}

// Turns the bone about its pivot and attaches it to the current transform.
void PlaceBone(BoneRecord& bone, const Quat& q, const double position[3], const double pivot[3]) {
    Transform local;
    QuatToMatrix(q, local.r);
    double turned[3] = {pivot[0], pivot[1], pivot[2]};
    RotateDVector(turned, local.r);
    for (int i = 0; i < 3; ++i) {
        // Kept as it is: the first bone alone takes its position keys, and subtracts its turned pivot twice.
        local.t[i] = FirstBoneDone ? pivot[i] - turned[i] : position[i] - turned[i] - turned[i];
    }
    FirstBoneDone = true;
    TransformConcat(CurrentTransform, local, bone.world);
    CurrentTransform = bone.world;
}

void EvaluateBone(uint32_t index, MeshRecord& mesh, const Actor& actor) {
    BoneRecord& bone = mesh.bones[index];
    const BoneTracks tracks = ChooseLayer(actor, index);
    bone.rotation = EvaluateRotation(tracks.rotation, tracks.time);
    EvaluatePosition(tracks.position, tracks.time, bone.position);
    PlaceBone(bone, bone.rotation, bone.position, tracks.pivot);
}

// Kept as it is: blends from the last unblended pose towards one key. The result is not stored in the bone, so every
// frame of the blend starts from that same pose.
void EvaluateBlendedBone(uint32_t index, MeshRecord& mesh, const Actor& actor) {
    BoneRecord& bone = mesh.bones[index];
    const BoneTracks tracks = ChooseLayer(actor, index);
    const auto blendEnd = static_cast<uint32_t>(actor.blendDuration);

    const uint32_t rotationKey = FindKey(tracks.rotation, tracks.time);
    Quat q;
    QuatSlerp(bone.rotation, tracks.rotation.Rotation(rotationKey), q,
              Fraction(tracks.time, tracks.rotation.Time(rotationKey), blendEnd));

    const uint32_t positionKey = FindKey(tracks.position, tracks.time);
    const double f = Fraction(tracks.time, tracks.position.Time(positionKey), blendEnd);
    double position[3];
    for (uint32_t i = 0; i < 3; ++i) {
        position[i] = bone.position[i] + (tracks.position.Position(positionKey, i) - bone.position[i]) * f;
    }
    PlaceBone(bone, q, position, tracks.pivot);
}

}  // namespace

void PoseActor(Actor& actor) {
    MeshRecord& mesh = *actor.mesh;
    const AnimRecord& record = *actor.animations[actor.states[actor.state].animations[0]].record;
    FirstBoneDone = false;
    CurrentTransform = actor.base;
    if (actor.layerTimes[0] >= static_cast<uint32_t>(actor.blendDuration)) actor.blendDuration = 0;
    int pushed = 0;
    for (uint32_t offset = COMMANDS_AT;; offset += COMMAND_BYTES) {
        const auto command = FileField<int32_t>(record.image, offset);
        if (command == COMMAND_END) break;
        if (command == COMMAND_POP) {
            PopMatrix(CurrentTransform);
            pushed -= 1;
        } else if (command == COMMAND_PUSH) {
            PushMatrix(CurrentTransform);
            pushed += 1;
        } else if (actor.blendDuration == 0) {
            EvaluateBone(static_cast<uint32_t>(command), mesh, actor);
        } else {
            EvaluateBlendedBone(static_cast<uint32_t>(command), mesh, actor);
        }
    }
    for (; pushed > 0; --pushed)  // kept as it is: a list may leave transforms behind
        PopMatrix(CurrentTransform);
}
