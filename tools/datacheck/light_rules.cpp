#include "datacheck/rules.h"

#include "mapc/light_slots.h"

#include <fmt/format.h>

namespace {

constexpr size_t PLACES = 200;      // places of play at which the lights are counted
constexpr double BYTES_MAX = 1000;  // light bytes that a light may add to a surface beside it
const char* const REBUILD = "build the level again with mapc";

bool IsLightByte(int8_t value) {
    return value >= 0;
}

bool IsColour(const std::array<int16_t, 3>& colour) {
    return std::all_of(colour.begin(), colour.end(), [](int16_t level) { return level >= 0 && level <= 63; });
}

void CheckLightBytes(const LevelData& level, Report& report) {
    const LightMapFile& light = *level.light;
    const std::string file = level.LightPath();
    bool inRange = std::all_of(light.pointLight.begin(), light.pointLight.end(), IsLightByte);
    for (const auto& corners : light.cornerLight)
        inRange = inRange && std::all_of(corners.begin(), corners.end(), IsLightByte);
    if (!inRange) report.Problem(file, "light bytes", "reach beyond 0 to 127", REBUILD);
    if (!level.world) return;

    const WorldFile& world = *level.world;
    if (light.pointLight.size() != world.points.size()) {
        report.Problem(file, "point light",
                       fmt::format("lights {} points, the world has {}", light.pointLight.size(), world.points.size()),
                       REBUILD);
    }
    for (size_t i = light.cornerLight.size(); i < world.polygons.size(); ++i) {
        if (world.polygons[i].shading != WORLD_CORNER_LIGHT) continue;
        report.Problem(file, fmt::format("polygon {}", i), "has corner light, but the file has no bytes for it",
                       REBUILD);
    }
}

void CheckDistances(const LevelData& level, Report& report) {
    const LightMapFile& light = *level.light;
    const double diagonal = DiagonalOf(*level.world);
    if (light.farDistance < diagonal) {
        report.Problem(
            level.LightPath(), "far distance",
            fmt::format("{} is less than the world's {:.0f} from corner to corner", light.farDistance, diagonal),
            "raise the key \"far_distance\" of worldspawn");
    }
}

class SlotCheck {
public:
    SlotCheck(const LevelData& level, Report& report) : level_(level), lights_(*level.slots), report_(report) {}

    void Run() {
        if (lights_.slots.size() > LEVEL_SLOTS_MAX) {
            Problem("slots", fmt::format("{}, at most {}", lights_.slots.size(), LEVEL_SLOTS_MAX), "use fewer lights");
        }
        for (size_t i = 0; i < lights_.slots.size(); ++i)
            CheckSlot(i);
        if (level_.world) {
            CheckNamedRecords();
            CheckCrowding();
            CheckShots();
        }
    }

private:
    void Problem(const std::string& place, const std::string& wrong, const std::string& remedy) {
        report_.Problem(level_.SlotPath(), place, wrong, remedy);
    }

    std::string PlaceOf(size_t number, const LightSlotRecord& slot) const {
        return fmt::format("slot {} at {}", number, level_.Describe(Widened(slot.position)));
    }

    void CheckSlot(size_t number) {
        const LightSlotRecord& slot = lights_.slots[number];
        if (slot.type == LIGHT_FREE) return;
        const std::string place = PlaceOf(number, slot);
        const bool known = slot.type >= LIGHT_RAMP && slot.type <= LIGHT_PASSIVE;
        if (!known) Problem(place, fmt::format("is of the unknown type {}", slot.type), REBUILD);
        const double squared = double{slot.radius} * double{slot.radius};
        if (!(slot.radius > 0) || !(std::abs(slot.radiusSquared - squared) <= 1e-5 * squared)) {
            Problem(place, fmt::format("has the radius {} and its square {}", slot.radius, slot.radiusSquared),
                    REBUILD);
        }
        if (slot.lowIntensity > slot.highIntensity) {
            Problem(place, "has a low intensity above its high one", "exchange the light's two intensities");
        }
        CheckCycle(slot, place);
        const bool gathers = slot.type == LIGHT_DYNAMIC || slot.type == LIGHT_DYNAMIC_RAMP;
        if (slot.pointCount + slot.cornerCount > 0 && (gathers || slot.type == LIGHT_PASSIVE))
            Problem(place, "has contributions, which its type never uses", REBUILD);
        if (gathers && level_.world) {
            const auto reached = PointsWithin(Widened(slot.position), slot.radius);
            if (reached > GATHERED_POINTS_MAX) {
                Problem(place, fmt::format("reaches {} points, at most {}", reached, GATHERED_POINTS_MAX),
                        "give the light a smaller radius");
            }
        }
    }

