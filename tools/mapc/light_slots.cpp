#include "mapc/light_slots.h"

#include "formats/error.h"
#include "mapc/steady_slots.h"
#include "records/walking_facts.h"

#include <fmt/format.h>

#include <optional>

namespace {

constexpr double LIGHT_STEP = NEUTRAL_LEVEL;  // light bytes that an intensity of 1 adds
constexpr size_t FLOORS_MAX = 1000;
constexpr double FAR_DISTANCE = 1e5;
constexpr double FAR_RADIUS = 1e6;
constexpr double FAR_SHARE = 1 - FAR_DISTANCE / FAR_RADIUS;  // the share of its intensity that arrives
// Slots that reach a place, those of steady lamps among them: a few below the most, which also holds between the
// places.
constexpr size_t CROWD_MAX = CHARACTER_LIGHT_COUNT - 3;
constexpr double FAR_LIGHT_MIN = 0.5;  // light bytes; less gets no slot

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

struct Slot {
    LightSlotRecord record;
    SourceLine line;  // line of its light in the map; none: steady lamps, the sun, the sky, or light that is everywhere
};

class SlotMaker {
public:
    SlotMaker(const BakedLight& baked, const SlotSources& sources) : baked_(baked), sources_(sources) {
        for (const PlaceLight& place : baked.places)
            places_.push_back(place.place);
    }

    LightSlotFile Make() {
        AddFarLights();
        const LampsByStyle& lamps = sources_.lamps;
        for (size_t i = 0; i < lamps.changing.size(); ++i)
            AddChanging(lamps.changing[i], baked_.changing[i], lamps.steady.size() + i);
        for (const PointLight& light : lamps.dynamic)
            AddDynamic(light);
        AddSteady(lamps.steady);
        CheckCrowding();
        for (const Slot& slot : slots_)
            file_.slots.push_back(slot.record);
        return std::move(file_);
    }

private:
    LightSlotRecord& Add(int32_t type, const SlotShape& shape, const SourceLine& line) {
        if (slots_.size() == LEVEL_SLOTS_MAX) {
            Refuse(line,
                   fmt::format("this light needs slot {}, but there are {}", LEVEL_SLOTS_MAX + 1, LEVEL_SLOTS_MAX),
                   "use fewer lights that change");
        }
        LightSlotRecord& record = slots_.emplace_back(Slot{{}, line}).record;
        record.type = type;
        for (int axis = 0; axis < 3; ++axis)
            record.position[static_cast<size_t>(axis)] = static_cast<float>(shape.position[axis]);
        record.radius = static_cast<float>(shape.radius);
        record.radiusSquared = double{record.radius} * double{record.radius};
        record.intensity = record.highIntensity = record.lowIntensity = static_cast<float>(shape.intensity);
        return record;
    }

    // --- What is the same everywhere.

    void AddFarLights() {
        Box box;
        PlaceLight mean;
        for (const PlaceLight& place : baked_.places) {
            box.Add(place.place);
            mean.sun += place.sun / static_cast<double>(baked_.places.size());
            mean.above += place.above / static_cast<double>(baked_.places.size());
            mean.around += place.around / static_cast<double>(baked_.places.size());
        }
        if (box.IsEmpty()) return;
        // Four directions, evenly spread: one from above, three from below the horizon.
        constexpr double LEVEL = 0.9428090415820634;
        AddFar(box.Centre(), {0, 1, 0}, mean.above);
        for (const Vec3& toLight : {Vec3{LEVEL, -1.0 / 3, 0}, Vec3{-LEVEL / 2, -1.0 / 3, 0.816496580927726},
                                    Vec3{-LEVEL / 2, -1.0 / 3, -0.816496580927726}}) {
            AddFar(box.Centre(), toLight, mean.around / LEVEL);
        }
        AddFar(box.Centre(), baked_.toSun, mean.sun);
    }

    void AddFar(const Vec3& centre, const Vec3& toLight, double light) {
        const double shown = light * sources_.exposure;
        if (shown < FAR_LIGHT_MIN) return;
        Add(LIGHT_PASSIVE, {centre + toLight * FAR_DISTANCE, FAR_RADIUS, shown / LIGHT_STEP / FAR_SHARE}, {});
    }

    // --- The shape by which a lamp lights the character.

    // The light of a lamp at each place.
    std::vector<double> WantedOf(size_t lamp) const {
        std::vector<double> wanted;
        for (const PlaceLight& place : baked_.places)
            wanted.push_back(place.lamps[lamp] * sources_.exposure / LIGHT_STEP);
        return wanted;
    }

    SlotShape PlainShape(const PointLight& light) const {
        return {sources_.placement.ToEngine(light.origin), light.radius * sources_.placement.scale,
                light.brightness * sources_.exposure / LIGHT_STEP};
    }

