#include "world_checks.h"

#include "mapc/geometry.h"

#include <fmt/format.h>

#include <map>
#include <tuple>

namespace {

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

std::vector<Vec3> CornersOf(const WorldFile& world, const WorldPolygon& polygon) {
    std::vector<Vec3> corners;
    for (size_t k = 0; k < polygon.cornerCount; ++k) {
        corners.push_back(Widened(world.points[world.corners[polygon.firstCorner + k].point].position));
    }
    return corners;
}

double Distance(const WorldPlane& plane, const Vec3& p) {
    return Dot(Widened(plane.normal), p) + plane.offset;
}

Vec3 Normal(const std::vector<Vec3>& corners) {
    Vec3 sum;
    for (size_t i = 2; i < corners.size(); ++i)
        sum = sum + Cross(corners[i - 1] - corners[0], corners[i] - corners[0]);
    return sum * (1 / Length(sum));
}

// +1, -1, 0 in the plane, 2 on both sides.
int SideOf(const WorldPlane& plane, const std::vector<Vec3>& corners) {
    constexpr double TOLERANCE = 0.15;
    bool front = false;
    bool back = false;
    for (const Vec3& p : corners) {
        front |= Distance(plane, p) > TOLERANCE;
        back |= Distance(plane, p) < -TOLERANCE;
    }
    return front && back ? 2 : front ? 1 : back ? -1 : 0;
}

class Painter {
public:
    explicit Painter(const WorldFile& world) : world_(world) {}

    // The polygons that face the eye in the order in which the engine draws them.
    std::vector<size_t> OrderFrom(const Vec3& eye) {
        order_.clear();
        Visit(0, eye);
        return order_;
    }

private:
    void Visit(int child, const Vec3& eye) {
        if (child >= 0) {
            const WorldNode& node = world_.nodes[static_cast<size_t>(child)];
            const bool inFront = Distance(world_.planes[node.plane], eye) >= 0;
            Visit(inFront ? node.back : node.front, eye);
            Visit(inFront ? node.front : node.back, eye);
            return;
        }
        const WorldLeaf& leaf = world_.leaves[static_cast<size_t>(~child)];
        for (size_t i = leaf.firstPolygon; i < size_t{leaf.firstPolygon} + leaf.polygonCount; ++i) {
            if (Distance(world_.planes[world_.polygons[i].plane], eye) < 0) order_.push_back(i);
        }
    }

    const WorldFile& world_;
    std::vector<size_t> order_;
};

// Where along the ray it meets the polygon well inside its outline; negative: nowhere.
double Hit(const WorldFile& world, const WorldPolygon& polygon, const Vec3& eye, const Vec3& direction) {
    const WorldPlane& plane = world.planes[polygon.plane];
    const double approach = Dot(Widened(plane.normal), direction);
    if (approach < 1e-6) return -1;
    const double at = -Distance(plane, eye) / approach;
    const Vec3 p = eye + direction * at;
    const std::vector<Vec3> corners = CornersOf(world, polygon);
    for (size_t k = 0; k < corners.size(); ++k) {
        const Vec3 edge = corners[(k + 1) % corners.size()] - corners[k];
        const Vec3 out = Cross(edge, Widened(plane.normal));
        if (Dot(p - corners[k], out) > -0.2 * Length(out)) return -1;
    }
    return at;
}

class Dice {
public:
    double Next(double low, double high) {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return low + (high - low) * static_cast<double>(state_ >> 33) / 2147483648.0;
    }

private:
    uint64_t state_ = 7;
};

}  // namespace

