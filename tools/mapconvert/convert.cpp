#include "mapconvert/convert.h"

#include "formats/error.h"
#include "mapc/placement.h"
#include "mapconvert/entities.h"
#include "mapconvert/lamps.h"
#include "mapconvert/map_writer.h"
#include "mapconvert/other_forms.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr double REPEAT_SCALE = 1;  // scale of a face that says none
const Image ANY_PICTURE(64, 64);

// Areas of textures by name, and what stops a point, of brushes that are known to be sound.
class Surroundings {
public:
    explicit Surroundings(const MapFile& map) : materials_(MaterialsOf(map)), brushes_(BuildBrushes(map, materials_)) {}

    bool StopsAt(const Vec3& p) const {
        return std::any_of(brushes_.list.begin(), brushes_.list.end(), [&](const Brush& brush) {
            return brush.kind != BrushKind::Clip && brush.Holds(p, brushes_.planes, 0);
        });
    }
    bool HasFloorBelow(const Vec3& p) const {
        const std::optional<Floor> floor = TopmostBelow(brushes_, p);
        return floor && !floor->isSky;
    }

    static std::vector<Material> MaterialsOf(const MapFile& map) {
        std::vector<Material> list{{SLOT, "clip", 8, 8, MATERIAL_CLIP}, {SLOT, "sky", 8, 8, MATERIAL_SKY}};
        std::set<std::string> known{"clip", "sky"};
        for (const MapEntity& entity : map.entities) {
            for (const MapBrush& brush : entity.brushes) {
                for (const MapFace& face : brush.faces) {
                    if (known.insert(face.texture).second)
                        list.push_back({0, face.texture, ANY_PICTURE.width, ANY_PICTURE.height});
                }
            }
        }
        return list;
    }

private:
    static constexpr int SLOT = 92;
    const std::vector<Material> materials_;
    const Brushes brushes_;
};

MapFile MapOf(const std::string& name, AdaptedMap& adapted) {
    MapFile map{name, {std::move(adapted.world)}};
    MapEntity detail;
    detail.keys = {{"classname", "func_detail", {}}};
    detail.brushes = std::move(adapted.detail);
    if (!detail.brushes.empty()) map.entities.push_back(std::move(detail));
    return map;
}

class Converter {
public:
    Converter(const std::string& text, const std::string& name, const ForeignRules& rules, double scale) {
        OtherForms otherForms;
        const MapFile source = ParseMap(WithoutOtherForms(text, otherForms), name);
        adapted_ = AdaptEntities(source, rules, scale);
        out_.notes = adapted_.notes;
        for (const auto& [form, found] : otherForms)
            Note("{}:{}: {} {} left out", name, found.line, found.count, form);
        out_.map = MapOf(name, adapted_);
        KeepSoundBrushes();
        PaintUnseen();
    }

    ConvertedMap Take(const Pictures& pictures) {
        const Surroundings surroundings(out_.map);
        AddLamps(surroundings);
        AddStart(surroundings);
        const std::string sky = !adapted_.hasSky ? "" : adapted_.skyTexture;
        out_.painting = PaintMap(out_.map, area_, sky, pictures, out_.notes);
        if (adapted_.hasSky) out_.map.entities[0].keys.push_back({"sky", "sky.toml", {}});
        return std::move(out_);
    }

private:
    template <class... Values>
    void Note(fmt::format_string<Values...> text, Values&&... values) {
        out_.notes.push_back(fmt::format(text, std::forward<Values>(values)...));
    }

    // Leaves out brushes that mapc would refuse, and sums up the area of each texture.
    void KeepSoundBrushes() {
        size_t broken = 0;
        std::string first;
        for (MapEntity& entity : out_.map.entities) {
            std::erase_if(entity.brushes, [&](MapBrush& brush) {
                for (MapFace& face : brush.faces) {
                    if (face.uScale == 0) face.uScale = REPEAT_SCALE;
                    if (face.vScale == 0) face.vScale = REPEAT_SCALE;
                }
                try {
                    AddAreas(brush);
                    return false;
                } catch (const ContentError& error) {
                    if (broken++ == 0) first = error.what();
                    return true;
                }
            });
        }
        if (broken > 0) Note("{} broken brushes are left out; the first: {}", broken, first);
    }