    // The engine gives every flickering light the same intensity. A slot high above the lamp is the weaker for its
    // distance.
    SlotShape FlickerShape(const PointLight& light, size_t lamp) const {
        const SlotShape plain = PlainShape(light);
        const std::vector<double> wanted = WantedOf(lamp);
        SlotShape best{plain.position, plain.radius / FIT_STEPS, FLICKER_INTENSITY};
        double least = std::numeric_limits<double>::infinity();
        for (int raise = 0; raise <= FIT_STEPS; ++raise) {
            const Vec3 position = plain.position + Vec3{0, plain.radius * raise / FIT_STEPS, 0};
            for (int step = 1; step <= 2 * FIT_STEPS; ++step) {
                const double radius = plain.radius * step / FIT_STEPS;
                const double error = SumsOf({places_, wanted}, position, radius).Error(FLICKER_INTENSITY);
                if (error >= least) continue;
                least = error;
                best = {position, radius, FLICKER_INTENSITY};
            }
        }
        return best;
    }

    // --- Lamps.

    void AddSteady(const std::vector<PointLight>& lights) {
        std::vector<SteadyLamp> lamps;
        for (size_t i = 0; i < lights.size(); ++i)
            lamps.push_back({PlainShape(lights[i]), WantedOf(i)});
        SlotRoom room{LEVEL_SLOTS_MAX - slots_.size(), CROWD_MAX, {}};
        for (const Slot& slot : slots_)
            room.others.push_back(ShapeOf(slot.record));
        for (const SlotShape& shape : SteadySlots(places_, std::move(lamps), room))
            Add(LIGHT_PASSIVE, shape, {});
    }

    static SlotShape ShapeOf(const LightSlotRecord& record) {
        return {{record.position[0], record.position[1], record.position[2]}, record.radius, record.intensity};
    }

    void AddChanging(const PointLight& light, const LightField& field, size_t lamp) {
        const bool flickers = light.style == LightStyle::Flicker;
        const SlotShape shape =
            flickers ? FlickerShape(light, lamp) : FittedShape({places_, WantedOf(lamp)}, PlainShape(light));
        const int32_t type = flickers ? LIGHT_FLICKER : light.style == LightStyle::Ramp ? LIGHT_RAMP : LIGHT_BLINK;
        LightSlotRecord& record = Add(type, shape, light.line);
        if (light.style == LightStyle::Ramp) SetRamp(light, record);
        if (light.style == LightStyle::Blink) SetBlink(light, record);
        AddContributions(field, shape.intensity, flickers ? FLICKER_INTENSITY_MAX / FLICKER_INTENSITY : 1, light.line,
                         record);
    }

    void AddDynamic(const PointLight& light) {
        const SlotShape shape = PlainShape(light);
        const bool changes = light.style == LightStyle::DynamicRamp;
        LightSlotRecord& record = Add(changes ? LIGHT_DYNAMIC_RAMP : LIGHT_DYNAMIC, shape, light.line);
        if (changes) SetRamp(light, record);
        const auto reached =
            std::count_if(sources_.world.points.begin(), sources_.world.points.end(), [&](const WorldPoint& point) {
                return LengthSquared(Widened(point.position) - shape.position) <= shape.radius * shape.radius;
            });
        if (static_cast<size_t>(reached) <= GATHERED_POINTS_MAX) return;
        Refuse(
            light.line,
            fmt::format("this dynamic light reaches {} points of the world, at most {}", reached, GATHERED_POINTS_MAX),
            "give it a smaller radius, or the style ramp, blink or flicker");
    }

    static void SetRamp(const PointLight& light, LightSlotRecord& record) {
        record.lowIntensity = static_cast<float>(record.highIntensity * light.low);
        const double range = double{record.highIntensity} - double{record.lowIntensity};
        record.stepUp = static_cast<float>(range / light.rise);
        record.stepDown = static_cast<float>(-range / light.fall);
        const int over = light.start % (light.rise + light.fall);
        record.phase = over < light.rise ? 0 : 1;
        record.intensity = record.phase == 0
                               ? static_cast<float>(record.lowIntensity + range * over / light.rise)
                               : static_cast<float>(record.highIntensity - range * (over - light.rise) / light.fall);
    }

    static void SetBlink(const PointLight& light, LightSlotRecord& record) {
        record.lowIntensity = static_cast<float>(record.highIntensity * light.low);
        record.highTime = light.highTime;
        record.lowTime = light.lowTime;
        const int over = light.start % (light.lowTime + light.highTime);
        record.phase = over < light.lowTime ? 0 : 1;
        record.intensity = record.phase == 0 ? record.lowIntensity : record.highIntensity;
        record.timer = (record.phase == 0 ? light.lowTime : light.lowTime + light.highTime) - over;
    }

    // --- What a lamp adds to the world. The engine adds whole light bytes only.

