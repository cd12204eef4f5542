#include "low_poly_model.h"

#include "formats/binary.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string>

namespace {

using Point = std::array<double, 3>;

struct Joint {
    std::string name;
    int parent;
    Point place;    // in the world, looking along +z until it is turned
    double radius;  // of the tube to it from its parent
};

struct Key {
    int joint;
    Point axis;
    double degrees;  // swings from minus to plus this and back
};

struct Clip {
    std::string name;
    double seconds;
    std::vector<Key> swings;
    double away;  // of the hips, from beginning to end
};

std::vector<Joint> Joints() {
    std::vector<Joint> joints = {{"Root", -1, {0, 0, 0}, 0},           {"Hips", 0, {0, 3.2, 0}, 0},
                                 {"Spine", 1, {0, 3.6, 0}, 0.5},       {"Spine1", 2, {0, 4.1, 0}, 0.55},
                                 {"Neck", 3, {0, 4.9, 0}, 0.3},        {"Head", 4, {0, 5.2, 0}, 0.25},
                                 {"HeadTop_End", 5, {0, 5.9, 0}, 0.35}};
    for (const double side : {1.0, -1.0}) {
        const std::string s = side > 0 ? "Left" : "Right";
        const auto add = [&](const std::string& name, int parent, double x, double y, double z, double radius) {
            joints.push_back({s + name, parent, {side * x, y, z}, radius});
            return static_cast<int>(joints.size()) - 1;
        };
        int at = add("Shoulder", 3, 0.2, 4.7, 0, 0.2);
        at = add("Arm", at, 0.6, 4.7, 0, 0.2);
        at = add("ForeArm", at, 1.5, 4.7, 0, 0.18);
        const int hand = add("Hand", at, 2.3, 4.7, 0, 0.15);
        for (int finger = 0; finger < 3; ++finger) {
            const double z = 0.1 * finger - 0.1;
            const int first = add(fmt::format("HandFinger{}1", finger), hand, 2.5, 4.7, z, 0.05);
            add(fmt::format("HandFinger{}2", finger), first, 2.7, 4.7, z, 0.04);
        }
        at = add("UpLeg", 1, 0.35, 3.1, 0, 0.3);
        at = add("Leg", at, 0.35, 1.7, 0.05, 0.28);
        at = add("Foot", at, 0.35, 0.3, 0, 0.2);
        at = add("ToeBase", at, 0.35, 0.12, 0.4, 0.12);
        add("Toe_End", at, 0.35, 0.12, 0.7, 0.12);
    }
    for (Joint& joint : joints)
        joint.place = {-joint.place[0], joint.place[1], -joint.place[2]};
    return joints;
}

int Find(const std::vector<Joint>& joints, const std::string& name) {
    int i = 0;
    while (joints[static_cast<size_t>(i)].name != name)
        ++i;
    return i;
}

class GlbWriter {
public:
    GlbWriter() : joints_(Joints()) {}

    std::vector<uint8_t> Write() {
        for (size_t i = 1; i < joints_.size(); ++i) {
            if (joints_[i].radius > 0) AddTube(static_cast<int>(i));
        }
        std::string primitive = WriteMesh();
        const std::string binds = WriteBinds();
        const int hips = 1, left = Find(joints_, "LeftUpLeg"), right = Find(joints_, "RightUpLeg"),
                  chest = Find(joints_, "Spine1"), arm = Find(joints_, "LeftArm");
        const Point x = {1, 0, 0}, z = {0, 0, 1};
        const std::string animations = WriteClip({"Idle", 2, {{chest, x, 2}}, 0}) + "," +
                                       WriteClip({"Walking", 1, {{left, x, 25}, {right, x, -25}, {arm, x, 20}}, 3}) +
                                       "," +
                                       WriteClip({"Running", 0.5, {{left, x, 50}, {right, x, -50}, {chest, z, 5}}, 0}) +
                                       "," + WriteClip({"Jump", 1, {{hips, x, 15}}, 0});
        const std::string text = fmt::format(
            R"({{"asset":{{"version":"2.0"}},"scene":0,"scenes":[{{"nodes":[0,{0}]}}],"nodes":[{1},)"
            R"({{"name":"Body","mesh":0,"skin":0}}],"meshes":[{{"primitives":[{2}]}}],)"
            R"("materials":[{{"name":"Atlas"}}],"skins":[{{"joints":[{3}],"inverseBindMatrices":{4}}}],)"
            R"("animations":[{5}],"accessors":[{6}],"bufferViews":[{7}],"buffers":[{{"byteLength":{8}}}]}})",
            joints_.size(), Nodes(), primitive, AllJoints(), binds, animations, accessors_, views_, data_.bytes.size());
        return Pack(text);
    }

private:
    struct Vertex {
        Point place;
        int joint;
        double u, v;
    };

