#include "mapconvert/entities.h"

#include "formats/error.h"
#include "mapconvert/lamps.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

constexpr double CEILING_SLOPE = -0.7;  // z of a face's direction: those that look down more are out of reach

enum class FaceUse { Painted, Sky, Clip, Unseen, LeftOut, Liquid };

// What became of all entities of a class.
struct Outcome {
    size_t count = 0;
    int line = 0;  // line of the first
    std::string became;
    std::set<std::string> keys;  // that had no use
};

class Adapter {
public:
    Adapter(const MapFile& map, const ForeignRules& rules, double scale) : map_(map), rules_(rules), lamps_(rules) {
        out_.world.keys = {{"classname", "worldspawn", {}}, {"scale", fmt::format("{}", scale), {}}};
        starts_.resize(rules.starts.size());
    }

    AdaptedMap Take() {
        for (const MapEntity& entity : map_.entities)
            Add(entity);
        for (const std::vector<MapEntity>& ofClass : starts_)
            out_.starts.insert(out_.starts.end(), ofClass.begin(), ofClass.end());
        for (const auto& [texture, count] : skies_) {
            if (out_.skyTexture.empty() || count > skies_[out_.skyTexture]) out_.skyTexture = texture;
        }
        out_.hasSky = !skies_.empty();
        lamps_.AddTo(out_.world, out_.hasSky);
        WriteNotes();
        return std::move(out_);
    }

private:
    void Add(const MapEntity& entity) {
        const std::string name = LowerCase(entity.ClassName());
        Outcome& outcome = outcomes_[name.empty() ? "(without a class)" : name];
        if (outcome.count++ == 0) outcome.line = entity.line.number;
        if (name == "worldspawn") lamps_.ReadWorld(entity);
        if (!entity.brushes.empty()) return AddBrushes(entity, name, outcome);
        if (name == "worldspawn") return;
        const auto start = std::find_if(rules_.starts.begin(), rules_.starts.end(),
                                        [&](const std::string& pattern) { return Matches({pattern}, name); });
        if (start != rules_.starts.end()) {
            outcome.became = "of all starts one is kept";
            starts_[static_cast<size_t>(start - rules_.starts.begin())].push_back(entity);
        } else if (Matches(rules_.suns, name)) {
            outcome.became = "became the sun";
            lamps_.ReadSun(entity);
        } else if (Matches(rules_.lamps, name)) {
            outcome.became = "became light";
            if (const std::optional<MapEntity> lamp = lamps_.LampOf(entity, outcome.keys)) out_.lamps.push_back(*lamp);
        } else {
            outcome.became = "skipped";
        }
    }

    void AddBrushes(const MapEntity& entity, const std::string& name, Outcome& outcome) {
        const bool world = Matches(rules_.world, name);
        if (Matches(rules_.leftOut, name)) {
            outcome.became = "left out with their brushes";
            return;
        }
        if (!world) outcome.became = "became detail";
        for (const MapBrush& brush : entity.brushes)
            AddBrush(brush, world);
    }

    FaceUse UseOf(const std::string& texture) const {
        const std::string last = texture.substr(texture.find_last_of('/') + 1);
        const auto is = [&](const NamePatterns& patterns) {
            return Matches(patterns, texture) || Matches(patterns, last);
        };
        if (is(rules_.leftOutFaces)) return FaceUse::LeftOut;
        if (is(rules_.clip)) return FaceUse::Clip;
        if (is(rules_.unseen)) return FaceUse::Unseen;
        if (is(rules_.sky)) return FaceUse::Sky;
        return is(rules_.liquid) ? FaceUse::Liquid : FaceUse::Painted;
    }

    void AddBrush(MapBrush brush, bool world) {
        std::set<FaceUse> uses;
        for (MapFace& face : brush.faces) {
            face.texture = LowerCase(face.texture);
            std::replace(face.texture.begin(), face.texture.end(), '\\', '/');
            const FaceUse use = UseOf(face.texture);
            uses.insert(use);
            if (use == FaceUse::Sky) {
                ++skies_[face.texture];
                face.texture = "sky";
            }
            if (use == FaceUse::Unseen) face.texture.clear();
        }
        if (uses.contains(FaceUse::LeftOut)) {
            ++leftOutBrushes_;
            return;
        }
        if (uses.contains(FaceUse::Clip)) {
            for (MapFace& face : brush.faces)
                face.texture = "clip";
            out_.detail.push_back(std::move(brush));
            return;
        }
        if (uses.contains(FaceUse::Liquid)) world = false;
        if (uses.contains(FaceUse::Sky)) AddBarrier(brush);
        (world ? out_.world.brushes : out_.detail).push_back(std::move(brush));
    }

    // Sky does not collide here. A brush of clip that stands out of it by one unit does; its other faces are left out.
    void AddBarrier(MapBrush brush) {
        bool isNeeded = false;
        for (MapFace& face : brush.faces) {
            const auto& [a, b, c] = face.points;
            const Vec3 across = Cross(c - a, b - a);
            const double length = Length(across);
            const bool blocks = face.texture == "sky" && length > 0 && across.z / length > CEILING_SLOPE;
            face.texture = blocks ? "clip" : "sky";
            if (!blocks) continue;
            isNeeded = true;
            for (Vec3& p : face.points)
                p = p + across * (1 / length);
        }
        if (isNeeded) out_.detail.push_back(std::move(brush));
    }

    void WriteNotes() {
        for (const auto& [name, outcome] : outcomes_) {
            std::string note = fmt::format("{}:{}: {} {}", map_.name, outcome.line, outcome.count, Shown(name));
            if (!outcome.became.empty()) note += ": " + outcome.became;
            if (!outcome.keys.empty()) note += fmt::format("; without use: {}", fmt::join(outcome.keys, ", "));
            if (!outcome.became.empty() || !outcome.keys.empty()) out_.notes.push_back(note);
        }
        if (leftOutBrushes_ > 0)
            out_.notes.push_back(fmt::format("{} brushes are left out for their textures", leftOutBrushes_));
        lamps_.WriteNotes(out_.notes);
    }

    const MapFile& map_;
    const ForeignRules& rules_;
    AdaptedMap out_;
    LampReader lamps_;
    std::vector<std::vector<MapEntity>> starts_;  // for each class of the rules
    std::map<std::string, Outcome> outcomes_;
    std::map<std::string, size_t> skies_;
    size_t leftOutBrushes_ = 0;
};

}  // namespace

AdaptedMap AdaptEntities(const MapFile& map, const ForeignRules& rules, double scale) {
    return Adapter(map, rules, scale).Take();
}