    void AddContributions(const LightField& field, double intensity, double most, const SourceLine& line,
                          LightSlotRecord& record) {
        const auto isSeen = [&](double light) { return light * sources_.exposure * most >= 1; };
        const auto weight = [&](double light) {
            return static_cast<float>(light * sources_.exposure / (LIGHT_STEP * intensity));
        };
        record.firstPoint = static_cast<int32_t>(file_.points.size());
        record.firstCorner = static_cast<int32_t>(file_.corners.size());
        for (size_t i = 0; i < field.points.size(); ++i) {
            if (isSeen(field.points[i])) file_.points.push_back({static_cast<uint16_t>(i), weight(field.points[i])});
        }
        for (size_t i = 0; i < field.corners.size(); ++i) {
            for (size_t k = 0; k < field.corners[i].size(); ++k) {
                if (!isSeen(field.corners[i][k])) continue;
                if (i >= CORNER_NUMBER_POLYGONS) RefuseLatePolygon(line, i);
                file_.corners.push_back({static_cast<uint16_t>(i * 8 + k), weight(field.corners[i][k])});
            }
        }
        record.pointCount = static_cast<int32_t>(file_.points.size()) - record.firstPoint;
        record.cornerCount = static_cast<int32_t>(file_.corners.size()) - record.firstCorner;
        CheckContributions(line, record.pointCount, file_.points.size(), "points");
        CheckContributions(line, record.cornerCount, file_.corners.size(), "corners of faces with corner light");
    }

    void CheckContributions(const SourceLine& line, int32_t own, size_t total, const char* kind) const {
        if (total <= LIGHT_CONTRIBUTION_MAX) return;
        Refuse(line,
               fmt::format("the changing lights up to this one reach {} {}, at most {}; this one reaches {}", total,
                           kind, LIGHT_CONTRIBUTION_MAX, own),
               "give changing lights smaller radii, or leave some out");
    }

    [[noreturn]] void RefuseLatePolygon(const SourceLine& line, size_t polygon) const {
        const WorldCorner& corner = sources_.world.corners[sources_.world.polygons[polygon].firstCorner];
        const Vec3 place = sources_.placement.ToMap(Widened(sources_.world.points[corner.point].position));
        Refuse(line,
               fmt::format("this light changes the corner light of polygon {} at ({:.0f} {:.0f} {:.0f}), which "
                           "only polygons below {} can show",
                           polygon, place.x, place.y, place.z, CORNER_NUMBER_POLYGONS),
               "take \"corner_light\" from the brushes there, or give the light a smaller radius");
    }

    void CheckCrowding() const {
        for (const PlaceLight& place : baked_.places) {
            size_t count = 0;
            std::string lines;
            for (const auto& [record, line] : slots_) {
                if (!ReachesPlace(ShapeOf(record), place.place)) continue;
                ++count;
                if (line.number > 0) lines += fmt::format("{}{}", lines.empty() ? "" : ", ", line.Text());
            }
            if (count <= CHARACTER_LIGHT_COUNT) continue;
            const Vec3 p = sources_.placement.ToMap(place.place);
            Refuse(sources_.map, 0,
                   fmt::format("{} lights reach the player at ({:.0f} {:.0f} {:.0f}), at most {}", count, p.x, p.y, p.z,
                               CHARACTER_LIGHT_COUNT),
                   "give some of them smaller radii, those of " + lines);
        }
    }

    const BakedLight& baked_;
    const SlotSources& sources_;
    std::vector<Vec3> places_;  // places at which the light was baked
    std::vector<Slot> slots_;
    LightSlotFile file_;
};

}  // namespace

LampsByStyle SortLamps(const std::vector<PointLight>& lights) {
    LampsByStyle lamps;
    for (const PointLight& light : lights) {
        const bool dynamic = light.style == LightStyle::Dynamic || light.style == LightStyle::DynamicRamp;
        (light.style == LightStyle::Steady ? lamps.steady : dynamic ? lamps.dynamic : lamps.changing).push_back(light);
    }
    return lamps;
}

std::vector<Vec3> FloorsOf(const WorldFile& world) {
    std::vector<Vec3> all;
    for (const WorldPolygon& polygon : world.polygons) {
        if (-world.planes[polygon.plane].normal[1] <= LANDING_SLOPE) continue;
        const auto corner = [&](size_t k) {
            return Widened(world.points[world.corners[polygon.firstCorner + k].point].position);
        };
        Vec3 centre;
        for (size_t k = 0; k < polygon.cornerCount; ++k)
            centre = centre + corner(k) * (1.0 / polygon.cornerCount);
        all.push_back(centre);
        for (size_t k = 0; k < polygon.cornerCount; ++k)
            all.push_back((centre + corner(k)) * 0.5);
    }
    std::vector<Vec3> floors;
    const size_t step = all.size() / FLOORS_MAX + 1;
    for (size_t i = 0; i < all.size(); i += step)
        floors.push_back(all[i]);
    return floors;
}

LightSlotFile MakeLightSlots(const BakedLight& baked, const SlotSources& sources) {
    return SlotMaker(baked, sources).Make();
}

std::vector<Count> CountSlots(const LightSlotFile& file) {
    return {{"light slots", file.slots.size(), LEVEL_SLOTS_MAX},
            {"points that changing lights reach", file.points.size(), LIGHT_CONTRIBUTION_MAX},
            {"corners that changing lights reach", file.corners.size(), LIGHT_CONTRIBUTION_MAX}};
}