    void AddAreas(const MapBrush& brush) {
        MapEntity entity;
        entity.keys = {{"classname", "worldspawn", {}}};
        entity.brushes = {brush};
        const MapFile alone{out_.map.name, {entity}};
        const std::vector<Material> materials = Surroundings::MaterialsOf(alone);
        const Brushes built = BuildBrushes(alone, materials);
        for (const BrushSide& side : built.list[0].sides) {
            if (side.texture < 0) continue;
            area_[built.textures[static_cast<size_t>(side.texture)].material->name] += WindingArea(side.winding);
        }
    }

    // Faces that are not meant to be seen are painted like others of their brush, or like most of the map.
    void PaintUnseen() {
        area_.erase("");
        area_.erase("clip");
        const auto most = std::max_element(area_.begin(), area_.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        if (most == area_.end())
            Refuse(out_.map.name, 0, "has no brush that can be seen", "check the table of classes");
        for (MapEntity& entity : out_.map.entities) {
            for (MapBrush& brush : entity.brushes) {
                std::string paint = most->first;
                for (const MapFace& face : brush.faces) {
                    if (area_.contains(face.texture)) paint = face.texture;
                }
                for (MapFace& face : brush.faces) {
                    if (face.texture.empty()) face.texture = paint;
                }
            }
        }
    }

    void AddLamps(const Surroundings& surroundings) {
        size_t moved = 0;
        size_t lost = 0;
        for (MapEntity& lamp : adapted_.lamps) {
            const Vec3 origin = *VectorKey(lamp, "origin");
            const std::optional<Vec3> open = OpenPlaceAt(origin, surroundings);
            if (!open) {
                ++lost;
                continue;
            }
            if (LengthSquared(*open - origin) > 0) {
                ++moved;
                for (MapKey& key : lamp.keys) {
                    if (key.name == "origin") key.value = fmt::format("{} {} {}", open->x, open->y, open->z);
                }
            }
            out_.map.entities.push_back(std::move(lamp));
        }
        if (moved + lost > 0) Note("{} lamps in brushes are moved out of them, {} are left out", moved, lost);
    }

    static std::optional<Vec3> OpenPlaceAt(const Vec3& p, const Surroundings& surroundings) {
        if (!surroundings.StopsAt(p)) return p;
        for (const double way : {4.0, 8.0, 16.0, 32.0, 48.0}) {
            for (const Vec3& to : {Vec3{0, 0, -way}, Vec3{0, 0, way}, Vec3{way, 0, 0}, Vec3{-way, 0, 0},
                                   Vec3{0, way, 0}, Vec3{0, -way, 0}}) {
                if (!surroundings.StopsAt(p + to)) return p + to;
            }
        }
        return std::nullopt;
    }

    void AddStart(const Surroundings& surroundings) {
        for (const MapEntity& start : adapted_.starts) {
            const std::vector<double> numbers = NumbersOf(start, "origin");
            if (numbers.size() != 3) continue;
            const Vec3 origin{numbers[0], numbers[1], numbers[2]};
            if (surroundings.StopsAt(origin) || !surroundings.HasFloorBelow(origin)) continue;
            MapEntity entity;
            entity.line = start.line;
            entity.keys = {{"classname", "info_player_start", {}},
                           {"origin", start.Find("origin")->value, {}},
                           {"angle", fmt::format("{}", QuarterOf(start)), {}}};
            out_.map.entities.push_back(std::move(entity));
            return;
        }
        Refuse(out_.map.name, 0,
               adapted_.starts.empty() ? "there is no start"
                                       : fmt::format("none of {} starts is above a floor", adapted_.starts.size()),
               "add one, or its class to 'starts' of the table");
    }

    // The quarter that is nearest to where a start looks.
    int QuarterOf(const MapEntity& start) {
        double angle = 0;
        const std::vector<double> yaw = NumbersOf(start, "angle");
        if (yaw.size() == 1 && yaw[0] >= 0) angle = yaw[0];  // -1 and -2 are up and down
        for (const char* key : {"angles", "mangle"}) {
            if (const std::vector<double> turns = NumbersOf(start, key); turns.size() == 3) angle = turns[1];
        }
        const double quarters = std::floor(angle / 90 + 0.5);
        const int quarter = static_cast<int>(quarters - std::floor(quarters / 4) * 4) * 90;
        if (quarters * 90 != angle) Note("the start looks along {} degrees instead of {}", quarter, angle);
        return quarter;
    }

    ConvertedMap out_;
    AdaptedMap adapted_;
    std::map<std::string, double> area_;  // by texture
};

std::vector<fs::path> PlacesFor(const ConvertOptions& options, const ForeignRules& rules) {
    std::vector<fs::path> places = options.pictures;
    places.insert(places.end(), rules.pictures.begin(), rules.pictures.end());
    const fs::path home = options.map.has_parent_path() ? options.map.parent_path() : ".";
    if (fs::is_directory(home / "textures")) places.push_back(home / "textures");
    std::vector<fs::path> beside;
    for (const fs::directory_entry& entry : fs::directory_iterator(home)) {
        if (LowerCase(entry.path().extension().string()) == ".wad") beside.push_back(entry.path());
    }
    std::sort(beside.begin(), beside.end());
    places.insert(places.end(), beside.begin(), beside.end());
    return places;
}

// Whom the player is in the level whose place ./play --map gives the map: that with its kind of sky and short frames.
std::string CharacterOf(bool hasSky) {
    const auto row = std::find_if(std::begin(LEVEL_ROWS), std::end(LEVEL_ROWS), [&](const LevelRow& level) {
        return (level.sky == LevelSky::OPEN) == hasSky && level.ticks == 1;
    });
    return row->skin == LevelSkin::ZERO ? "zero" : "tarnwick";
}

std::string TexturesText(const Painting& painting) {
    const std::string who = CharacterOf(!painting.sky.empty());
    std::string text = "dark = \"#000000\"\nground = \"#000000\"\n";
    text += fmt::format("skin = [\"{0}_body\", \"{0}_head\"]\nmaterials = [\n", who);
    for (const auto& [name, picture] : painting.pictures)
        text += fmt::format("    \"{}\",\n", name);
    return text + "]\n";
}

// All around, the picture is seen four times side by side; it pinches together only straight above and below.
std::string SkyText(const std::string& material) {
    std::string text = "[[layer]]\nkind = \"dome\"\n";
    for (const auto& [from, to] : {std::pair(-90, 0), std::pair(0, 90)}) {
        text += fmt::format("[[layer.band]]\nfrom = {}\nto = {}\nmaterial = \"{}\"\naround = 4\nrows = 4\n", from, to,
                            material);
    }
    return text;
}

}  // namespace

