#include "datacheck/level_data.h"

#include "records/levels.h"
#include "records/walking_facts.h"

#include <fmt/format.h>

namespace {

constexpr double MISS = std::numeric_limits<double>::infinity();
// Where a face is widened, its sharp corners go out by more than the margin: by as many times.
constexpr double BEYOND_CORNERS = 100;

}  // namespace

std::string LevelData::GlideTexturePath(size_t texture) const {
    return fmt::format("{}/glidetex/{:02}.3df", folder, texture);
}

std::string LevelData::WorldPath() const {
    if (!map.empty()) return map;
    return fmt::format("{}/{}.bgm", folder, LevelRowOf(number).world);
}

Vec3 StartOf(int level) {
    const int* start = LevelRowOf(level).start;
    return {static_cast<double>(start[0]), static_cast<double>(start[1]), static_cast<double>(start[2])};
}

bool HasSky(int level) {
    return level == 0 || LevelRowOf(level).sky == LevelSky::OPEN;
}

double LeastLeafRadius(int level) {
    const int ticks = level == 0 ? 4 : LevelRowOf(level).ticks;
    return ticks == 1 ? 50 : ticks == 2 ? 60 : 80;
}

std::vector<bool> VisibleTextures(const LevelData& level) {
    std::vector<bool> visible(256, true);
    for (const int slot : level.unseenSlots)
        visible[static_cast<size_t>(slot)] = false;
    if (!level.textures) return visible;
    for (size_t i = 0; i < level.textures->slots.size() && i < visible.size(); ++i) {
        const TextureSlot& slot = level.textures->slots[i];
        visible[i] = false;
        for (int at = 0; at < slot.width * slot.height && !visible[i]; ++at)
            visible[i] = level.textures->Texel(slot, at % slot.width, at / slot.width) != 0;
    }
    return visible;
}

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

std::string LevelData::Describe(const Vec3& place) const {
    return PlaceText(placement ? placement->ToMap(place) : place);
}

Vec3 WorldFace::Centre() const {
    Vec3 sum;
    for (const Vec3& p : corners)
        sum = sum + p;
    return corners.empty() ? sum : sum * (1.0 / static_cast<double>(corners.size()));
}

double WorldFace::Hit(const Vec3& eye, const Vec3& direction, double margin) const {
    const double distance = Distance(eye);
    const double approach = Dot(normal, direction);
    if (distance >= 0 || approach < 1e-9) return MISS;
    const double at = -distance / approach;
    const Vec3 p = eye + direction * at;
    const double far = reach + BEYOND_CORNERS * std::max(-margin, 0.0);
    if (!corners.empty() && LengthSquared(p - corners[0]) > far * far) return MISS;
    for (size_t k = 0; k < corners.size(); ++k) {
        const Vec3 out = Cross(corners[(k + 1) % corners.size()] - corners[k], normal);
        if (Dot(p - corners[k], out) > -margin * Length(out)) return MISS;
    }
    return at;
}

std::vector<WorldFace> FacesOf(const WorldFile& world) {
    std::vector<WorldFace> faces;
    faces.reserve(world.polygons.size());
    for (const WorldPolygon& polygon : world.polygons) {
        WorldFace face;
        face.normal = Widened(world.planes[polygon.plane].normal);
        face.offset = world.planes[polygon.plane].offset;
        for (size_t k = 0; k < polygon.cornerCount; ++k) {
            face.corners.push_back(Widened(world.points[world.corners[polygon.firstCorner + k].point].position));
        }
        face.reach = 0;
        for (const Vec3& corner : face.corners)
            face.reach = std::max(face.reach, Length(corner - face.corners[0]));
        faces.push_back(std::move(face));
    }
    return faces;
}

double NearestHit(const std::vector<WorldFace>& faces, const Vec3& eye, const Vec3& direction, double margin) {
    double nearest = MISS;
    for (const WorldFace& face : faces)
        nearest = std::min(nearest, face.Hit(eye, direction, margin));
    return nearest;
}

std::vector<Vec3> PlacesOfPlay(const LevelData& level, const std::vector<WorldFace>& faces, size_t most) {
    constexpr double EYE_HEIGHT = 60;
    constexpr double SEAM = -0.5;  // what is straight above the seam of two faces is below both
    const std::vector<bool> visible = VisibleTextures(level);
    std::vector<Vec3> floors;
    for (size_t i = 0; i < faces.size(); ++i) {
        if (faces[i].Up() > LANDING_SLOPE && visible[level.world->polygons[i].texture])
            floors.push_back(faces[i].Centre());
    }
    std::vector<Vec3> places;
    if (level.number > 0) places.push_back(StartOf(level.number));
    const size_t step = floors.size() / most + 1;
    for (size_t i = 0; i < floors.size(); i += step) {
        // No place is taken on top of a thing close under a ceiling: the eye would look out from inside the ceiling.
        const bool hasRoom = NearestHit(faces, floors[i], {0, 1, 0}, SEAM) > EYE_HEIGHT;
        if (hasRoom) places.push_back(floors[i] + Vec3{0, EYE_HEIGHT, 0});
    }
    return places;
}
