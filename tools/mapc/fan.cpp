#include "mapc/fan.h"

namespace {

using Corners = std::vector<int>;

class FanMaker {
public:
    FanMaker(const Mesh& mesh, const Plane& plane, double scale) : mesh_(mesh), plane_(plane), scale_(scale) {}

    // Leaves out one end of each edge that stands upright on the plane, as where the two sides of a thin panel have
    // met: such an edge has no direction in the plane, and could turn any way.
    Corners WithoutUprightEdges(Corners corners) const {
        for (size_t k = 0; k < corners.size() && corners.size() > 3;) {
            const size_t next = (k + 1) % corners.size();
            const Vec3& a = Vertex(corners[k]);
            const Vec3& b = Vertex(corners[next]);
            if (Length(Cross(b - a, plane_.normal)) * scale_ >= FLAT_EDGE_MIN) {
                ++k;
                continue;
            }
            const bool aIsOff = std::abs(plane_.Distance(a)) > std::abs(plane_.Distance(b));
            corners.erase(At(corners, aIsOff ? k : next));
            k = 0;
        }
        return corners;
    }

    // Halves the outline until no part has too many corners.
    void Split(const Corners& corners, size_t cornersMax, std::vector<Corners>& parts) const {
        const size_t count = corners.size();
        if (count <= cornersMax) {
            parts.push_back(corners);
            return;
        }
        Corners bestFirst;
        Corners bestSecond;
        size_t bestCount = count;
        double bestArea = 0;
        for (size_t from = 0; from + 2 < count; ++from) {
            for (size_t to = from + 2; to < count && to - from + 1 < count; ++to) {
                if (count > TRY_ALL_MAX && to - from != count / 2) continue;
                const size_t larger = std::max(to - from + 1, count - (to - from) + 1);
                if (larger > bestCount) continue;
                auto [first, second] = Halves(corners, from, to);
                const double area = std::min(Area(first), Area(second));
                if (area < AREA_MIN || (larger == bestCount && area <= bestArea)) continue;
                bestCount = larger;
                bestArea = area;
                bestFirst = std::move(first);
                bestSecond = std::move(second);
            }
        }
        if (bestFirst.empty()) {
            parts.push_back(corners);
            return;
        }
        Split(bestFirst, cornersMax, parts);
        Split(bestSecond, cornersMax, parts);
    }

    // Divides an outline that is not convex, on its own corners, so that its neighbours stay its neighbours.
    void SplitDents(const Corners& corners, std::vector<Corners>& parts) const {
        const size_t count = corners.size();
        double least = Bulge(corners);
        Corners bestFirst;
        Corners bestSecond;
        if (least > 1) {
            for (size_t from = 0; from + 2 < count; ++from) {
                for (size_t to = from + 2; to < count && to - from + 1 < count; ++to) {
                    const auto [first, second] = Halves(corners, from, to);
                    if (std::min(Area(first), Area(second)) < AREA_MIN) continue;
                    const double bulge = std::max(Bulge(first), Bulge(second));
                    if (bulge >= least) continue;
                    least = bulge;
                    bestFirst = first;
                    bestSecond = second;
                }
            }
        }
        if (bestFirst.empty()) {
            parts.push_back(WithoutDents(corners, corners.size()));
            return;
        }
        for (const Corners& half : {bestFirst, bestSecond}) {
            if (Area(half) * scale_ * scale_ < SLIVER_AREA)
                parts.push_back(WithoutDents(half, 3));
            else
                SplitDents(half, parts);
        }
    }

    // The first triangle decides the plane where one is computed, so it must have an area in any case.
    void ChooseStart(Corners& corners) const {
        size_t best = 0;
        double bestScore = -std::numeric_limits<double>::max();
        for (size_t start = 0; start < corners.size(); ++start) {
            const double first =
                Triangle(corners[start], corners[(start + 1) % corners.size()], corners[(start + 2) % corners.size()]);
            const double smallest = SmallestTriangle(corners, start);
            const double score = smallest > AREA_MIN ? smallest : std::min(first, AREA_MIN);
            if (score <= bestScore + AREA_MIN * 0.1) continue;  // the first of equal ones stays
            bestScore = score;
            best = start;
        }
        std::rotate(corners.begin(), corners.begin() + static_cast<std::ptrdiff_t>(best), corners.end());
    }

private:
    static constexpr double AREA_MIN = 1e-3;
    static constexpr size_t TRY_ALL_MAX = 64;  // corners; of outlines with more only the even halves are tried