    void CheckCycle(const LightSlotRecord& slot, const std::string& place) {
        const bool ramps = slot.type == LIGHT_RAMP || slot.type == LIGHT_DYNAMIC_RAMP;
        const bool blinks = slot.type == LIGHT_BLINK;
        const bool inRange = slot.intensity >= slot.lowIntensity && slot.intensity <= slot.highIntensity;
        if (slot.phase < 0 || slot.phase > 1 || slot.timer < 0 || ((ramps || blinks) && !inRange))
            Problem(place, "starts outside of its cycle", REBUILD);
        const bool moves = slot.lowIntensity >= slot.highIntensity || (slot.stepUp > 0 && slot.stepDown < 0);
        if ((ramps && !moves) || (blinks && (slot.highTime < 1 || slot.lowTime < 1)))
            Problem(place, "has a cycle that stands still", REBUILD);
    }

    auto PointsWithin(const Vec3& centre, double radius) const -> std::ptrdiff_t {
        const std::vector<WorldPoint>& points = level_.world->points;
        return std::count_if(points.begin(), points.end(), [&](const WorldPoint& point) {
            return LengthSquared(Widened(point.position) - centre) <= radius * radius;
        });
    }

    void CheckNamedRecords() {
        const WorldFile& world = *level_.world;
        for (size_t number = 0; number < lights_.slots.size(); ++number) {
            const LightSlotRecord& slot = lights_.slots[number];
            for (int i = slot.firstPoint; i < slot.firstPoint + slot.pointCount; ++i)
                CheckContribution(number, lights_.points[static_cast<size_t>(i)], world.points.size(), "point");
            for (int i = slot.firstCorner; i < slot.firstCorner + slot.cornerCount; ++i) {
                const LightContribution& corner = lights_.corners[static_cast<size_t>(i)];
                CheckContribution(
                    number, corner,
                    CORNER_LIGHT_CORNERS * std::min(world.polygons.size(), size_t{CORNER_NUMBER_POLYGONS}), "corner");
            }
        }
    }

    void CheckContribution(size_t number, const LightContribution& contribution, size_t limit, const char* kind) {
        const LightSlotRecord& slot = lights_.slots[number];
        const std::string place = fmt::format("{}, {} {}", PlaceOf(number, slot), kind, contribution.index);
        if (contribution.index >= limit) Problem(place, "is no part of the world", REBUILD);
        const float most = slot.type == LIGHT_FLICKER ? 3 : std::max(slot.intensity, slot.highIntensity);
        const double bytes = double{contribution.weight} * double{most} * NEUTRAL_LEVEL;
        if (!(std::abs(bytes) <= BYTES_MAX))
            Problem(place, fmt::format("gets {} light bytes, but more than {} are of no use", bytes, BYTES_MAX),
                    REBUILD);
    }

    void CheckShots() {
        for (const Vec3& place : PlacesOfPlay(level_, FacesOf(*level_.world), PLACES)) {
            const auto reached = PointsWithin(place, double{SHOT_LIGHT_RADIUS});
            if (reached <= GATHERED_POINTS_MAX) continue;
            report_.Note(level_.SlotPath(), "at " + level_.Describe(place),
                         fmt::format("a shot reaches {} points and lights {} of them", reached, GATHERED_POINTS_MAX),
                         "simplify the brushes around it");
        }
    }

    void CheckCrowding() {
        for (const Vec3& place : PlacesOfPlay(level_, FacesOf(*level_.world), PLACES)) {
            const auto reaches = [&](const LightSlotRecord& slot) {
                return slot.type != LIGHT_FREE && LengthSquared(Widened(slot.position) - place) <= slot.radiusSquared;
            };
            const auto count = std::count_if(lights_.slots.begin(), lights_.slots.end(), reaches);
            if (count <= CHARACTER_LIGHT_COUNT) continue;
            Problem("at " + level_.Describe(place), fmt::format("{} slots reach the character", count),
                    fmt::format("keep it at {}: use smaller radii there", CHARACTER_LIGHT_COUNT));
        }
    }

    const LevelData& level_;
    const LightSlotFile& lights_;
    Report& report_;
};

}  // namespace

void CheckLight(const LevelData& level, Report& report) {
    const LightMapFile& light = *level.light;
    const std::string file = level.LightPath();
    CheckLightBytes(level, report);
    if (light.lightLevel < 0 || light.lightLevel > 200 || light.contrast <= 0 || light.contrast > 300) {
        report.Problem(file, "light level and contrast",
                       fmt::format("{} and {} percent, but only 0 to 200 and 1 to 300 show anything", light.lightLevel,
                                   light.contrast),
                       "change the keys \"light_level\" and \"contrast\" of worldspawn");
    }
    if (light.fadeDistance < 2000) {
        report.Problem(file, fmt::format("fade distance {}", light.fadeDistance),
                       "even the room in front of the player is dark", "raise the key \"fade_distance\" of worldspawn");
    }
    if (light.lightMode < 0 || light.lightMode > 3)
        report.Problem(file, "light mode", fmt::format("{}, 0 to 3 exist", light.lightMode), REBUILD);
    if (!IsColour(light.brightColour) || !IsColour(light.darkColour))
        report.Problem(file, "bright and dark colour", "reach beyond 0 to 63", REBUILD);
    if (level.world) CheckDistances(level, report);
}

void CheckLightSlots(const LevelData& level, Report& report) {
    SlotCheck(level, report).Run();
}
