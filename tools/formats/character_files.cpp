#include "formats/character_files.h"

#include "formats/binary.h"
#include "formats/error.h"

#include <fmt/format.h>

#include <cmath>

namespace {

const char* const REMEDY = "the file is damaged; build it again with charc";
constexpr uint32_t ANIMATION_HEADER_BYTES = 32;
constexpr uint32_t SKIN_HEADER_BYTES = 16;
constexpr uint32_t SKIN_TRIANGLE_BYTES = 28;
constexpr int32_t COMMAND_END = -3;
constexpr int STACK_LIMIT = 64;

float FiniteFloat(ByteReader& in) {
    const float value = in.F32();
    if (!std::isfinite(value)) Refuse(in.File(), 0, "holds a number that is not finite", REMEDY);
    return value;
}

double FiniteDouble(ByteReader& in) {
    const double value = in.F64();
    if (!std::isfinite(value)) Refuse(in.File(), 0, "holds a number that is not finite", REMEDY);
    return value;
}

// Checks a count of the file: the entries must be in the file before memory is reserved for them.
size_t CountOf(const ByteReader& in, uint32_t count, size_t bytesEach) {
    if (count > in.Left() / bytesEach) {
        Refuse(in.File(), 0, fmt::format("counts {} entries and ends before them", count), REMEDY);
    }
    return count;
}

void RefuseRest(const ByteReader& in) {
    if (in.Left() != 0) Refuse(in.File(), 0, fmt::format("has {} bytes too many", in.Left()), REMEDY);
}

// A reader at an offset of a file that is already in memory.
ByteReader At(const std::vector<uint8_t>& content, const std::string& fileName, uint32_t offset) {
    ByteReader in(content, fileName);
    in.Take(offset);
    return in;
}

template <class Track>
uint32_t TrackBytes(const Track& keys, uint32_t header, uint32_t keyBytes) {
    return header + keyBytes * static_cast<uint32_t>(keys.size());
}

void PutRotations(ByteWriter& out, const BoneTracks& bone) {
    out.U32(0);
    for (const double coordinate : bone.pivot)
        out.F64(coordinate);
    out.U32(static_cast<uint32_t>(bone.rotations.size()));
    for (const RotationKey& key : bone.rotations) {
        out.U32(key.time);
        for (const double component : key.rotation)
            out.F64(component);
    }
}

void PutPositions(ByteWriter& out, const BoneTracks& bone) {
    out.U32(0);
    out.U32(static_cast<uint32_t>(bone.positions.size()));
    for (const PositionKey& key : bone.positions) {
        out.U32(key.time);
        for (const double coordinate : key.position)
            out.F64(coordinate);
    }
}

void GetRotations(ByteReader in, BoneTracks& bone) {
    in.Take(4);
    for (double& coordinate : bone.pivot)
        coordinate = FiniteDouble(in);
    bone.rotations.resize(CountOf(in, in.U32(), 36));
    for (RotationKey& key : bone.rotations) {
        key.time = in.U32();
        for (double& component : key.rotation)
            component = FiniteDouble(in);
    }
}

void GetPositions(ByteReader in, BoneTracks& bone) {
    in.Take(4);
    bone.positions.resize(CountOf(in, in.U32(), 28));
    for (PositionKey& key : bone.positions) {
        key.time = in.U32();
        for (double& coordinate : key.position)
            coordinate = FiniteDouble(in);
    }
}

template <class Key>
void CheckTimes(const std::vector<Key>& keys, uint32_t length, const std::string& fileName) {
    bool rising = !keys.empty() && keys.front().time == CHARACTER_FIRST_TIME && keys.back().time <= length;
    for (size_t k = 1; k < keys.size(); ++k)
        rising = rising && keys[k - 1].time < keys[k].time;
    if (!rising) Refuse(fileName, 0, "has keys that do not rise from the start to the length", REMEDY);
}

std::vector<int32_t> GetCommands(ByteReader in, uint32_t bones) {
    std::vector<int32_t> commands;
    int depth = 0;
    for (int32_t command = in.I32(); command != COMMAND_END; command = in.I32()) {
        if (command == COMMAND_PUSH) ++depth;
        if (command == COMMAND_POP) --depth;
        if (command < COMMAND_POP || command >= static_cast<int32_t>(bones) || depth < 0 || depth > STACK_LIMIT) {
            Refuse(in.File(), 0, fmt::format("has the skeleton command {} where it cannot be", command), REMEDY);
        }
        commands.push_back(command);
    }
    if (depth != 0) Refuse(in.File(), 0, "pushes without popping", REMEDY);
    return commands;
}

}  // namespace

std::vector<uint8_t> EncodeMesh(const CharacterMesh& mesh) {
    ByteWriter out;
    out.U32(0);
    out.U32(mesh.boneCount);
    out.U32(0);
    for (uint32_t i = 0; i < mesh.boneCount; ++i)
        out.U32(12 + 4 * mesh.boneCount);
    out.U32(0);
    out.U32(static_cast<uint32_t>(mesh.points.size()));
    out.U32(static_cast<uint32_t>(mesh.triangles.size()));
    for (const auto& point : mesh.points) {
        for (const float coordinate : point)
            out.F32(coordinate);
    }
    for (const auto& triangle : mesh.triangles) {
        for (const uint32_t point : triangle)
            out.U32(point);
    }
    return out.bytes;
}