    static constexpr double SLIVER_AREA = 1;       // square engine units
    static constexpr double FLAT_EDGE_MIN = 0.05;  // engine units
    static constexpr double BULGE_MARGIN = 0.8;    // the world file's numbers are rounded

    static std::pair<Corners, Corners> Halves(const Corners& corners, size_t from, size_t to) {
        Corners second(At(corners, to), corners.end());
        second.insert(second.end(), corners.begin(), At(corners, from + 1));
        return {{At(corners, from), At(corners, to + 1)}, std::move(second)};
    }

    const Vec3& Vertex(int number) const { return mesh_.vertices[static_cast<size_t>(number)]; }

    // Leaves out the corners that keep an outline from being convex: what no diagonal divides is hardly wider than what
    // welding moves. Of slivers three corners are left, which are convex in any plane: their own may be another one.
    Corners WithoutDents(Corners corners, size_t cornersMax) const {
        while (corners.size() > 3 && (corners.size() > cornersMax || Bulge(corners) > 1)) {
            Corners best;
            for (size_t k = 0; k < corners.size(); ++k) {
                Corners fewer = corners;
                fewer.erase(At(fewer, k));
                if (best.empty() || Bulge(fewer) < Bulge(best)) best = std::move(fewer);
            }
            corners = std::move(best);
        }
        return corners;
    }

    // How far a corner lies beyond the line of any edge, as a part of what is allowed.
    double Bulge(const Corners& corners) const {
        double bulge = 0;
        for (size_t k = 0; k < corners.size(); ++k) {
            const Vec3& from = Vertex(corners[k]);
            const Vec3 along = Vertex(corners[(k + 1) % corners.size()]) - from;
            const Vec3 out = Cross(along, plane_.normal);
            for (const int corner : corners) {
                const Vec3 offset = Vertex(corner) - from;
                const double beyond = Dot(offset, out) / Length(out) * scale_;
                bulge = std::max(bulge, beyond / BulgeAllowed(Length(offset), Length(along)) / BULGE_MARGIN);
            }
        }
        return bulge;
    }

    static Corners::const_iterator At(const Corners& corners, size_t i) {
        return corners.begin() + static_cast<std::ptrdiff_t>(i);
    }

    double Triangle(int a, int b, int c) const {
        const Vec3& origin = Vertex(a);
        const Vec3 toB = Vertex(b) - origin;
        const Vec3 toC = Vertex(c) - origin;
        return Dot(Cross(toB, toC), plane_.normal) / 2;
    }

    double Area(const Corners& corners) const {
        double area = 0;
        for (size_t i = 2; i < corners.size(); ++i)
            area += Triangle(corners[0], corners[i - 1], corners[i]);
        return area;
    }

    double SmallestTriangle(const Corners& corners, size_t start) const {
        double smallest = std::numeric_limits<double>::max();
        const auto corner = [&](size_t i) { return corners[(start + i) % corners.size()]; };
        for (size_t i = 2; i < corners.size(); ++i) {
            smallest = std::min(smallest, Triangle(corner(0), corner(i - 1), corner(i)));
        }
        return smallest;
    }

    const Mesh& mesh_;
    Plane plane_;
    double scale_;
};

}  // namespace

void MakeFans(Mesh& mesh, const PlaneTable& planes, double scale,
              const std::function<size_t(const MeshPolygon&)>& cornersMax) {
    for (auto& leaf : mesh.leaves) {
        std::vector<MeshPolygon> fans;
        for (MeshPolygon& polygon : leaf) {
            const FanMaker maker(mesh, planes[polygon.plane], scale);
            std::vector<Corners> small;
            maker.Split(maker.WithoutUprightEdges(polygon.corners), cornersMax(polygon), small);
            std::vector<Corners> parts;
            for (const Corners& corners : small)
                maker.SplitDents(corners, parts);
            for (Corners& part : parts) {
                maker.ChooseStart(part);
                polygon.corners = std::move(part);
                fans.push_back(polygon);
            }
        }
        leaf = std::move(fans);
    }
}
