#include "character/skin.h"

#include "host/files.h"
#include "memory/fatal.h"
#include "memory/file_fields.h"
#include "memory/files.h"
#include "world/world_tables.h"

#include <cstdio>
#include <cstdlib>

const uint8_t BoneOrder[BONES_MAX] = {4, 3, 2, 21, 19, 16, 18, 5, 15, 17, 20, 1, 0, 6, 7, 9, 11, 13, 8, 10, 12, 14};

namespace {

constexpr uint32_t FIRST_BLOCK = 8;
constexpr int8_t LAST_VERSION_WITHOUT_MATRIX = 3;

struct BlockView {
    uint16_t matrix;
    uint16_t hardCount, softCount;
    uint32_t hardPoints, softPoints;  // offsets in the file
    uint32_t end;
};

int8_t Version(const uint8_t* image) {
    return FileField<int8_t>(image, 3);
}

BlockView ReadBlock(const uint8_t* image, uint32_t offset) {
    BlockView block{};
    if (Version(image) > LAST_VERSION_WITHOUT_MATRIX) {
        block.matrix = FileField<uint16_t>(image, offset);
        offset += 2;
    }
    block.hardCount = FileField<uint16_t>(image, offset);
    block.hardPoints = offset + 2;
    offset = block.hardPoints + 2u * block.hardCount;
    block.softCount = FileField<uint16_t>(image, offset);
    block.softPoints = offset + 2;
    block.end = block.softPoints + 4u * block.softCount;
    return block;
}

// Walks as ReadBlock does, but checks before each step. 0: the block reaches beyond the file, or names a point that the
// mesh does not have.
uint32_t CheckedBlockEnd(const uint8_t* image, uint64_t bytes, uint64_t offset, uint32_t pointCount) {
    if (Version(image) > LAST_VERSION_WITHOUT_MATRIX) offset += 2;
    if (offset + 2 > bytes) return 0;
    const uint64_t soft = offset + 2 + 2u * FileField<uint16_t>(image, static_cast<uint32_t>(offset));
    if (soft + 2 > bytes) return 0;
    const uint64_t end = soft + 2 + 4u * FileField<uint16_t>(image, static_cast<uint32_t>(soft));
    if (end > bytes) return 0;
    for (uint64_t at = offset + 2; at < soft; at += 2) {
        if (FileField<uint16_t>(image, static_cast<uint32_t>(at)) >= pointCount) return 0;
    }
    for (uint64_t at = soft + 2; at < end; at += 4) {
        if (FileField<uint16_t>(image, static_cast<uint32_t>(at)) >= pointCount) return 0;
    }
    return static_cast<uint32_t>(end);
}

bool ValidWeights(const uint8_t* image, uint32_t bytes, const MeshRecord& mesh) {
    if (bytes < FIRST_BLOCK) return false;
    const uint16_t welds = FileField<uint16_t>(image, 4);
    const uint16_t blocks = FileField<uint16_t>(image, 6);
    if (blocks < mesh.boneCount) return false;
    uint32_t offset = FIRST_BLOCK;
    for (uint16_t b = 0; b < blocks; ++b) {
        offset = CheckedBlockEnd(image, bytes, offset, mesh.pointCount);
        if (offset == 0) return false;
    }
    return offset + 4ull * welds <= bytes;
}

uint32_t ListBlock(const uint8_t* image, uint32_t offset) {
    const BlockView block = ReadBlock(image, offset);
    if (Version(image) > LAST_VERSION_WITHOUT_MATRIX) std::printf("matrix %u\n", unsigned{block.matrix});
    std::printf("%u hard points\n", unsigned{block.hardCount});
    for (unsigned i = 0; i < block.hardCount; ++i) {
        std::printf("%u index %u\n", i, unsigned{FileField<uint16_t>(image, block.hardPoints + 2 * i)});
    }
    std::printf("%u soft points\n", unsigned{block.softCount});
    for (unsigned i = 0; i < block.softCount; ++i) {
        std::printf("%u index %u, weight %u\n", i, unsigned{FileField<uint16_t>(image, block.softPoints + 4 * i)},
                    unsigned{FileField<uint16_t>(image, block.softPoints + 4 * i + 2)});
    }
    return block.end;
}

void ListWeights(const uint8_t* image) {
    const unsigned welds = FileField<uint16_t>(image, 4);
    const unsigned blocks = FileField<uint16_t>(image, 6);
    std::printf("weight file version %u\n", static_cast<unsigned>(Version(image)));
    std::printf("bones %u, welds %u\n", blocks, welds);
    uint32_t offset = FIRST_BLOCK;
    for (unsigned b = 0; b < blocks; ++b)
        offset = ListBlock(image, offset);
    for (unsigned i = 0; i < welds; ++i) {
        std::printf("weld %u, from %u, to %u\n", i, unsigned{FileField<uint16_t>(image, offset + 4 * i)},
                    unsigned{FileField<uint16_t>(image, offset + 4 * i + 2)});
    }
}

// A bone's world transform, computed in double precision and applied in single precision.
struct SkinMatrix {
    float r[9];
    float t[3];