ConvertedMap ConvertMapText(const std::string& text, const std::string& name, const ForeignRules& rules, double scale,
                            const Pictures& pictures) {
    return Converter(text, name, rules, scale).Take(pictures);
}

ConvertedMap ConvertMap(const ConvertOptions& options) {
    const ForeignRules rules = ReadForeignRules(options.rules);
    const std::vector<uint8_t> bytes = ReadWholeFile(options.map);
    std::vector<std::string> notes;
    const Palette palette = rules.palette.empty() ? GreyPalette() : ReadPalette(rules.palette);
    const Pictures pictures(PlacesFor(options, rules), palette, notes);
    ConvertedMap converted = ConvertMapText({bytes.begin(), bytes.end()}, options.map.string(), rules,
                                            options.scale.value_or(DOOR_UNITS / rules.door), pictures);
    converted.notes.insert(converted.notes.end(), notes.begin(), notes.end());
    return converted;
}

void WriteConverted(const ConvertedMap& converted, const fs::path& source, const fs::path& folder) {
    const auto bytes = [](const std::string& text) { return std::vector<uint8_t>(text.begin(), text.end()); };
    std::vector<OutputFile> files{
        {folder / source.filename().replace_extension(".map"), bytes(MapText(converted.map))},
        {folder / "textures.toml", bytes(TexturesText(converted.painting))},
    };
    if (!converted.painting.sky.empty()) files.push_back({folder / "sky.toml", bytes(SkyText(converted.painting.sky))});
    for (const auto& [name, picture] : converted.painting.pictures)
        WritePng(folder / "materials" / (name + ".png"), picture);
    WriteWholeFiles(files);
}
