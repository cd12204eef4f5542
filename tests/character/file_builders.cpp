#include "file_builders.h"

#include "support/throwing_fatal.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

uint32_t Here(const Bytes& bytes) {
    return static_cast<uint32_t>(bytes.size());
}

void Patch(Bytes& bytes, uint32_t offset, uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

// u32 unused, then one offset per track, filled in as the tracks are written.
uint32_t ReserveTable(Bytes& bytes, size_t tracks) {
    const uint32_t table = Here(bytes);
    for (size_t i = 0; i <= tracks; ++i)
        Put<uint32_t>(bytes, 0);
    return table;
}

}  // namespace

Bytes AnimationImage(uint32_t length, const std::vector<int32_t>& commands, const std::vector<BoneTrackSource>& bones,
                     uint32_t hiddenBlock) {
    Bytes bytes;
    for (const uint32_t word : {0u, length, static_cast<uint32_t>(bones.size()), hiddenBlock, 0u, 0u, 0u, 0u})
        Put(bytes, word);
    for (const int32_t command : commands)
        Put(bytes, command);
    const uint32_t rotationTable = ReserveTable(bytes, bones.size());
    const uint32_t positionTable = ReserveTable(bytes, bones.size());
    Patch(bytes, 16, rotationTable);
    Patch(bytes, 20, positionTable);
    for (uint32_t b = 0; b < bones.size(); ++b) {
        Patch(bytes, rotationTable + 4 + 4 * b, Here(bytes));
        Put<uint32_t>(bytes, 0);
        for (const double coordinate : bones[b].pivot)
            Put(bytes, coordinate);
        Put(bytes, static_cast<int32_t>(bones[b].rotations.size()));
        for (const RotationKey& key : bones[b].rotations) {
            Put(bytes, key.time);
            Put(bytes, key.q);
        }
        Patch(bytes, positionTable + 4 + 4 * b, Here(bytes));
        Put<uint32_t>(bytes, 0);
        Put(bytes, static_cast<int32_t>(bones[b].positions.size()));
        for (const PositionKey& key : bones[b].positions) {
            Put(bytes, key.time);
            for (const double coordinate : {key.x, key.y, key.z})
                Put(bytes, coordinate);
        }
    }
    return bytes;
}

Bytes WeightsImage(const std::vector<WeightBlockSource>& blocks, int8_t version) {
    Bytes bytes = {0, 0, 0, static_cast<uint8_t>(version)};
    Put<uint16_t>(bytes, 1);
    Put(bytes, static_cast<uint16_t>(blocks.size()));
    for (const WeightBlockSource& block : blocks) {
        if (version > 3) Put<uint16_t>(bytes, 7);
        Put(bytes, static_cast<uint16_t>(block.hard.size()));
        for (const uint16_t point : block.hard)
            Put(bytes, point);
        Put(bytes, static_cast<uint16_t>(block.soft.size()));
        for (const SoftPoint& soft : block.soft) {
            Put(bytes, soft.point);
            Put(bytes, soft.weight);
        }
    }
    Put<uint16_t>(bytes, 3);
    Put<uint16_t>(bytes, 4);
    return bytes;
}

Bytes MeshImage(uint32_t boneCount, const std::vector<Vec3>& points, const std::vector<FaceSource>& faces) {
    Bytes bytes;
    for (const uint32_t word : {0u, boneCount, 0u})
        Put(bytes, word);
    const uint32_t part = 12 + 4 * boneCount;
    for (uint32_t b = 0; b < boneCount; ++b)
        Put(bytes, part | 3u);  // the low bits mean nothing
    for (const size_t word : {size_t{0}, points.size(), faces.size()})
        Put(bytes, static_cast<uint32_t>(word));
    for (const Vec3& point : points)
        Put(bytes, point);
    for (const FaceSource& face : faces) {
        for (const uint32_t corner : {face.a, face.b, face.c})
            Put(bytes, corner);
    }
    return bytes;
}

Bytes CoordinatesImage(const std::vector<FaceSource>& faces) {
    Bytes bytes(16, 0);
    for (size_t f = 0; f < faces.size(); ++f) {
        Put(bytes, faces[f].texture);
        for (size_t corner = 0; corner < 3; ++corner) {
            Put(bytes, static_cast<float>(256 * f + corner));
            Put(bytes, static_cast<float>(corner));
        }
    }
    return bytes;
}

void ExpectDamageIsRefused(const Bytes& good, size_t step, const std::string& refusal,
                           const std::function<void(const Bytes&)>& load) {
    for (size_t cut = 0; cut < good.size(); cut += step)
        EXPECT_THROW(load(Bytes(good.begin(), good.begin() + static_cast<long>(cut))), FatalThrown) << cut;
    for (size_t at = 0; at < good.size(); at += step) {
        for (const uint8_t value : {uint8_t{0}, uint8_t{1}, uint8_t{0x7F}, uint8_t{0xFF}}) {
            Bytes altered = good;
            altered[at] = value;
            try {
                load(altered);
            } catch (const FatalThrown& fatal) {
                EXPECT_EQ(fatal.text.rfind(refusal, 0), 0u) << at << ": " << fatal.text;
            }
        }
    }
}
