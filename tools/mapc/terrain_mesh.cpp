#include "mapc/terrain_mesh.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

constexpr double NEVER = std::numeric_limits<double>::max();
constexpr double SLIMMEST = 0.2;  // least height of a triangle over its longest side, in parts of that side

using Corners = std::array<int, 3>;  // numbers of points

class Simplifier {
public:
    Simplifier(int width, int height, const std::function<double(int, int)>& heightAt)
        : width_(width), height_(height), heights_(static_cast<size_t>(width * height)), trianglesAt_(heights_.size()),
          drops_(heights_.size()) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                heights_[static_cast<size_t>(NumberOf(x, y))] = heightAt(x, y);
        }
        for (int y = height - 2; y >= 0; --y) {
            for (int x = 0; x + 1 < width; ++x)
                AddCell(x, y);
        }
    }

    std::vector<GridTriangle> Simplify(double tolerance) {
        if (tolerance > 0) DropPoints(tolerance);
        std::vector<GridTriangle> triangles;
        for (const Corners& t : triangles_) {
            if (t[0] >= 0) triangles.push_back({PointOf(t[0]), PointOf(t[1]), PointOf(t[2])});
        }
        return triangles;
    }

private:
    struct Drop {
        double error = NEVER;  // the most by which the surface then misses a point's height
        int onto = -1;
    };

    int NumberOf(int x, int y) const { return y * width_ + x; }
    GridPoint PointOf(int number) const { return {number % width_, number / width_}; }
    double HeightOf(int number) const { return heights_[static_cast<size_t>(number)]; }
    std::vector<int>& TrianglesAt(int number) { return trianglesAt_[static_cast<size_t>(number)]; }

    // Divides the cell along the diagonal on which it bends less, so that ridges and valleys run through.
    void AddCell(int x, int y) {
        const int southWest = NumberOf(x, y), southEast = NumberOf(x + 1, y);
        const int northWest = NumberOf(x, y + 1), northEast = NumberOf(x + 1, y + 1);
        const double rising = std::abs(HeightOf(southWest) - HeightOf(northEast));
        const double falling = std::abs(HeightOf(southEast) - HeightOf(northWest));
        if (rising <= falling) {
            Add({southWest, southEast, northEast});
            Add({southWest, northEast, northWest});
        } else {
            Add({southWest, southEast, northWest});
            Add({southEast, northEast, northWest});
        }
    }

    void Add(const Corners& corners) {
        for (const int corner : corners)
            TrianglesAt(corner).push_back(static_cast<int>(triangles_.size()));
        triangles_.push_back(corners);
    }

    void DropPoints(double tolerance) {
        for (int number = 0; number < width_ * height_; ++number)
            Judge(number, tolerance);
        while (!queue_.empty()) {
            const int number = queue_.begin()->second;
            std::set<int> beside;
            for (const int t : TrianglesAt(number))
                beside.insert(triangles_[static_cast<size_t>(t)].begin(), triangles_[static_cast<size_t>(t)].end());
            DropPoint(number, drops_[static_cast<size_t>(number)].onto);
            for (const int other : beside)
                Judge(other, tolerance);
        }
    }

    // Finds the best way to drop a point, and puts it into the queue when there is one.
    void Judge(int number, double tolerance) {
        Drop& drop = drops_[static_cast<size_t>(number)];
        queue_.erase({drop.error, number});
        drop = {};
        std::set<int> beside;
        for (const int t : TrianglesAt(number))
            beside.insert(triangles_[static_cast<size_t>(t)].begin(), triangles_[static_cast<size_t>(t)].end());
        for (const int onto : beside) {
            if (onto == number || !MayDrop(number, onto)) continue;
            const double error = ErrorWithout(number, onto, std::min(drop.error, tolerance));
            if (error < drop.error) drop = {error, onto};
        }
        if (drop.onto >= 0) queue_.insert({drop.error, number});
    }

    // Points on the border and on the lines between the blocks move along these only.
    bool MayDrop(int number, int onto) const {
        const GridPoint from = PointOf(number), to = PointOf(onto);
        const bool leavesColumn = IsLine(from.x, width_) && from.x != to.x;
        const bool leavesRow = IsLine(from.y, height_) && from.y != to.y;
        return !leavesColumn && !leavesRow;
    }

    static bool IsLine(int at, int count) { return at % GRID_BLOCK == 0 || at == count - 1; }

    // NEVER where it is more than the most, or triangles would turn over or become slim.
    double ErrorWithout(int number, int onto, double most) {
        double error = 0;
        for (const int t : TrianglesAt(number)) {
            Corners corners = triangles_[static_cast<size_t>(t)];
            if (std::find(corners.begin(), corners.end(), onto) != corners.end()) continue;
            std::replace(corners.begin(), corners.end(), number, onto);
            if (IsSlim(corners)) return NEVER;
            error = std::max(error, ErrorOf(corners, most));
            if (error > most) return NEVER;
        }
        return error;
    }

    static int Cross(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
        return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    }

    // Or turned over.
    bool IsSlim(const Corners& corners) const {
        const GridPoint a = PointOf(corners[0]), b = PointOf(corners[1]), c = PointOf(corners[2]);
        int longest = 0;  // squared
        for (const auto& [p, q] : {std::pair{a, b}, std::pair{b, c}, std::pair{c, a}})
            longest = std::max(longest, (p.x - q.x) * (p.x - q.x) + (p.y - q.y) * (p.y - q.y));
        return Cross(a, b, c) < SLIMMEST * longest;
    }

    double ErrorOf(const Corners& corners, double most) const {
        const GridPoint a = PointOf(corners[0]), b = PointOf(corners[1]), c = PointOf(corners[2]);
        const GridPoint least{std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y})};
        const GridPoint end{std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y})};
        const bool isBlack = std::all_of(corners.begin(), corners.end(), [&](int p) { return HeightOf(p) == 0; });
        double error = 0;
        for (int y = least.y; y <= end.y; ++y) {
            for (int x = least.x; x <= end.x; ++x) {
                const GridPoint p{x, y};
                const int ofA = Cross(b, c, p), ofB = Cross(c, a, p), ofC = Cross(a, b, p);
                if (ofA < 0 || ofB < 0 || ofC < 0) continue;  // lies beside the triangle
                const double surface =
                    (ofA * HeightOf(corners[0]) + ofB * HeightOf(corners[1]) + ofC * HeightOf(corners[2])) /
                    (ofA + ofB + ofC);
                const double height = HeightOf(NumberOf(x, y));
                const double miss = std::abs(surface - height);
                if (miss > (height == 0 || isBlack ? 0 : most)) return NEVER;
                error = std::max(error, miss);
            }
        }
        return error;
    }

    void DropPoint(int number, int onto) {
        queue_.erase({drops_[static_cast<size_t>(number)].error, number});
        drops_[static_cast<size_t>(number)] = {};
        for (const int t : TrianglesAt(number)) {
            Corners& corners = triangles_[static_cast<size_t>(t)];
            if (std::find(corners.begin(), corners.end(), onto) == corners.end()) {
                std::replace(corners.begin(), corners.end(), number, onto);
                TrianglesAt(onto).push_back(t);
                continue;
            }
            for (const int corner : corners) {
                if (corner != number) std::erase(TrianglesAt(corner), t);
            }
            corners[0] = -1;
        }
        TrianglesAt(number).clear();
    }

    int width_, height_;
    std::vector<double> heights_;
    std::vector<Corners> triangles_;             // the first corner of one that is gone is -1
    std::vector<std::vector<int>> trianglesAt_;  // of each point
    std::vector<Drop> drops_;                    // of each point
    std::set<std::pair<double, int>> queue_;     // points that can be dropped, by their error
};

}  // namespace

std::vector<GridTriangle> SimplifyGrid(int width, int height, const std::function<double(int, int)>& heightAt,
                                       double tolerance) {
    return Simplifier(width, height, heightAt).Simplify(tolerance);
}
