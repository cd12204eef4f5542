#include "mapc/fan.h"

namespace {

using Corners = std::vector<int>;

class FanMaker {
public:
    FanMaker(const Mesh& mesh, const Vec3& normal) : mesh_(mesh), normal_(normal) {}

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
                const Corners first(At(corners, from), At(corners, to + 1));
                Corners second(At(corners, to), corners.end());
                second.insert(second.end(), corners.begin(), At(corners, from + 1));
                const double area = std::min(Area(first), Area(second));
                if (area < AREA_MIN || (larger == bestCount && area <= bestArea)) continue;
                bestCount = larger;
                bestArea = area;
                bestFirst = first;
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

    // The first triangle decides the plane where one is computed, so it must have an area in any case.
    void ChooseStart(Corners& corners) const {
        size_t best = 0;
        double bestScore = -std::numeric_limits<double>::max();
        for (size_t start = 0; start < corners.size(); ++start) {
            const double first =
                Triangle(corners[start], corners[(start + 1) % corners.size()], corners[(start + 2) % corners.size()]);
            const double smallest = SmallestTriangle(corners, start);
            const double score = smallest > AREA_MIN ? smallest : std::min(first, AREA_MIN);
            if (score <= bestScore + AREA_MIN * 0.1) continue;  // of equal ones the first stays
            bestScore = score;
            best = start;
        }
        std::rotate(corners.begin(), corners.begin() + static_cast<std::ptrdiff_t>(best), corners.end());
    }

private:
    static constexpr double AREA_MIN = 1e-3;
    static constexpr size_t TRY_ALL_MAX = 64;  // corners; of outlines with more only the even halves are tried

    static Corners::const_iterator At(const Corners& corners, size_t i) {
        return corners.begin() + static_cast<std::ptrdiff_t>(i);
    }

    double Triangle(int a, int b, int c) const {
        const Vec3& origin = mesh_.vertices[static_cast<size_t>(a)];
        const Vec3 toB = mesh_.vertices[static_cast<size_t>(b)] - origin;
        const Vec3 toC = mesh_.vertices[static_cast<size_t>(c)] - origin;
        return Dot(Cross(toB, toC), normal_) / 2;
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
    Vec3 normal_;
};

}  // namespace

void MakeFans(Mesh& mesh, const PlaneTable& planes, const std::function<size_t(const MeshPolygon&)>& cornersMax) {
    for (auto& leaf : mesh.leaves) {
        std::vector<MeshPolygon> fans;
        for (MeshPolygon& polygon : leaf) {
            const FanMaker maker(mesh, planes[polygon.plane].normal);
            std::vector<Corners> parts;
            maker.Split(polygon.corners, cornersMax(polygon), parts);
            for (Corners& part : parts) {
                maker.ChooseStart(part);
                polygon.corners = std::move(part);
                fans.push_back(polygon);
            }
        }
        leaf = std::move(fans);
    }
}
