#include "mapc/instances.h"

#include "formats/error.h"
#include "mapc/level_settings.h"
#include "mapc/texture_axes.h"
#include "transforms/angles.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace fs = std::filesystem;

namespace {

constexpr const char* INSTANCE = "func_instance";

// How an instance changes its prefab.
class Placing {
public:
    explicit Placing(const MapEntity& instance) : at_(instance.line) {
        const std::optional<Vec3> origin = VectorKey(instance, "origin");
        if (!origin) Refuse(instance.line, "a func_instance has no origin", "place it in the map");
        origin_ = *origin;
        ReadTurn(instance);
        for (const MapKey& key : instance.keys) {
            if (key.name.starts_with(REPLACE_KEY)) ReadReplacement(key);
        }
    }

    void Apply(MapEntity& entity) const {
        Mark(entity.line);
        for (MapKey& key : entity.keys) {
            Mark(key.line);
            if (key.name != "origin") continue;
            const Vec3 p = Moved(*VectorKey(entity, "origin"));
            key.value = fmt::format("{} {} {}", p.x, p.y, p.z);
        }
        for (MapBrush& brush : entity.brushes) {
            Mark(brush.line);
            for (MapFace& face : brush.faces)
                Apply(face);
        }
    }

private:
    void ReadTurn(const MapEntity& instance) {
        const std::optional<Vec3> angles = VectorKey(instance, "angles");
        if (!angles) return;
        if (angles->x != 0 || angles->z != 0) {
            Refuse(instance.Find("angles")->line, "a func_instance is tilted",
                   "turn it about the vertical only: 0 yaw 0");
        }
        turn_ = SineCosineOfDegrees(angles->y);
    }

    void ReadReplacement(const MapKey& key) {
        std::istringstream words(key.value);
        std::string from, to, more;
        if (!(words >> from >> to) || words >> more) {
            Refuse(key.line, fmt::format("the key {} is \"{}\"", Shown(key.name), Shown(key.value)),
                   "name two textures: the prefab's and the one instead of it");
        }
        textures_[from] = to;
    }

    Vec3 Turned(const Vec3& v) const {
        return {turn_.cosine * v.x - turn_.sine * v.y, turn_.sine * v.x + turn_.cosine * v.y, v.z};
    }
    Vec3 Moved(const Vec3& p) const { return Turned(p) + origin_; }

    void Apply(MapFace& face) const {
        Mark(face.line);
        const Vec3 out = Cross(face.points[2] - face.points[0], face.points[1] - face.points[0]);
        GiveAxes(face, out * (1 / std::max(Length(out), 1e-6)));
        for (Vec3& p : face.points)
            p = Moved(p);
        face.uAxis = Turned(face.uAxis);
        face.vAxis = Turned(face.vAxis);
        face.uOffset -= Dot(face.uAxis, origin_) / face.uScale;
        face.vOffset -= Dot(face.vAxis, origin_) / face.vScale;
        if (const auto found = textures_.find(face.texture); found != textures_.end()) face.texture = found->second;
    }

    // The outermost instance stays, which is placed last.
    void Mark(SourceLine& line) const { line.instance = name_; }

    static constexpr const char* REPLACE_KEY = "replace";
    SourceLine at_;
    std::shared_ptr<const std::string> name_ = std::make_shared<const std::string>(at_.Text());
    Vec3 origin_;
    SineCosine turn_;
    std::map<std::string, std::string> textures_;
};

class Placer {
public:
    Placer(const fs::path& map, const fs::path& prefabs) : folder_(prefabs), chain_{map.lexically_normal()} {}