    // Closed, of eight sides and three lengths, following the joint at its beginning.
    void AddTube(int end) {
        constexpr uint32_t SIDES = 8, RINGS = 4;
        const Joint& to = joints_[static_cast<size_t>(end)];
        const Point a = joints_[static_cast<size_t>(to.parent)].place, b = to.place;
        const auto first = static_cast<uint32_t>(vertices_.size());
        const bool upright = std::abs(b[1] - a[1]) > std::abs(b[0] - a[0]);
        for (uint32_t ring = 0; ring < RINGS; ++ring) {
            for (uint32_t side = 0; side < SIDES; ++side) {
                const double t = ring / (RINGS - 1.0), angle = side * 6.283185307 / SIDES;
                const double c = std::cos(angle) * to.radius, s = std::sin(angle) * to.radius;
                const Point middle = {a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t};
                const Point place = upright ? Point{middle[0] + c, middle[1], middle[2] + s}
                                            : Point{middle[0], middle[1] + c, middle[2] + s};
                vertices_.push_back({place, to.parent, side / (SIDES - 1.0), t});
            }
        }
        const auto quad = [&](uint32_t p, uint32_t q, uint32_t r, uint32_t s) {
            for (const uint32_t i : {p, q, r, p, r, s})
                indices_.push_back(first + i);
        };
        for (uint32_t ring = 0; ring + 1 < RINGS; ++ring) {
            for (uint32_t side = 0; side < SIDES; ++side) {
                const uint32_t next = (side + 1) % SIDES;
                quad(ring * SIDES + side, ring * SIDES + next, (ring + 1) * SIDES + next, (ring + 1) * SIDES + side);
            }
        }
        for (const uint32_t ring : {0U, (RINGS - 1) * SIDES}) {
            for (uint32_t side = 1; side + 1 < SIDES; ++side)
                indices_.insert(indices_.end(), {first + ring, first + ring + side, first + ring + side + 1});
        }
    }

    // Returns the accessor's number; `component` as the format numbers them.
    int Add(const ByteWriter& values, size_t count, const char* type, int component) {
        const bool first = views_.empty();
        views_ += fmt::format(R"({}{{"buffer":0,"byteOffset":{},"byteLength":{}}})", first ? "" : ",",
                              data_.bytes.size(), values.bytes.size());
        accessors_ += fmt::format(R"({}{{"bufferView":{},"componentType":{},"count":{},"type":"{}"}})",
                                  first ? "" : ",", count_, component, count, type);
        data_.Append(values.bytes.data(), values.bytes.size());
        data_.Zeros((4 - data_.bytes.size() % 4) % 4);
        return count_++;
    }

    static constexpr int BYTES = 5121, LONGS = 5125, FLOATS = 5126;

    std::string WriteMesh() {
        ByteWriter places, coordinates, joints, weights, indices;
        for (const Vertex& vertex : vertices_) {
            for (const double c : vertex.place)
                places.F32(static_cast<float>(c));
            coordinates.F32(static_cast<float>(vertex.u));
            coordinates.F32(static_cast<float>(vertex.v));
            joints.U8(static_cast<uint32_t>(vertex.joint));
            joints.Zeros(3);
            weights.F32(1);
            weights.Zeros(12);
        }
        for (const uint32_t index : indices_)
            indices.U32(index);
        const size_t n = vertices_.size();
        const int position = Add(places, n, "VEC3", FLOATS), uv = Add(coordinates, n, "VEC2", FLOATS),
                  joint = Add(joints, n, "VEC4", BYTES), weight = Add(weights, n, "VEC4", FLOATS),
                  index = Add(indices, indices_.size(), "SCALAR", LONGS);
        return fmt::format(R"({{"attributes":{{"POSITION":{},"TEXCOORD_0":{},"JOINTS_0":{},"WEIGHTS_0":{}}},)"
                           R"("indices":{},"material":0}})",
                           position, uv, joint, weight, index);
    }

