#include "world_checks.h"

#include "datacheck/rules.h"

#include <fmt/format.h>

#include <map>
#include <tuple>

Findings Faults(const WorldFile& world) {
    LevelData level;
    level.number = 3;
    level.world = world;
    Report report;
    if (CheckTree(level, report) && CheckPolygons(level, report)) {
        CheckBoxes(level, report);
        CheckPaintersOrder(level, report);
        CheckContactOrder(level, report);
    }
    return report.Lines();
}

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

Findings FalseSteps(const WorldFile& world) {
    std::map<std::pair<std::pair<uint32_t, uint32_t>, uint32_t>, size_t> edges;  // points are shared within a plane
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
    return limit - NearestHit(FacesOf(world), {x, limit, z}, {0, -1, 0}, 0);
}
