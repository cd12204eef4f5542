#include "mapc/merge.h"

#include "mapc/box_grid.h"
#include "mapc/welding.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

constexpr double SAME_POINT = 0.01;
constexpr double CONVEX_TOLERANCE = 1e-6;  // sine of the turn at a corner

using Corners = std::vector<int>;

// Faces that lie in one plane and are painted alike.
class Group {
public:
    Group(const std::vector<Face>& faces, const std::vector<size_t>& members, const Vec3& normal) : normal_(normal) {
        Welder welder(vertices_, SAME_POINT);
        for (const size_t member : members) {
            Corners corners;
            for (const Vec3& p : faces[member].winding)
                corners.push_back(welder.Find(p));
            DropRepeated(corners);
            outlines_.push_back(std::move(corners));
        }
    }

    // Each face in turn takes in all neighbours that it can.
    std::vector<Winding> Merge() {
        for (size_t i = 0; i < outlines_.size(); ++i)
            ListEdges(i);
        for (size_t i = 0; i < outlines_.size(); ++i) {
            while (TakeNeighbour(i)) {
            }
        }
        std::vector<Winding> merged;
        for (const Corners& corners : outlines_) {
            if (corners.empty()) continue;
            Winding winding;
            for (const int corner : corners)
                winding.push_back(vertices_[static_cast<size_t>(corner)]);
            RemoveStraightCorners(winding);
            if (winding.size() >= 3) merged.push_back(std::move(winding));
        }
        return merged;
    }

private:
    // Corners that were welded into one: an edge from a corner to itself would be its own neighbour.
    static void DropRepeated(Corners& corners) {
        corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
        while (corners.size() > 1 && corners.front() == corners.back())
            corners.pop_back();
        if (corners.size() < 3) corners.clear();
    }

    void ListEdges(size_t i) {
        const Corners& corners = outlines_[i];
        for (size_t k = 0; k < corners.size(); ++k)
            edges_[{corners[k], At(corners, k + 1)}] = i;
    }

    bool TakeNeighbour(size_t i) {
        for (size_t k = 0; k < outlines_[i].size(); ++k) {
            const auto found = edges_.find({At(outlines_[i], k + 1), outlines_[i][k]});
            if (found == edges_.end() || found->second == i || outlines_[found->second].empty()) continue;
            const size_t j = found->second;
            const std::optional<Corners> joined = Join(outlines_[i], k, outlines_[j]);
            if (!joined) continue;
            edges_.erase({outlines_[i][k], At(outlines_[i], k + 1)});
            edges_.erase(found);
            outlines_[i] = *joined;
            outlines_[j].clear();
            ListEdges(i);
            return true;
        }
        return false;
    }

    // Joins two outlines: b runs along a's edge k the other way, so b's other corners replace that edge.
    std::optional<Corners> Join(const Corners& a, size_t k, const Corners& b) const {
        size_t j = 0;
        while (b[j] != At(a, k + 1) || At(b, j + 1) != a[k]) {
            if (++j == b.size()) return std::nullopt;
        }
        if (!IsConvex(At(a, k + a.size() - 1), a[k], At(b, j + 2))) return std::nullopt;
        if (!IsConvex(At(b, j + b.size() - 1), b[j], At(a, k + 2))) return std::nullopt;
        Corners joined;
        for (size_t n = 1; n <= a.size(); ++n)
            joined.push_back(At(a, k + n));
        for (size_t n = 2; n < b.size(); ++n)
            joined.push_back(At(b, j + n));
        DropStraight(joined);
        return joined;
    }

