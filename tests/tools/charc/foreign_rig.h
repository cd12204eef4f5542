// A rigged model as another author's program might export it: z up, centimetres, an armature that turns and scales it
// all, bones at any angle, other names, two joints too many.
#pragma once

#include <tiny_gltf.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

using Vec = std::array<double, 3>;
using Quat = std::array<double, 4>;                   // w x y z
using Matrix = std::array<std::array<double, 4>, 3>;  // of column vectors

Matrix Multiply(const Matrix& a, const Matrix& b);
Matrix Rotation(const Quat& q);
Matrix Moved(Matrix m, const Vec& t);
Vec Apply(const Matrix& m, const Vec& p);
Matrix InverseOf(const Matrix& rigid);

class Random {
public:
    double Next();  // 0..1
    double Next(double least, double most) { return least + (most - least) * Next(); }
    Quat Turn(double mostRadians);

private:
    uint32_t state_ = 12345;
};

struct ForeignRig {
    struct Vertex {
        Vec position;  // armature space
        std::array<double, 2> uv{};
        std::array<int, 4> joints{};
        std::array<double, 4> weights{};
    };
    struct Clip {
        std::string name;
        std::vector<double> times;
        std::vector<std::vector<Quat>> turns;  // by key and joint, local
        std::vector<Vec> rootPositions;        // by key, local
    };

    std::vector<std::string> names;
    std::vector<int> parents;
    std::vector<Quat> bindTurns;
    std::vector<Vec> bindPositions;  // both local
    std::vector<Vertex> vertices;
    std::vector<std::array<uint32_t, 3>> triangles;
    std::vector<Clip> clips;

    ForeignRig();
    void AddBlob(int joint, int rings);  // a closed surface of 2 * rings * rings triangles around a joint
    tinygltf::Model ToGltf() const;
    void Write(const std::filesystem::path& path) const;
    // Where a vertex is in a clip at one of its keys, by the rules of glTF: metres, y up, facing +z.
    Vec SkinnedVertex(const Vertex& vertex, const Clip& clip, size_t key) const;
    // The recipe that fits: 22 of the joints, the two others folded, clips 0 and 1 by turns.
    std::string Recipe(const std::string& model) const;

private:
    Matrix Armature() const;
    std::vector<Matrix> InArmature(const std::vector<Quat>& turns, const Vec& root) const;
};

void WriteGltf(const tinygltf::Model& gltf, const std::filesystem::path& path);
void WriteText(const std::filesystem::path& path, const std::string& text);