Findings OpenEdges(const WorldFile& world) {
    using Place = std::tuple<float, float, float>;
    std::map<std::pair<Place, Place>, int> balance;
    const auto placeOf = [&](size_t corner) {
        const WorldVector& p = world.points[world.corners[corner].point].position;
        return Place{p[0], p[1], p[2]};
    };
    for (const WorldPolygon& polygon : world.polygons) {
        for (size_t k = 0; k < polygon.cornerCount; ++k) {
            const Place from = placeOf(polygon.firstCorner + k);
            const Place to = placeOf(polygon.firstCorner + (k + 1) % polygon.cornerCount);
            ++balance[{from, to}];
            --balance[{to, from}];
        }
    }
    Findings findings;
    for (const auto& [edge, count] : balance) {
        if (count <= 0) continue;
        const auto& [a, b] = edge;
        findings.push_back(fmt::format("({} {} {}) to ({} {} {})", std::get<0>(a), std::get<1>(a), std::get<2>(a),
                                       std::get<0>(b), std::get<1>(b), std::get<2>(b)));
    }
    return findings;
}

Findings TurnedPolygons(const WorldFile& world) {
    Findings findings;
    for (size_t i = 0; i < world.polygons.size(); ++i) {
        const WorldPlane& plane = world.planes[world.polygons[i].plane];
        const std::vector<Vec3> corners = CornersOf(world, world.polygons[i]);
        if (Dot(Normal(corners), Widened(plane.normal)) < 0.99) findings.push_back(fmt::format("winding of {}", i));
        for (const Vec3& p : corners) {
            if (std::abs(Distance(plane, p)) > 0.2) findings.push_back(fmt::format("corner of {} off its plane", i));
        }
        const Vec3 first = Cross(corners[1] - corners[0], corners[2] - corners[0]);
        if (Length(first) < 1e-3) findings.push_back(fmt::format("first corners of {} on a line", i));
        for (size_t k = 0; k < corners.size(); ++k) {
            const double length = Length(corners[(k + 1) % corners.size()] - corners[k]);
            if (length < 0.099) findings.push_back(fmt::format("edge of {} is {} long", i, length));
        }
    }
    return findings;
}

Findings OrderedLeaves(const WorldFile& world) {
    Findings findings;
    for (size_t l = 0; l < world.leaves.size(); ++l) {
        const size_t first = world.leaves[l].firstPolygon;
        for (size_t i = first; i < first + world.leaves[l].polygonCount; ++i) {
            for (size_t j = first; j < i; ++j) {
                const int a = SideOf(world.planes[world.polygons[i].plane], CornersOf(world, world.polygons[j]));
                const int b = SideOf(world.planes[world.polygons[j].plane], CornersOf(world, world.polygons[i]));
                const bool free = a != 2 && b != 2 && (a == b || a == 0 || b == 0);
                if (!free) findings.push_back(fmt::format("{} and {} in leaf {}", i, j, l));
            }
        }
    }
    return findings;
}

Findings PaintingFaults(const WorldFile& world, int rays) {
    Box box;
    for (const WorldPoint& point : world.points)
        box.Add(Widened(point.position));
    Dice dice;
    Painter painter(world);
    Findings findings;
    for (int n = 0; n < rays; ++n) {
        Vec3 eye;
        Vec3 direction;
        for (int axis = 0; axis < 3; ++axis) {
            eye[axis] = dice.Next(box.min[axis], box.max[axis]);
            direction[axis] = dice.Next(-1, 1);
        }
        double nearest = 1e30;
        double painted = 1e30;
        for (const size_t i : painter.OrderFrom(eye)) {
            const double at = Hit(world, world.polygons[i], eye, direction);
            if (at < 0) continue;
            nearest = std::min(nearest, at);
            painted = at;
        }
        if (painted > nearest * 1.001 + 0.3) {
            findings.push_back(fmt::format("from ({} {} {}): {} over {}", eye.x, eye.y, eye.z, painted, nearest));
        }
    }
    return findings;
}

namespace {

struct CellWalk {
    const WorldFile& world;
    std::vector<std::pair<WorldPlane, bool>> cell;  // plane, whether in front
    std::vector<int> visits;
    Findings findings;

