#include "game_pose.h"

#include "charc/compile.h"

#include <algorithm>
#include <cmath>

namespace {

using Quat = std::array<double, 4>;                   // w x y z
using Matrix = std::array<std::array<double, 4>, 3>;  // of column vectors

Matrix Multiply(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 4; ++j) {
            for (size_t k = 0; k < 3; ++k)
                product[i][j] += a[i][k] * b[k][j];
        }
        product[i][3] += a[i][3];
    }
    return product;
}

Matrix Rotation(const Quat& q) {
    const auto& [w, x, y, z] = q;
    return {{{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y), 0},
             {2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x), 0},
             {2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z, 0}}};
}

Matrix Moved(Matrix m, const Vec& t) {
    for (size_t i = 0; i < 3; ++i)
        m[i][3] += t[i];
    return m;
}

Vec Apply(const Matrix& m, const Vec& p) {
    Vec r;
    for (size_t i = 0; i < 3; ++i)
        r[i] = m[i][0] * p[0] + m[i][1] * p[1] + m[i][2] * p[2] + m[i][3];
    return r;
}

Quat SlerpAsStored(const Quat& a, const Quat& b, double t) {
    t = std::clamp(t, 0.0, 1.0);
    const double dot = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
    const double angle = std::abs(dot) >= 1 ? 0 : std::acos(dot);
    const double ka = angle == 0 ? 1 - t : std::sin((1 - t) * angle) / std::sin(angle);
    const double kb = angle == 0 ? t : std::sin(t * angle) / std::sin(angle);
    return {ka * a[0] + kb * b[0], ka * a[1] + kb * b[1], ka * a[2] + kb * b[2], ka * a[3] + kb * b[3]};
}

template <class Key>
size_t KeyBefore(const std::vector<Key>& keys, double time) {
    size_t k = 0;
    while (k + 1 < keys.size() && keys[k + 1].time < time)
        ++k;
    return k;
}

Quat RotationAt(const std::vector<RotationKey>& keys, double time) {
    const size_t k = KeyBefore(keys, time);
    if (k + 1 == keys.size()) return keys[k].rotation;
    const double f = (time - keys[k].time) / (keys[k + 1].time - keys[k].time);
    return SlerpAsStored(keys[k].rotation, keys[k + 1].rotation, f);
}

Vec PositionAt(const std::vector<PositionKey>& keys, double time) {
    const size_t k = KeyBefore(keys, time);
    Vec p = keys[k].position;
    if (k + 1 == keys.size()) return p;
    const double f = (time - keys[k].time) / (keys[k + 1].time - keys[k].time);
    for (size_t i = 0; i < 3; ++i)
        p[i] += (keys[k + 1].position[i] - p[i]) * f;
    return p;
}

std::array<Matrix, CHARACTER_BONES> BonesAt(const CharacterAnimation& animation, double time) {
    std::array<Matrix, CHARACTER_BONES> bones{};
    Matrix current{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    std::vector<Matrix> stack;
    bool first = true;
    for (const int32_t command : animation.commands) {
        if (command == COMMAND_PUSH) stack.push_back(current);
        if (command == COMMAND_POP) {
            current = stack.back();
            stack.pop_back();
        }
        if (command < 0) continue;
        const BoneTracks& bone = animation.bones[static_cast<size_t>(command)];
        const Matrix turn = Rotation(RotationAt(bone.rotations, time));
        const Vec turned = Apply(turn, bone.pivot);
        const Vec moved = first ? PositionAt(bone.positions, time) : bone.pivot;
        const double times = first ? 2 : 1;
        current = Multiply(current, Moved(turn, {moved[0] - times * turned[0], moved[1] - times * turned[1],
                                                 moved[2] - times * turned[2]}));
        bones[static_cast<size_t>(command)] = current;
        first = false;
    }
    return bones;
}

}  // namespace

GameCharacter DecodeAll(const std::vector<OutputFile>& files) {
    GameCharacter character;
    for (const OutputFile& file : files) {
        const std::string end = file.name.substr(file.name.size() - 4);
        if (end == ".msh") character.mesh = DecodeMesh(file.content, file.name);
        if (end == ".tuv") character.skins[file.name] = DecodeSkin(file.content, file.name);
        if (end == ".wei") character.blocks = DecodeWeights(file.content, file.name);
        if (end == ".anm") character.clips[file.name] = DecodeAnimation(file.content, file.name);
    }
    return character;
}

std::vector<Vec> PointsAt(const GameCharacter& character, const std::string& clip, double time) {
    const auto bones = BonesAt(character.clips.at(clip), time);
    std::vector<Vec> points(character.mesh.points.size(), Vec{1e9, 1e9, 1e9});  // where nothing has put them yet
    for (size_t b = 0; b < character.blocks.size(); ++b) {
        const Matrix& bone = bones[CHARACTER_BLOCK_BONES[b]];
        const auto placed = [&](uint16_t point) {
            const auto& p = character.mesh.points.at(point);
            return Apply(bone, {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])});
        };
        for (const uint16_t point : character.blocks[b].hard)
            points[point] = placed(point);
        for (const SoftPoint& soft : character.blocks[b].soft) {
            const double f = soft.weight / 65536.0;
            const Vec p = placed(soft.point);
            for (size_t i = 0; i < 3; ++i)
                points[soft.point][i] = f * p[i] + (1 - f) * points[soft.point][i];
        }
    }
    return points;
}
