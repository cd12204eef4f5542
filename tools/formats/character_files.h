// A skinned character: mesh (.msh), texture coordinates (.tuv), skin weights (.wei) and animations (.anm). All
// little-endian.
//
// Mesh: u32 0, u32 bone count B, u32 0, B x u32 offset of the part (all the same one); the part: u32 0, u32 points,
//   u32 triangles, then 3 x f32 a point and 3 x u32 a triangle.
// Texture coordinates: 16 zero bytes, then 28 a triangle, in the mesh's order: u32 texture, 3 x (f32 u, f32 v).
// Weights: 3 zero bytes, i8 version (0), u16 welds (0), u16 blocks; a block: u16 count, count x u16 hard point, u16
//   count, count x (u16 soft point, u16 weight).
// Animation: u32 0, u32 length, u32 tracks, u32 hidden block, u32 offsets of the rotation and of the position table,
//   8 zero bytes, i32 skeleton commands up to -3. A table: u32 0, u32 offset a track. Rotation track: u32 0, 3 x f64
//   pivot, i32 count, count x (u32 time, f64 w x y z). Position track: u32 0, i32 count, count x (u32 time, f64 x y z).
//
// Axes: y up, the character faces -z and its right hand is at -x; the root bone's pivot is the origin. Corners run
// counter-clockwise as seen from outside. Every bone turns about its pivot in the mesh's frame; only the first bone of
// the commands also moves.
#pragma once

#include "records/table_facts.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

constexpr size_t CHARACTER_BONES = BONES_MAX;
constexpr size_t CHARACTER_TRIANGLES_MAX = 900;  // so that split pieces find room in the game's tables
constexpr size_t CHARACTER_POINTS_MAX = 500;
constexpr size_t CHARACTER_INFLUENCES_MAX = 3;
constexpr uint32_t CHARACTER_FIRST_TIME = ANIM_START_TIME;
constexpr double CHARACTER_TIME_PER_SECOND = ANIM_TICK_UNITS / 0.016;
static_assert(CHARACTER_TIME_PER_SECOND == 312.5);
constexpr uint32_t CHARACTER_NO_HIDDEN_BLOCK = 255;

// The bone that weight block b moves. A soft point blends with where the earlier blocks put it.
constexpr std::array<uint8_t, CHARACTER_BONES> CHARACTER_BLOCK_BONES = {4, 3, 2, 21, 19, 16, 18, 5, 15, 17, 20,
                                                                        1, 0, 6, 7,  9,  11, 13, 8, 10, 12, 14};

struct CharacterMesh {
    uint32_t boneCount = CHARACTER_BONES;
    std::vector<std::array<float, 3>> points;
    std::vector<std::array<uint32_t, 3>> triangles;
};

struct SkinTriangle {
    uint32_t texture = 0;                           // counted from the first skin slot
    std::array<std::array<float, 2>, 3> corners{};  // u, v in 1/256 texel
};

struct SoftPoint {
    uint16_t point = 0;
    uint16_t weight = 0;  // 1/65536
};

struct WeightBlock {
    std::vector<uint16_t> hard;
    std::vector<SoftPoint> soft;
};

struct RotationKey {
    uint32_t time = CHARACTER_FIRST_TIME;
    std::array<double, 4> rotation{1, 0, 0, 0};  // w x y z
};

struct PositionKey {
    uint32_t time = CHARACTER_FIRST_TIME;
    std::array<double, 3> position{};
};

struct BoneTracks {
    std::array<double, 3> pivot{};
    std::vector<RotationKey> rotations;
    std::vector<PositionKey> positions;
};

constexpr int32_t COMMAND_PUSH = -1;
constexpr int32_t COMMAND_POP = -2;

struct CharacterAnimation {
    uint32_t length = 0;
    uint32_t hiddenBlock = CHARACTER_NO_HIDDEN_BLOCK;
    std::vector<int32_t> commands;  // bones, COMMAND_PUSH and COMMAND_POP; without the end mark
    std::vector<BoneTracks> bones;
};

std::vector<uint8_t> EncodeMesh(const CharacterMesh& mesh);
std::vector<uint8_t> EncodeSkin(const std::vector<SkinTriangle>& skin);
std::vector<uint8_t> EncodeWeights(const std::vector<WeightBlock>& blocks);
std::vector<uint8_t> EncodeAnimation(const CharacterAnimation& animation);

// ContentError for anything that leaves the file or its tables, and for what the layouts above do not allow.
CharacterMesh DecodeMesh(std::vector<uint8_t> content, const std::string& fileName);
std::vector<SkinTriangle> DecodeSkin(std::vector<uint8_t> content, const std::string& fileName);
std::vector<WeightBlock> DecodeWeights(std::vector<uint8_t> content, const std::string& fileName);
// Keys ascend in time from CHARACTER_FIRST_TIME to at most the length; pushes and pops match; bones exist.
CharacterAnimation DecodeAnimation(std::vector<uint8_t> content, const std::string& fileName);
