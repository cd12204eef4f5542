// Images of the character's files, made in memory.
#pragma once

#include "records/matrices.h"
#include "records/vec3.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

template <typename T>
void Put(Bytes& bytes, T value) {
    const auto* first = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

struct RotationKey {
    uint32_t time;
    Quat q;
};
struct PositionKey {
    uint32_t time;
    double x, y, z;
};
struct BoneTrackSource {
    double pivot[3];
    std::vector<RotationKey> rotations;
    std::vector<PositionKey> positions;
};

inline constexpr Quat NO_TURN = {1.0, 0.0, 0.0, 0.0};

// A bone that never moves.
inline BoneTrackSource StillBone(double x = 0.0, double y = 0.0, double z = 0.0) {
    return {{x, y, z}, {{10, NO_TURN}}, {{10, 0.0, 0.0, 0.0}}};
}

Bytes AnimationImage(uint32_t length, const std::vector<int32_t>& commands, const std::vector<BoneTrackSource>& bones,
                     uint32_t hiddenBlock = 255);

struct SoftPoint {
    uint16_t point, weight;
};
struct WeightBlockSource {
    std::vector<uint16_t> hard;
    std::vector<SoftPoint> soft;
};
Bytes WeightsImage(const std::vector<WeightBlockSource>& blocks, int8_t version = 3);

struct FaceSource {
    uint32_t a, b, c;
    uint32_t texture;
};
Bytes MeshImage(uint32_t boneCount, const std::vector<Vec3>& points, const std::vector<FaceSource>& faces);
Bytes CoordinatesImage(const std::vector<FaceSource>& faces);  // u = 256 x face + corner, v = corner

// The loader is to throw FatalThrown for every cut of the file, and for altered bytes at every `step`th place to do so
// or to succeed, with a message that begins like `refusal`.
void ExpectDamageIsRefused(const Bytes& good, size_t step, const std::string& refusal,
                           const std::function<void(const Bytes&)>& load);