CharacterMesh DecodeMesh(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    CharacterMesh mesh;
    in.Take(4);
    mesh.boneCount = in.U32();
    if (mesh.boneCount < 1 || mesh.boneCount > CHARACTER_BONES) {
        Refuse(fileName, 0, fmt::format("says it has {} bones", mesh.boneCount), REMEDY);
    }
    in.Take(4);
    const uint32_t start = 12 + 4 * mesh.boneCount;
    for (uint32_t i = 0; i < mesh.boneCount; ++i) {
        if (in.U32() != start) Refuse(fileName, 0, "has more than one part", REMEDY);
    }
    in.Take(4);
    const uint32_t points = in.U32();
    const uint32_t triangles = in.U32();
    mesh.points.resize(CountOf(in, points, 12));
    for (auto& point : mesh.points) {
        for (float& coordinate : point)
            coordinate = FiniteFloat(in);
    }
    mesh.triangles.resize(CountOf(in, triangles, 12));
    for (auto& triangle : mesh.triangles) {
        for (uint32_t& point : triangle) {
            point = in.U32();
            if (point >= points) Refuse(fileName, 0, fmt::format("names the point {} of {}", point, points), REMEDY);
        }
    }
    RefuseRest(in);
    return mesh;
}

std::vector<uint8_t> EncodeSkin(const std::vector<SkinTriangle>& skin) {
    ByteWriter out;
    out.Zeros(SKIN_HEADER_BYTES);
    for (const SkinTriangle& triangle : skin) {
        out.U32(triangle.texture);
        for (const auto& corner : triangle.corners) {
            out.F32(corner[0]);
            out.F32(corner[1]);
        }
    }
    return out.bytes;
}

std::vector<SkinTriangle> DecodeSkin(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    in.Take(SKIN_HEADER_BYTES);
    std::vector<SkinTriangle> skin(in.Left() / SKIN_TRIANGLE_BYTES);
    for (SkinTriangle& triangle : skin) {
        triangle.texture = in.U32();
        for (auto& corner : triangle.corners)
            corner = {FiniteFloat(in), FiniteFloat(in)};
    }
    RefuseRest(in);
    return skin;
}

std::vector<uint8_t> EncodeWeights(const std::vector<WeightBlock>& blocks) {
    ByteWriter out;
    out.Zeros(6);
    out.U16(static_cast<uint32_t>(blocks.size()));
    for (const WeightBlock& block : blocks) {
        out.U16(static_cast<uint32_t>(block.hard.size()));
        for (const uint16_t point : block.hard)
            out.U16(point);
        out.U16(static_cast<uint32_t>(block.soft.size()));
        for (const SoftPoint& soft : block.soft) {
            out.U16(soft.point);
            out.U16(soft.weight);
        }
    }
    return out.bytes;
}

std::vector<WeightBlock> DecodeWeights(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    in.Take(3);
    const uint8_t version = in.U8();
    const uint16_t welds = in.U16();
    if (version != 0 || welds != 0) {
        Refuse(fileName, 0, fmt::format("is of version {} with {} welds", version, welds), REMEDY);
    }
    const uint16_t blockCount = in.U16();
    std::vector<WeightBlock> blocks(CountOf(in, blockCount, 4));
    for (WeightBlock& block : blocks) {
        const uint16_t hardCount = in.U16();
        block.hard.resize(CountOf(in, hardCount, 2));
        for (uint16_t& point : block.hard)
            point = in.U16();
        const uint16_t softCount = in.U16();
        block.soft.resize(CountOf(in, softCount, 4));
        for (SoftPoint& soft : block.soft) {
            soft.point = in.U16();
            soft.weight = in.U16();
        }
    }
    RefuseRest(in);
    return blocks;
}

std::vector<uint8_t> EncodeAnimation(const CharacterAnimation& animation) {
    const auto tracks = static_cast<uint32_t>(animation.bones.size());
    const uint32_t rotationTable = ANIMATION_HEADER_BYTES + 4 * static_cast<uint32_t>(animation.commands.size() + 1);
    const uint32_t tableBytes = 4 + 4 * tracks;
    ByteWriter out;
    for (const uint32_t field :
         {0U, animation.length, tracks, animation.hiddenBlock, rotationTable, rotationTable + tableBytes, 0U, 0U}) {
        out.U32(field);
    }
    for (const int32_t command : animation.commands)
        out.I32(command);
    out.I32(COMMAND_END);
    uint32_t offset = rotationTable + 2 * tableBytes;
    out.U32(0);
    for (const BoneTracks& bone : animation.bones) {
        out.U32(offset);
        offset += TrackBytes(bone.rotations, 32, 36);
    }
    out.U32(0);
    for (const BoneTracks& bone : animation.bones) {
        out.U32(offset);
        offset += TrackBytes(bone.positions, 8, 28);
    }
    for (const BoneTracks& bone : animation.bones)
        PutRotations(out, bone);
    for (const BoneTracks& bone : animation.bones)
        PutPositions(out, bone);
    return out.bytes;
}

CharacterAnimation DecodeAnimation(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(content, fileName);
    CharacterAnimation animation;
    in.Take(4);
    animation.length = in.U32();
    const uint32_t tracks = in.U32();
    animation.hiddenBlock = in.U32();
    ByteReader rotationTable = At(content, fileName, in.U32());
    ByteReader positionTable = At(content, fileName, in.U32());
    animation.commands = GetCommands(At(content, fileName, ANIMATION_HEADER_BYTES), std::min(tracks, 0x7FFFFFFFU));
    rotationTable.Take(4);
    positionTable.Take(4);
    if (tracks > CHARACTER_BONES) Refuse(fileName, 0, fmt::format("says it has {} tracks", tracks), REMEDY);
    animation.bones.resize(tracks);
    for (BoneTracks& bone : animation.bones) {
        GetRotations(At(content, fileName, rotationTable.U32()), bone);
        GetPositions(At(content, fileName, positionTable.U32()), bone);
        CheckTimes(bone.rotations, animation.length, fileName);
        CheckTimes(bone.positions, animation.length, fileName);
    }
    return animation;
}