    // Corners in the middle of a straight edge would hide that the edge is shared with a whole neighbour.
    void DropStraight(Corners& corners) const {
        for (size_t i = 0; i < corners.size() && corners.size() > 3;) {
            const Vec3& before = Vertex(At(corners, i + corners.size() - 1));
            const Vec3 along = Vertex(At(corners, i + 1)) - before;
            const Vec3 across = Cross(along, Vertex(corners[i]) - before);
            if (LengthSquared(across) < SAME_POINT * SAME_POINT * 0.01 * LengthSquared(along)) {
                corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(i));
                i = 0;
            } else {
                ++i;
            }
        }
    }

    bool IsConvex(int a, int b, int c) const {
        const Vec3 in = Vertex(b) - Vertex(a);
        const Vec3 out = Vertex(c) - Vertex(b);
        return Dot(Cross(in, out), normal_) >= -CONVEX_TOLERANCE * Length(in) * Length(out);
    }

    const Vec3& Vertex(int number) const { return vertices_[static_cast<size_t>(number)]; }
    static int At(const Corners& corners, size_t i) { return corners[i % corners.size()]; }

    Vec3 normal_;
    std::vector<Vec3> vertices_;
    std::vector<Corners> outlines_;  // empty: taken in by another
    // For each edge, from corner to corner, the outline that it belongs to. Edges that have vanished may still be
    // listed.
    std::map<std::pair<int, int>, size_t> edges_;
};

// Sets of windings that touch each other, directly or through others.
std::vector<std::vector<size_t>> TouchingSets(const std::vector<Winding>& windings) {
    std::vector<Box> boxes;
    for (const Winding& winding : windings)
        boxes.push_back(WindingBox(winding));
    const BoxGrid grid(boxes);
    std::vector<char> taken(windings.size(), 0);
    std::vector<std::vector<size_t>> sets;
    std::vector<int> near;
    for (size_t i = 0; i < windings.size(); ++i) {
        if (taken[i]) continue;
        taken[i] = 1;
        std::vector<size_t> set{i};
        for (size_t at = 0; at < set.size(); ++at) {
            grid.Find(boxes[set[at]], SAME_POINT, near);
            for (const int next : near) {
                if (taken[static_cast<size_t>(next)]) continue;
                taken[static_cast<size_t>(next)] = 1;
                set.push_back(static_cast<size_t>(next));
            }
        }
        sets.push_back(std::move(set));
    }
    return sets;
}

class Merger {
public:
    Merger(const std::vector<Face>& faces, Brushes& brushes) : faces_(faces), brushes_(brushes) {}

    std::vector<Face> Merge() {
        std::map<int, std::vector<std::vector<size_t>>> groupsOfPlane;
        for (size_t i = 0; i < faces_.size(); ++i)
            AddTo(groupsOfPlane[faces_[i].plane], i);
        std::vector<Face> merged;
        for (const auto& [plane, groups] : groupsOfPlane) {
            for (const std::vector<size_t>& members : groups)
                MergeGroup(members, merged);
        }
        return merged;
    }

private:
    void AddTo(std::vector<std::vector<size_t>>& groups, size_t face) const {
        for (std::vector<size_t>& group : groups) {
            if (!PaintAlike(TextureOf(group[0]), TextureOf(face))) continue;
            group.push_back(face);
            return;
        }
        groups.push_back({face});
    }

    const FaceTexture& TextureOf(size_t face) const {
        return brushes_.textures[static_cast<size_t>(faces_[face].texture)];
    }

    void MergeGroup(const std::vector<size_t>& members, std::vector<Face>& merged) {
        const Face& first = faces_[members[0]];
        std::vector<Winding> windings = Group(faces_, members, brushes_.planes[first.plane].normal).Merge();
        for (const std::vector<size_t>& set : TouchingSets(windings)) {
            std::vector<const Winding*> touching;
            for (const size_t i : set)
                touching.push_back(&windings[i]);
            FaceTexture texture = TextureOf(members[0]);
            PlaceTexture(texture, touching);
            const int number = static_cast<int>(brushes_.textures.size());
            brushes_.textures.push_back(texture);
            for (const size_t i : set)
                merged.emplace_back(std::move(windings[i]), first.plane, number, first.hidden);
        }
    }

    const std::vector<Face>& faces_;
    Brushes& brushes_;
};

}  // namespace

void MergeFaces(std::vector<Face>& faces, Brushes& brushes) {
    faces = Merger(faces, brushes).Merge();
}
