#include "datacheck/rules.h"

#include "records/table_facts.h"
#include "records/view_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace {

const Vec3 EYE{0, double{SKY_EYE_HEIGHT}, 0};
constexpr double NEAREST = 50;
constexpr int DIRECTIONS = 2000;
const char* const REBUILD = "build the sky again with skyc";

std::vector<WorldFace> FacesOf(const StaticObjectFile& sky) {
    std::vector<WorldFace> faces;
    for (const StaticObjectPolygon& polygon : sky.polygons) {
        WorldFace face;
        face.normal = Widened(polygon.plane.normal);
        face.offset = static_cast<double>(polygon.plane.offset);
        for (const StaticObjectCorner& corner : polygon.corners)
            face.corners.push_back(Widened(sky.points[corner.point]));
        faces.push_back(std::move(face));
    }
    return faces;
}

bool HasHoles(const TextureFile& textures, uint8_t slot) {
    const TextureSlot& texture = textures.slots[slot];
    for (int y = 0; y < texture.height; ++y) {
        for (int x = 0; x < texture.width; ++x) {
            if (textures.Texel(texture, x, y) == 0) return true;
        }
    }
    return false;
}

std::string FaultOf(const StaticObjectPolygon& polygon, const WorldFace& face, const LevelData& level) {
    for (const Vec3& p : face.corners) {
        const double distance = Length(p - EYE);
        if (!(distance >= NEAREST && distance <= SKY_FARTHEST)) {
            return fmt::format("has a corner {:.0f} from the eye; {} to {} are possible", distance, NEAREST,
                               SKY_FARTHEST);
        }
    }
    for (const StaticObjectCorner& corner : polygon.corners) {
        if (!std::isfinite(corner.u) || !std::isfinite(corner.v)) return "has no texture coordinates";
    }
    if (const std::string shape = FaultOfShape(face); !shape.empty()) return shape;
    if (face.Distance(EYE) >= 0) return "is turned away from the eye";
    if (level.textures && polygon.texture >= std::min<size_t>(level.textures->slots.size(), CHAR_TEXTURE_BASE)) {
        return fmt::format("uses texture {}, the world's end at {}", polygon.texture, CHAR_TEXTURE_BASE - 1);
    }
    return "";
}

// Directions spread evenly: equal steps of height, turned by the golden angle.
Vec3 DirectionOf(int i) {
    const double height = 1 - (2.0 * i + 1) / DIRECTIONS;
    const double turn = 2.399963229728653 * i;
    const double reach = std::sqrt(1 - height * height);
    return {reach * std::cos(turn), height, reach * std::sin(turn)};
}

// The sky must be closed: nothing else covers the picture's upper half, where earlier frames would show.
void CheckClosed(const LevelData& level, const std::vector<WorldFace>& faces, Report& report) {
    std::vector<WorldFace> closing;
    for (size_t i = 0; i < faces.size(); ++i) {
        if (!HasHoles(*level.textures, level.sky->polygons[i].texture)) closing.push_back(faces[i]);
    }
    for (int i = 0; i < DIRECTIONS; ++i) {
        const Vec3 direction = DirectionOf(i);
        if (!std::isinf(NearestHit(closing, EYE, direction, -0.01))) continue;
        report.Problem(level.SkyPath(), fmt::format("toward {}", PlaceText(direction * 100)), "the sky has a hole",
                       "close it with a dome from -90 to 90 degrees, of pictures without holes");
    }
}

}  // namespace

void CheckSky(const LevelData& level, Report& report) {
    const std::vector<WorldFace> faces = FacesOf(*level.sky);
    bool sound = true;
    for (size_t i = 0; i < faces.size(); ++i) {
        const std::string fault = FaultOf(level.sky->polygons[i], faces[i], level);
        if (fault.empty()) continue;
        const std::string place = fmt::format("polygon {} at {}", i, PlaceText(faces[i].Centre()));
        report.Problem(level.SkyPath(), place, fault, REBUILD);
        sound = false;
    }
    if (sound && level.textures && HasSky(level.number)) CheckClosed(level, faces, report);
}
