#include "datacheck/rules.h"
#include "mapc/fan.h"
#include "mapc/limits.h"
#include "records/light_facts.h"

#include <fmt/format.h>

namespace {

constexpr double PLANE_TOLERANCE = 0.15;  // distance of a corner from its polygon's plane
constexpr double EDGE_LENGTH_MIN = 0.099;
constexpr double SAME_DIRECTION = 0.99;  // least cosine between the stored normal and the corners' own
constexpr float FARTHEST = 26000;        // largest coordinate at which the game's collision still measures distances
constexpr double AREA_MIN = 1e-3;        // twice the area of the first three corners
const char* const REBUILD = "build the world again with mapc";
const char* const REPAIR = "move the map's vertices apart, or onto one plane";

std::string FaultOf(const WorldPolygon& polygon) {
    const bool cornerLight = polygon.shading == WORLD_CORNER_LIGHT;
    if (!cornerLight && polygon.shading != WORLD_POINT_LIGHT) return "has an unknown kind of light";
    const size_t most = cornerLight ? CORNER_LIGHT_CORNERS : BSP_CORNERS_MAX;
    if (polygon.cornerCount < 3 || polygon.cornerCount > most) {
        return fmt::format("has {} corners, 3 to {} are possible with its kind of light", polygon.cornerCount, most);
    }
    return "";
}

bool IsPlace(const WorldVector& v) {
    return std::all_of(v.begin(), v.end(), [](float x) { return std::abs(x) <= FARTHEST; });
}

}  // namespace

std::string FaultOfShape(const WorldFace& face) {
    const size_t count = face.corners.size();
    if (std::abs(Length(face.normal) - 1) > 1e-3) return "its plane's normal is not of length 1";
    Vec3 own;
    for (size_t k = 0; k < count; ++k) {
        const Vec3& p = face.corners[k];
        const Vec3& next = face.corners[(k + 1) % count];
        if (std::abs(face.Distance(p)) > PLANE_TOLERANCE) return "a corner lies off its plane";
        if (Length(next - p) < EDGE_LENGTH_MIN) return "an edge is shorter than 0.1";
        own = own + Cross(p - face.corners[0], next - face.corners[0]);
    }
    if (Length(Cross(face.corners[1] - face.corners[0], face.corners[2] - face.corners[0])) < AREA_MIN) {
        return "its first three corners lie on a line";
    }
    if (Dot(own, face.normal) < SAME_DIRECTION * Length(own)) return "its corners run clockwise seen from outside";
    for (size_t k = 0; k < count; ++k) {
        const Vec3 along = face.corners[(k + 1) % count] - face.corners[k];
        const Vec3 out = Cross(along, face.normal);
        for (const Vec3& p : face.corners) {
            const Vec3 offset = p - face.corners[k];
            if (Dot(offset, out) > BulgeAllowed(Length(offset), Length(along)) * Length(out)) return "it is not convex";
        }
    }
    return "";
}

bool CheckPolygons(const LevelData& level, Report& report) {
    const WorldFile& world = *level.world;
    const std::string file = level.WorldPath();
    const std::vector<WorldFace> faces = FacesOf(world);
    bool sound = true;
    const auto refuse = [&](const std::string& place, const std::string& wrong, const char* remedy) {
        report.Problem(file, place, wrong, remedy);
        sound = false;
    };
    for (size_t i = 0; i < faces.size(); ++i) {
        const std::string place = fmt::format("polygon {} at {}", i, level.Describe(faces[i].Centre()));
        if (const std::string record = FaultOf(world.polygons[i]); !record.empty()) {
            refuse(place, record, REBUILD);
        } else if (const std::string shape = FaultOfShape(faces[i]); !shape.empty()) {
            refuse(place, shape, REPAIR);
        }
    }
    for (size_t i = 0; i < world.points.size(); ++i) {
        if (!IsPlace(world.points[i].position)) {
            refuse(fmt::format("point {}", i), fmt::format("lies more than {} from the origin", FARTHEST), REBUILD);
        }
    }
    for (size_t i = 0; i < world.corners.size(); ++i) {
        if (!std::isfinite(world.corners[i].u) || !std::isfinite(world.corners[i].v)) {
            refuse(fmt::format("corner {}", i), "has no texture coordinates", REBUILD);
        }
    }
    return sound;
}