    explicit SkinMatrix(const Transform& world) {
        for (int i = 0; i < 9; ++i)
            r[i] = static_cast<float>(world.r[i]);
        for (int i = 0; i < 3; ++i)
            t[i] = static_cast<float>(world.t[i]);
    }
    Vec3 operator()(const Vec3& p) const {
        return {p.x * r[0] + p.y * r[3] + p.z * r[6] + t[0], p.x * r[1] + p.y * r[4] + p.z * r[7] + t[1],
                p.x * r[2] + p.y * r[5] + p.z * r[8] + t[2]};
    }
};

void SkinBlock(const uint8_t* image, const BlockView& block, const SkinMatrix& matrix, uint32_t firstPoint) {
    for (uint32_t i = 0; i < block.hardCount; ++i) {
        const uint32_t point = firstPoint + FileField<uint16_t>(image, block.hardPoints + 2 * i);
        const Vec3 moved = matrix(WorldGeometry.points[point].position);
        ViewPoint& view = WorldGeometry.viewPoints[point];
        view.x = moved.x;
        view.y = moved.y;
        view.z = moved.z;
    }
    for (uint32_t i = 0; i < block.softCount; ++i) {
        const uint32_t point = firstPoint + FileField<uint16_t>(image, block.softPoints + 4 * i);
        const float f = static_cast<float>(FileField<uint16_t>(image, block.softPoints + 4 * i + 2)) / 65536.0f;
        const Vec3 moved = matrix(WorldGeometry.points[point].position);
        ViewPoint& view = WorldGeometry.viewPoints[point];
        view.x = f * moved.x + (1.0f - f) * view.x;
        view.y = f * moved.y + (1.0f - f) * view.y;
        view.z = f * moved.z + (1.0f - f) * view.z;
    }
}

}  // namespace

void* LoadWeights(const char* path, const MeshRecord& mesh) {
    auto* image = static_cast<uint8_t*>(LoadMalloc(path));
    if (!image) {
        const char* const message = "Failed to LoadMalloc weights file!\n";
        std::fputs(message, stdout);
        HostReportFatal(message, path);
        std::exit(1);
    }
    if (!ValidWeights(image, static_cast<uint32_t>(FileSize(path)), mesh)) {
        FatalError(1, "Not a valid weights file", path);
    }
    ListWeights(image);
    return image;
}

void SkinActor(const Actor& actor) {
    const MeshRecord& mesh = *actor.mesh;
    const auto* image = static_cast<const uint8_t*>(actor.weights);
    const StateRecord& state = actor.states[actor.state];
    const uint32_t hidden = actor.animations[state.animations[0]].record->hiddenBlock;
    uint32_t offset = FIRST_BLOCK;
    for (uint32_t b = 0; b < mesh.boneCount; ++b) {
        const BlockView block = ReadBlock(image, offset);
        const uint8_t bone = BoneOrder[b];  // a mesh of fewer than BONES_MAX bones lacks some
        if (b != hidden && bone < mesh.boneCount) {
            SkinBlock(image, block, SkinMatrix(mesh.bones[bone].world), mesh.firstPoint);
        }
        offset = block.end;
    }
}