    void Visit(int child) {
        if (child < 0) {
            CheckLeaf(static_cast<size_t>(~child));
            return;
        }
        const WorldNode& node = world.nodes[static_cast<size_t>(child)];
        for (const bool front : {true, false}) {
            cell.emplace_back(world.planes[node.plane], front);
            Visit(front ? node.front : node.back);
            cell.pop_back();
        }
    }

    void CheckLeaf(size_t number) {
        ++visits[number];
        const WorldLeaf& leaf = world.leaves[number];
        double radius = 0;
        for (size_t i = leaf.firstPolygon; i < size_t{leaf.firstPolygon} + leaf.polygonCount; ++i) {
            for (const Vec3& p : CornersOf(world, world.polygons[i])) {
                radius = std::max(radius, Length(p - Widened(leaf.centre)));
                CheckCorner(number, p);
            }
        }
        if (leaf.polygonCount > 0 && radius < 239.9)
            findings.push_back(fmt::format("leaf {} reaches {}", number, radius));
    }

    void CheckCorner(size_t number, const Vec3& p) {
        const WorldLeaf& leaf = world.leaves[number];
        for (const auto& [plane, front] : cell) {
            if (Distance(plane, p) * (front ? 1 : -1) < -0.15)
                findings.push_back(fmt::format("leaf {} leaves its cell", number));
        }
        const Vec3 offset = p - Widened(leaf.centre);
        for (int axis = 0; axis < 3; ++axis) {
            if (std::abs(offset[axis]) > Widened(leaf.halfExtents)[axis] + 0.01) {
                findings.push_back(fmt::format("leaf {} leaves its box", number));
            }
        }
    }
};

}  // namespace

Findings MisplacedPolygons(const WorldFile& world) {
    CellWalk walk{world, {}, std::vector<int>(world.leaves.size(), 0), {}};
    walk.Visit(0);
    for (size_t i = 0; i < walk.visits.size(); ++i) {
        if (walk.visits[i] != 1)
            walk.findings.push_back(fmt::format("leaf {} hangs {} times in the tree", i, walk.visits[i]));
    }
    return walk.findings;
}

Findings FalseSteps(const WorldFile& world) {
    std::map<std::pair<std::pair<uint32_t, uint32_t>, uint16_t>, size_t> edges;  // points are shared within a plane
    for (size_t i = 0; i < world.polygons.size(); ++i) {
        const WorldPolygon& polygon = world.polygons[i];
        for (size_t k = 0; k < polygon.cornerCount; ++k) {
            const uint32_t from = world.corners[polygon.firstCorner + k].point;
            const uint32_t to = world.corners[polygon.firstCorner + (k + 1) % polygon.cornerCount].point;
            edges[{{from, to}, polygon.plane}] = i;
        }
    }
    Findings findings;
    for (const auto& [edge, polygon] : edges) {
        const auto& [ends, plane] = edge;
        const Vec3 normal = Widened(world.planes[plane].normal);
        const Vec3 a = Widened(world.points[ends.first].position);
        const Vec3 b = Widened(world.points[ends.second].position);
        const bool cut = edges.contains({{ends.second, ends.first}, plane});
        const bool top = Cross(b - a, normal).y > 0.5 * Length(b - a);
        if (std::abs(normal.y) >= 0.2 || !cut || !top || Length(b - a) < 1) continue;
        const Vec3 foot = (a + b) * 0.5 - normal * 20;
        const double above = foot.y - FloorAt(world, foot.x, foot.z, foot.y + 1);
        if (above > 1 && above < 50) findings.push_back(fmt::format("({} {} {}) {}", foot.x, foot.y, foot.z, above));
    }
    return findings;
}

double FloorAt(const WorldFile& world, double x, double z, double limit) {
    double highest = -1e9;
    for (const WorldPolygon& polygon : world.polygons) {
        const double at = Hit(world, polygon, {x, limit, z}, {0, -1, 0});
        if (at >= 0) highest = std::max(highest, limit - at);
    }
    return highest;
}
