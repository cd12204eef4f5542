#include "mapc/emit.h"

#include "records/walking_facts.h"

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace {

constexpr double LEAF_RADIUS_MIN = 240;  // engine units: the reach test of a smaller leaf misses contacts and shots

WorldVector Narrowed(const Vec3& v) {
    return {static_cast<float>(v.x) + 0.0f, static_cast<float>(v.y) + 0.0f, static_cast<float>(v.z) + 0.0f};
}

class Emitter {
public:
    Emitter(const Tree& tree, const Mesh& mesh, const Brushes& brushes, const Placement& placement)
        : tree_(tree), mesh_(mesh), brushes_(brushes), placement_(placement) {}

    WorldFile Emit() {
        FindPlaneAnchors();
        FindSmoothNormals();
        for (const auto& leaf : mesh_.leaves)
            EmitLeaf(leaf);
        for (const TreeNode& node : tree_.nodes)
            EmitNode(node);
        SetNodeBoxes(0);
        return std::move(world_);
    }

private:
    // Finds a place on each plane where it is used, so that its rounded record fits best there.
    void FindPlaneAnchors() {
        anchors_.resize(static_cast<size_t>(brushes_.planes.Count()));
        planeOfId_.resize(anchors_.size(), -1);
        for (size_t i = 0; i < anchors_.size(); ++i) {
            const Plane& plane = brushes_.planes[static_cast<int>(i)];
            anchors_[i] = plane.normal * plane.dist;
        }
        std::vector<char> known(anchors_.size(), 0);
        for (const auto& leaf : mesh_.leaves) {
            for (const MeshPolygon& polygon : leaf) {
                const size_t id = static_cast<size_t>(polygon.plane | 1);
                if (known[id]) continue;
                known[id] = 1;
                anchors_[id] = anchors_[id - 1] = mesh_.vertices[static_cast<size_t>(polygon.corners[0])];
            }
        }
    }

    uint32_t PlaneOf(int id) {
        int& number = planeOfId_[static_cast<size_t>(id)];
        if (number < 0) number = AddPlane(id);
        return static_cast<uint32_t>(number);
    }

    // Welding can turn the plane of a sliver, and a plane that disagrees with its corners has no solid behind it. The
    // normal of its own plane; nothing: the brush's plane is right.
    std::optional<Vec3> TurnedNormal(const MeshPolygon& polygon) const {
        constexpr double AGREES = 0.995;  // cosine
        const Vec3 normal = WindingNormal(WindingOf(polygon));
        const double length = Length(normal);
        if (length == 0 || Dot(normal, brushes_.planes[polygon.plane].normal) >= AGREES * length) return {};
        return normal * (1 / length);
    }

    uint32_t PlaneOf(const MeshPolygon& polygon) {
        const std::optional<Vec3> turned = TurnedNormal(polygon);
        if (!turned) return PlaneOf(polygon.plane);
        return static_cast<uint32_t>(AddPlane(*turned, WindingCentre(WindingOf(polygon))));
    }

    int AddPlane(int id) { return AddPlane(brushes_.planes[id].normal, anchors_[static_cast<size_t>(id)]); }

    // The engine's normals point the other way: into the solid.
    int AddPlane(const Vec3& outward, const Vec3& place) {
        const WorldVector normal = Narrowed(-placement_.Turned(outward));
        const double offset = -Dot({normal[0], normal[1], normal[2]}, placement_.ToEngine(place));
        const WorldPlane plane{normal, static_cast<float>(offset) + 0.0f};
        const auto [entry, isNew] =
            planeNumbers_.try_emplace({normal[0], normal[1], normal[2], plane.offset}, world_.planes.size());
        if (isNew) world_.planes.push_back(plane);
        return static_cast<int>(entry->second);
    }

    bool IsSmooth(const MeshPolygon& polygon) const {
        return brushes_.textures[static_cast<size_t>(polygon.texture)].smooth;
    }

    // Adds up the normals of the terrain's faces around each vertex; large faces count more.
    void FindSmoothNormals() {
        for (const auto& leaf : mesh_.leaves) {
            for (const MeshPolygon& polygon : leaf) {
                if (!IsSmooth(polygon)) continue;
                const Vec3 normal = WindingNormal(WindingOf(polygon));
                for (const int vertex : polygon.corners)
                    smoothNormals_[vertex] = smoothNormals_[vertex] + normal;
            }
        }
    }

    Winding WindingOf(const MeshPolygon& polygon) const {
        Winding winding;
        for (const int vertex : polygon.corners)
            winding.push_back(mesh_.vertices[static_cast<size_t>(vertex)]);
        return winding;
    }

    Vec3 NormalAt(int vertex, const MeshPolygon& polygon) const {
        if (!IsSmooth(polygon)) return brushes_.planes[polygon.plane].normal;
        const Vec3& sum = smoothNormals_.at(vertex);
        return sum * (1 / Length(sum));
    }

    // Faces of one plane share a point's light, and those of a terrain; others that meet at an angle do not.
    uint32_t PointOf(int vertex, const MeshPolygon& polygon) {
        const uint32_t group = IsSmooth(polygon) ? UINT32_MAX : static_cast<uint32_t>(polygon.plane);
        const uint64_t key = (uint64_t{static_cast<uint32_t>(vertex)} << 32) | group;
        const auto [entry, isNew] = pointNumbers_.try_emplace(key, world_.points.size());
        if (isNew) {
            const WorldVector position = placement_.ToFile(mesh_.vertices[static_cast<size_t>(vertex)]);
            world_.points.push_back({position, Narrowed(-placement_.Turned(NormalAt(vertex, polygon)))});
        }
        return static_cast<uint32_t>(entry->second);
    }

    // Where polygons of a leaf are touched at once, each has its own say in how a step is taken, and what comes after a
    // step lifts the player to its own top: treads come first, then walls, risers last, the tallest first among each.
    std::pair<int, double> ContactOrder(const MeshPolygon& polygon) const {
        const double up = TurnedNormal(polygon).value_or(brushes_.planes[polygon.plane].normal).z;
        if (up > STEEP_SLOPE) return {0, 0};
        Box box;
        for (const int corner : polygon.corners)
            box.Add(mesh_.vertices[static_cast<size_t>(corner)]);
        const bool low = (box.max.z - box.min.z) * placement_.scale <= STEP_HEIGHT;
        return {up > -STEEP_SLOPE && low ? 2 : 1, -box.max.z};
    }

    void EmitLeaf(std::vector<MeshPolygon> polygons) {
        WorldLeaf leaf;
        leaf.firstPolygon = static_cast<uint32_t>(world_.polygons.size());
        leaf.polygonCount = static_cast<uint32_t>(polygons.size());
        std::stable_sort(polygons.begin(), polygons.end(),
                         [&](const MeshPolygon& a, const MeshPolygon& b) { return ContactOrder(a) < ContactOrder(b); });
        for (const MeshPolygon& polygon : polygons)
            EmitPolygon(polygon);
        leafBoxes_.push_back(BoxOfLeaf(polygons));
        SetLeafBox(polygons, leaf);
        world_.leaves.push_back(leaf);
    }

    void EmitPolygon(const MeshPolygon& source) {
        const FaceTexture& texture = brushes_.textures[static_cast<size_t>(source.texture)];
        WorldPolygon polygon;
        polygon.cornerCount = static_cast<uint8_t>(source.corners.size());
        polygon.texture = static_cast<uint8_t>(texture.material->slot);
        polygon.shading = texture.cornerLight ? WORLD_CORNER_LIGHT : WORLD_POINT_LIGHT;
        polygon.firstCorner = static_cast<uint32_t>(world_.corners.size());
        polygon.plane = PlaneOf(source);
        for (const int vertex : source.corners) {
            const Vec3& p = mesh_.vertices[static_cast<size_t>(vertex)];
            world_.corners.push_back({PointOf(vertex, source), static_cast<float>(texture.U(p)) + 0.0f,
                                      static_cast<float>(texture.V(p)) + 0.0f});
        }
        world_.polygons.push_back(polygon);
    }

    Box BoxOfLeaf(const std::vector<MeshPolygon>& polygons) const {
        Box box;
        for (const MeshPolygon& polygon : polygons) {
            for (const int vertex : polygon.corners) {
                box.Add(placement_.ToEngine(mesh_.vertices[static_cast<size_t>(vertex)]));
            }
        }
        return box;
    }

    // The engine takes a leaf's radius from the centre to its farthest corner, and looks at its polygons only near that
    // centre. The centre of a small leaf moves out of the solid until the radius is large enough.
    void SetLeafBox(const std::vector<MeshPolygon>& polygons, WorldLeaf& leaf) const {
        const Box& box = leafBoxes_.back();
        if (box.IsEmpty()) return;
        Vec3 outward;
        std::vector<Vec3> corners;
        for (const MeshPolygon& polygon : polygons) {
            Winding winding;
            for (const int vertex : polygon.corners) {
                winding.push_back(mesh_.vertices[static_cast<size_t>(vertex)]);
                corners.push_back(placement_.ToEngine(winding.back()));
            }
            outward = outward + placement_.Turned(WindingNormal(winding));
        }
        const Vec3 centre = PaddedCentre(box.Centre(), outward, corners);
        Vec3 half;
        for (const Vec3& p : corners) {
            for (int axis = 0; axis < 3; ++axis)
                half[axis] = std::max(half[axis], std::abs(p[axis] - centre[axis]));
        }
        leaf.centre = Narrowed(centre);
        leaf.halfExtents = Narrowed(half);
    }

    static Vec3 PaddedCentre(const Vec3& centre, const Vec3& outward, const std::vector<Vec3>& corners) {
        const double length = Length(outward);
        const Vec3 direction = length > 1e-6 ? outward * (1 / length) : Vec3{0, 1, 0};
        double move = std::numeric_limits<double>::max();  // least that brings one corner to the radius
        for (const Vec3& p : corners) {
            const Vec3 way = centre - p;
            const double along = Dot(way, direction);
            const double missing = LEAF_RADIUS_MIN * LEAF_RADIUS_MIN - LengthSquared(way);
            if (missing <= 0) return centre;
            move = std::min(move, std::sqrt(along * along + missing) - along);
        }
        return centre + direction * move;
    }

    // The node's planes are written turned round, as the polygons' are, so the children change places.
    void EmitNode(const TreeNode& node) {
        WorldNode out;
        out.plane = PlaneOf(node.plane);
        out.front = static_cast<int16_t>(node.back);
        out.back = static_cast<int16_t>(node.front);
        world_.nodes.push_back(out);
    }

    Box SetNodeBoxes(int child) {
        if (child < 0) return leafBoxes_[static_cast<size_t>(~child)];
        const TreeNode& node = tree_.nodes[static_cast<size_t>(child)];
        Box box;
        for (const int next : {node.front, node.back}) {
            const Box part = SetNodeBoxes(next);
            if (!part.IsEmpty()) box.Add(part);
        }
        if (!box.IsEmpty()) {
            world_.nodes[static_cast<size_t>(child)].centre = Narrowed(box.Centre());
            world_.nodes[static_cast<size_t>(child)].halfExtents = Narrowed(box.HalfExtents());
        }
        return box;
    }

    const Tree& tree_;
    const Mesh& mesh_;
    const Brushes& brushes_;
    const Placement& placement_;
    WorldFile world_;
    std::vector<Vec3> anchors_;   // for each plane a place on it where it is used
    std::vector<int> planeOfId_;  // number of the record, -1: none yet
    std::vector<Box> leafBoxes_;  // tight boxes of the leaves, engine space
    std::map<std::tuple<float, float, float, float>, size_t> planeNumbers_;
    std::unordered_map<uint64_t, size_t> pointNumbers_;  // numbers of points by vertex and plane; only looked up
    std::map<int, Vec3> smoothNormals_;                  // normals of the terrain's vertices, of any length
};

}  // namespace

WorldFile EmitWorld(const Tree& tree, const Mesh& mesh, const Brushes& brushes, const Placement& placement) {
    return Emitter(tree, mesh, brushes, placement).Emit();
}