    std::string WriteBinds() {
        ByteWriter matrices;
        for (const Joint& joint : joints_) {
            for (int i = 0; i < 12; ++i)
                matrices.F32(i % 5 == 0 ? 1.0F : 0.0F);
            for (const double c : joint.place)
                matrices.F32(static_cast<float>(-c));
            matrices.F32(1);
        }
        return std::to_string(Add(matrices, joints_.size(), "MAT4", FLOATS));
    }

    std::string WriteClip(const Clip& clip) {
        constexpr int KEYS = 5;
        ByteWriter times;
        for (int k = 0; k < KEYS; ++k)
            times.F32(static_cast<float>(clip.seconds * k / (KEYS - 1)));
        const int input = Add(times, KEYS, "SCALAR", FLOATS);
        std::string samplers, channels;
        const auto channel = [&](const ByteWriter& values, const char* type, int joint, const char* path) {
            const int output = Add(values, KEYS, type, FLOATS);
            const char* comma = samplers.empty() ? "" : ",";
            channels += fmt::format(R"({}{{"sampler":{},"target":{{"node":{},"path":"{}"}}}})", comma, samplerCount_,
                                    joint, path);
            samplers += fmt::format(R"({}{{"input":{},"output":{}}})", comma, input, output);
            ++samplerCount_;
        };
        samplerCount_ = 0;
        for (const Key& key : clip.swings) {
            ByteWriter turns;
            for (const double share : {0.0, 1.0, 0.0, -1.0, 0.0}) {
                const double half = share * key.degrees * 3.14159265 / 360;
                for (const double c : key.axis)
                    turns.F32(static_cast<float>(c * std::sin(half)));
                turns.F32(static_cast<float>(std::cos(half)));
            }
            channel(turns, "VEC4", key.joint, "rotation");
        }
        ByteWriter moves;
        for (int k = 0; k < KEYS; ++k) {
            for (const double c : {0.0, 3.2, -clip.away * k / (KEYS - 1)})
                moves.F32(static_cast<float>(c));
        }
        channel(moves, "VEC3", 1, "translation");
        return fmt::format(R"({{"name":"{}","samplers":[{}],"channels":[{}]}})", clip.name, samplers, channels);
    }

    std::string Nodes() const {
        std::string nodes;
        for (size_t i = 0; i < joints_.size(); ++i) {
            std::string children;
            for (size_t k = 0; k < joints_.size(); ++k) {
                if (joints_[k].parent == static_cast<int>(i))
                    children += (children.empty() ? "" : ",") + std::to_string(k);
            }
            const Joint& joint = joints_[i];
            const Point from = joint.parent < 0 ? Point{} : joints_[static_cast<size_t>(joint.parent)].place;
            nodes += fmt::format(R"({}{{"name":"{}","translation":[{},{},{}]{}}})", i == 0 ? "" : ",", joint.name,
                                 joint.place[0] - from[0], joint.place[1] - from[1], joint.place[2] - from[2],
                                 children.empty() ? "" : fmt::format(R"(,"children":[{}])", children));
        }
        return nodes;
    }

    std::string AllJoints() const {
        std::string all;
        for (size_t i = 0; i < joints_.size(); ++i)
            all += (i == 0 ? "" : ",") + std::to_string(i);
        return all;
    }

    std::vector<uint8_t> Pack(std::string text) {
        text.append((4 - text.size() % 4) % 4, ' ');
        ByteWriter file;
        file.Append("glTF", 4);
        file.U32(2);
        file.U32(static_cast<uint32_t>(28 + text.size() + data_.bytes.size()));
        file.U32(static_cast<uint32_t>(text.size()));
        file.Append("JSON", 4);
        file.Append(text.data(), text.size());
        file.U32(static_cast<uint32_t>(data_.bytes.size()));
        file.Append("BIN\0", 4);
        file.Append(data_.bytes.data(), data_.bytes.size());
        return file.bytes;
    }

    std::vector<Joint> joints_;
    std::vector<Vertex> vertices_;
    std::vector<uint32_t> indices_;
    ByteWriter data_;
    std::string views_, accessors_;
    int count_ = 0, samplerCount_ = 0;
};

}  // namespace

std::vector<uint8_t> LowPolyModel() {
    return GlbWriter().Write();
}
