#include "mapc/mesh.h"

#include "mapc/welding.h"

#include <optional>

namespace {

// Engine units.
constexpr double ON_EDGE = 0.15;  // a vertex nearer to an edge lies on it; more than welding can move it
constexpr double NEAR_EDGE = 1;   // a vertex farther from an edge lies on none of its parts

class JunctionFiller {
public:
    JunctionFiller(Mesh& mesh, double scale) : mesh_(mesh), onEdge_(ON_EDGE / scale), nearEdge_(NEAR_EDGE / scale) {
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
    // Fills in the vertices between two others. They depend on the two alone, so that all polygons at an edge agree.
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
            cells_.ForEach(box.Grown(nearEdge_), [&](int number) {
                const Vec3 offset = Vertex(number) - a;
                const double at = Dot(offset, along) / length;
                if (LengthSquared(offset) - at * at < nearEdge_ * nearEdge_) near_.push_back(number);
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
        double bestDistance = onEdge_ * onEdge_;
        for (const int number : near_) {
            if (number == from || number == to) continue;
            const Vec3 offset = Vertex(number) - a;
            // Both parts are shorter than the whole, as they will be measured in their turn, or this would not end.
            const double whole = LengthSquared(along);
            if (LengthSquared(offset) >= whole || LengthSquared(Vertex(to) - Vertex(number)) >= whole) continue;
            const double distance = LengthSquared(offset - direction * Dot(offset, direction));
            if (distance > bestDistance || (distance == bestDistance && best && *best <= number)) continue;
            best = number;
            bestDistance = distance;
        }
        return best;
    }

    const Vec3& Vertex(int number) const { return mesh_.vertices[static_cast<size_t>(number)]; }

    const Mesh& mesh_;
    const double onEdge_, nearEdge_;  // map units
    PointCells cells_{64};
    std::vector<int> near_;  // vertices close to the edge being filled
};

// Removes the corners at which the outline runs along an edge and straight back: such an edge bounds nothing.
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

Mesh WeldMesh(const Tree& tree, double scale) {
    Mesh mesh;
    mesh.leaves.resize(tree.leaves.size());
    Welder welder(mesh.vertices, WELD_DISTANCE / scale);
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

void FillTJunctions(Mesh& mesh, double scale) {
    JunctionFiller filler(mesh, scale);
    for (auto& leaf : mesh.leaves) {
        for (MeshPolygon& polygon : leaf) {
            if (polygon.hidden) continue;
            polygon.corners = filler.Fill(polygon.corners);
            RemoveSpikes(polygon.corners);
        }
        std::erase_if(leaf, [](const MeshPolygon& polygon) { return polygon.corners.empty(); });
    }
}