    MapFile Read(const fs::path& path) {
        files.push_back(path);
        MapFile map = ReadMapFile(path);
        CheckEntities(map);
        const fs::path folder = path.parent_path();
        std::vector<MapEntity> own;
        std::swap(own, map.entities);
        size_t brushes = 0, faces = 0;
        const auto add = [&](MapEntity&& entity, const SourceLine& line) {
            for (const MapBrush& brush : entity.brushes)
                faces += brush.faces.size();
            brushes += entity.brushes.size();
            CheckCount(line, map.entities.size() + 1, MAP_ENTITIES_MAX, "entities");
            CheckCount(line, brushes, MAP_BRUSHES_MAX, "brushes");
            CheckCount(line, faces, MAP_FACES_MAX, "faces");
            map.entities.push_back(std::move(entity));
        };
        for (MapEntity& entity : own) {
            const SourceLine line = entity.line;
            if (entity.ClassName() != INSTANCE) {
                add(std::move(entity), line);
                continue;
            }
            const Placing placing(entity);
            for (const MapEntity& part : PrefabOf(entity, folder)) {
                MapEntity copy = part;
                placing.Apply(copy);
                add(std::move(copy), line);
            }
        }
        return map;
    }

    std::vector<fs::path> files;  // in the order of first use

private:
    struct Prefab {
        std::vector<MapEntity> entities;
        size_t depth = 1;  // how deep prefabs are nested in it, itself counted
    };

    static void CheckCount(const SourceLine& line, size_t count, size_t most, const char* what) {
        if (count <= most) return;
        Refuse(line, fmt::format("with this instance the map has more than {} {}", most, what),
               "place fewer prefabs, or simpler ones");
    }

    const std::vector<MapEntity>& PrefabOf(const MapEntity& instance, const fs::path& folder) {
        const fs::path path = FileOf(instance, folder);
        const bool holdsItself = std::find(chain_.begin(), chain_.end(), path) != chain_.end();
        const auto known = known_.find(path);
        const size_t depth = chain_.size() + (known == known_.end() ? 1 : known->second.depth) - 1;
        chain_.push_back(path);
        if (holdsItself) Refuse(instance.line, "a map holds itself: " + ChainText(), "take out one of these instances");
        if (depth > INSTANCE_DEPTH_MAX) {
            Refuse(instance.line,
                   fmt::format("prefabs are nested more than {} deep: {}", INSTANCE_DEPTH_MAX, ChainText()),
                   "put the inner ones into the map itself");
        }
        const Prefab& prefab =
            known == known_.end() ? known_.emplace(path, ReadPrefab(path)).first->second : known->second;
        chain_.pop_back();
        depths_.back() = std::max(depths_.back(), prefab.depth + 1);
        return prefab.entities;
    }

    Prefab ReadPrefab(const fs::path& path) {
        depths_.push_back(1);
        MapFile map = Read(path);
        Prefab prefab;
        for (MapEntity& entity : map.entities) {
            const std::string name = entity.ClassName();
            if (name.starts_with("info_")) continue;
            if (name == "func_terrain") {
                Refuse(entity.line, "a prefab holds a func_terrain", "terrain cannot be turned: move it to the level");
            }
            if (name == "worldspawn") entity.keys = {{"classname", "func_group", entity.line}};
            prefab.entities.push_back(std::move(entity));
        }
        prefab.depth = depths_.back();
        depths_.pop_back();
        return prefab;
    }

    fs::path FileOf(const MapEntity& instance, const fs::path& folder) const {
        const MapKey* key = instance.Find("file");
        if (!key || key->value.empty()) Refuse(instance.line, "a func_instance has no file", "name a prefab, a .map");
        for (const fs::path& place : {folder, folder_}) {
            const fs::path path = (place / key->value).lexically_normal();
            std::error_code ignored;
            if (fs::exists(path, ignored)) return path;
        }
        Refuse(key->line,
               fmt::format("the prefab \"{}\" is neither in \"{}\" nor in \"{}\"", Shown(key->value), folder.string(),
                           folder_.string()),
               "correct the name");
    }

    std::string ChainText() const {
        std::string text;
        for (const fs::path& path : chain_)
            text += fmt::format("{}{}", text.empty() ? "" : " -> ", Shown(path.filename().string()));
        return text;
    }

    const fs::path folder_;
    std::vector<fs::path> chain_;       // paths of the maps that are being read, the outermost first
    std::vector<size_t> depths_ = {1};  // depths of the same maps, as far as they have been read
    std::map<fs::path, Prefab> known_;
};

}  // namespace

PlacedMap ReadPlacedMap(const fs::path& path, const fs::path& prefabs) {
    Placer placer(path, prefabs);
    MapFile map = placer.Read(path);
    return {std::move(map), std::move(placer.files)};
}
