#include "mapc/mesh.h"

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace {

constexpr double ON_EDGE = 0.15;  // a vertex nearer to an edge lies on it; more than welding can move it
constexpr double NEAR_EDGE = 1;   // a vertex farther from an edge lies on none of its parts

uint64_t CellKey(int64_t x, int64_t y, int64_t z) {
    constexpr uint64_t MASK = (uint64_t{1} << 21) - 1;
    return (static_cast<uint64_t>(x) & MASK) | ((static_cast<uint64_t>(y) & MASK) << 21) |
           ((static_cast<uint64_t>(z) & MASK) << 42);
}

// Points by cells of space. Only ever looked up, so its order does not matter.
class PointCells {
public:
    explicit PointCells(double size) : size_(size) {}

    // The borders of the cells avoid the whole numbers, where most points lie.
    int64_t CellOf(double coordinate) const { return static_cast<int64_t>(std::floor(coordinate / size_ + 0.3)); }
    void Add(const Vec3& p, int number) { cells_[CellKey(CellOf(p.x), CellOf(p.y), CellOf(p.z))].push_back(number); }

    template <class Use>
    void ForEach(const Box& box, Use use) const {
        for (int64_t z = CellOf(box.min.z); z <= CellOf(box.max.z); ++z) {
            for (int64_t y = CellOf(box.min.y); y <= CellOf(box.max.y); ++y) {
                for (int64_t x = CellOf(box.min.x); x <= CellOf(box.max.x); ++x) {
                    const auto found = cells_.find(CellKey(x, y, z));
                    if (found == cells_.end()) continue;
                    for (const int number : found->second)
                        use(number);
                }
            }
        }
    }

    double Size() const { return size_; }

private:
    double size_;
    std::unordered_map<uint64_t, std::vector<int>> cells_;
};

class Welder {
public:
    explicit Welder(std::vector<Vec3>& vertices) : vertices_(vertices) {}

    int Find(const Vec3& p) {
        int best = -1;
        double bestDistance = WELD_DISTANCE * WELD_DISTANCE;
        cells_.ForEach(Box{p, p}.Grown(WELD_DISTANCE), [&](int number) {
            const double distance = LengthSquared(vertices_[static_cast<size_t>(number)] - p);
            if (distance > bestDistance || (distance == bestDistance && best >= 0)) return;
            best = number;
            bestDistance = distance;
        });
        if (best >= 0) return best;
        vertices_.push_back(p);
        cells_.Add(p, static_cast<int>(vertices_.size() - 1));
        return static_cast<int>(vertices_.size() - 1);
    }

private:
    std::vector<Vec3>& vertices_;
    PointCells cells_{4};
};

class JunctionFiller {
public:
    explicit JunctionFiller(Mesh& mesh) : mesh_(mesh) {
        std::vector<char> used(mesh.vertices.size(), 0);
        for (const auto& leaf : mesh.leaves) {
            for (const MeshPolygon& polygon : leaf) {
                if (polygon.hidden) continue;
                for (const int corner : polygon.corners)
                    used[static_cast<size_t>(corner)] = 1;
            }
        }
        for (size_t i = 0; i < used.size(); ++i) {
            if (used[i]) cells_.Add(mesh.vertices[i], static_cast<int>(i));
        }
    }

    std::vector<int> Fill(const std::vector<int>& corners) {
        std::vector<int> filled;
        for (size_t i = 0; i < corners.size(); ++i) {
            filled.push_back(corners[i]);
            FillEdge(corners[i], corners[(i + 1) % corners.size()], filled);
        }
        return filled;
    }

private:
    // What lies between two vertices depends on the two alone, so that all polygons at an edge agree about it.
    void FillEdge(int from, int to, std::vector<int>& filled) {
        near_.clear();
        const Vec3& a = Vertex(std::min(from, to));
        const Vec3 along = Vertex(std::max(from, to)) - a;
        const double length = Length(along);
        const double steps = std::ceil(length / cells_.Size());
        for (double i = 0; i < steps; ++i) {  // long slanting edges do not search their whole box
            Box box;
            box.Add(a + along * (i / steps));
            box.Add(a + along * ((i + 1) / steps));
            cells_.ForEach(box.Grown(NEAR_EDGE), [&](int number) {
                const Vec3 offset = Vertex(number) - a;
                const double at = Dot(offset, along) / length;
                if (LengthSquared(offset) - at * at < NEAR_EDGE * NEAR_EDGE) near_.push_back(number);
            });
        }
        FillPart(from, to, filled);
    }

    void FillPart(int from, int to, std::vector<int>& filled) const {
        const std::optional<int> middle = NearestOnEdge(std::min(from, to), std::max(from, to));
        if (!middle) return;
        FillPart(from, *middle, filled);
        filled.push_back(*middle);
        FillPart(*middle, to, filled);
    }

    std::optional<int> NearestOnEdge(int from, int to) const {
        const Vec3& a = Vertex(from);
        const Vec3 along = Vertex(to) - a;
        const double length = Length(along);
        const Vec3 direction = along * (1 / length);
        std::optional<int> best;
        double bestDistance = ON_EDGE * ON_EDGE;
        for (const int number : near_) {
            if (number == from || number == to) continue;
            const Vec3 offset = Vertex(number) - a;
            const double at = Dot(offset, direction);
            if (at < ON_EDGE || at > length - ON_EDGE) continue;
            const double distance = LengthSquared(offset - direction * at);
            if (distance > bestDistance || (distance == bestDistance && best && *best <= number)) continue;
            best = number;
            bestDistance = distance;
        }
        return best;
    }

    const Vec3& Vertex(int number) const { return mesh_.vertices[static_cast<size_t>(number)]; }

    const Mesh& mesh_;
    PointCells cells_{64};
    std::vector<int> near_;  // vertices close to the edge being filled
};

// Where the outline runs along an edge and straight back, that edge bounds nothing.
void RemoveSpikes(std::vector<int>& corners) {
    for (size_t i = 0; i < corners.size() && corners.size() >= 3;) {
        const size_t count = corners.size();
        const int before = corners[(i + count - 1) % count];
        const int after = corners[(i + 1) % count];
        if (corners[i] != after && before != after) {
            ++i;
            continue;
        }
        corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(i));
        if (before == after) corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(i % corners.size()));
        i = 0;
    }
    if (corners.size() < 3) corners.clear();
}

}  // namespace

Mesh WeldMesh(const Tree& tree) {
    Mesh mesh;
    mesh.leaves.resize(tree.leaves.size());
    Welder welder(mesh.vertices);
    for (const bool hidden : {false, true}) {  // drawn corners first: the others follow them
        for (size_t i = 0; i < tree.leaves.size(); ++i) {
            for (const Face& face : tree.leaves[i]) {
                if (face.hidden != hidden) continue;
                MeshPolygon polygon{{}, face.plane, face.texture, hidden};
                for (const Vec3& p : face.winding)
                    polygon.corners.push_back(welder.Find(p));
                RemoveSpikes(polygon.corners);
                if (!polygon.corners.empty()) mesh.leaves[i].push_back(std::move(polygon));
            }
        }
    }
    return mesh;
}

void FillTJunctions(Mesh& mesh) {
    JunctionFiller filler(mesh);
    for (auto& leaf : mesh.leaves) {
        for (MeshPolygon& polygon : leaf) {
            if (polygon.hidden) continue;
            polygon.corners = filler.Fill(polygon.corners);
            RemoveSpikes(polygon.corners);
        }
        std::erase_if(leaf, [](const MeshPolygon& polygon) { return polygon.corners.empty(); });
    }
}
