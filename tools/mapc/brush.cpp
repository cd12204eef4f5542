#include "mapc/brush.h"

#include "formats/error.h"
#include "mapc/terrain.h"
#include "records/table_facts.h"

#include <fmt/format.h>

#include <map>
#include <set>

namespace {

constexpr int WORLD_SLOT_END = CHAR_TEXTURE_BASE;

class BrushBuilder {
public:
    BrushBuilder(const MapFile& map, const std::vector<Material>& materials, FaultList* faults)
        : map_(map), faults_(faults), standIn_(materials.empty() ? nullptr : &materials[0]) {
        for (const Material& material : materials)
            materials_[material.name] = &material;
    }

    void Add(const MapEntity& entity) {
        const std::string name = entity.ClassName();
        if (name == "func_terrain") return AddTerrain(entity);
        const bool detail = name == "func_detail";
        if (!detail && name != "worldspawn" && name != "func_group") {
            Refuse(entity.line, fmt::format("a {} cannot have brushes", Shown(name)),
                   "move them to the world, or make them a func_group, func_detail or func_terrain");
        }
        const bool cornerLight = NumberKey(entity, "corner_light", 0) != 0;
        for (const MapBrush& brush : entity.brushes) {
            CheckTextures(brush);
            Collect(faults_, brush.line.number, [&] { Add(brush, detail, cornerLight); });
        }
    }

    Brushes Take() {
        out_.file = map_.name;
        std::stable_sort(out_.list.begin(), out_.list.end(),
                         [](const Brush& a, const Brush& b) { return a.kind < b.kind; });
        return std::move(out_);
    }

private:
    // Each name that must not be is told once.
    void CheckTextures(const MapBrush& brush) {
        for (const MapFace& face : brush.faces) {
            if (checked_.insert(face.texture).second) Collect(faults_, face.line.number, [&] { CheckTexture(face); });
        }
    }

    const Material& MaterialOf(const MapFace& face) const {
        const auto found = materials_.find(face.texture);
        if (found != materials_.end()) return *found->second;
        if (!standIn_) Refuse(face.line, "the list of materials is empty", "add the level's materials to it");
        return *standIn_;
    }

    void CheckTexture(const MapFace& face) const {
        const auto found = materials_.find(face.texture);
        if (found == materials_.end()) {
            Refuse(face.line, fmt::format("the texture \"{}\" is not in the list of materials", Shown(face.texture)),
                   "choose another one, or add it to the level's materials");
        }
        const Material& material = *found->second;
        if (material.slot >= WORLD_SLOT_END && !(material.flags & MATERIAL_SKY)) {
            Refuse(face.line, fmt::format("the texture \"{}\" is in slot {}", Shown(face.texture), material.slot),
                   fmt::format("worlds may use slots 0..{}", WORLD_SLOT_END - 1));
        }
    }

    Plane PlaneOf(const MapFace& face) const {
        const auto& [a, b, c] = face.points;
        const Vec3 normal = Cross(c - a, b - a);  // the points run clockwise seen from outside
        const double length = Length(normal);
        for (const Vec3& p : face.points) {
            if (Box{{}, {}}.Holds(p, MAP_EXTENT)) continue;
            Refuse(face.line, fmt::format("a point lies beyond {} units", MAP_EXTENT),
                   "move the brush nearer to the origin");
        }
        if (length < 1e-6) {
            Refuse(face.line, "the three points of the face lie on a line", "make the brush again");
        }
        const Vec3 unit = normal * (1 / length);
        return {unit, Dot(unit, a)};
    }

    void AddTerrain(const MapEntity& entity) {
        const Terrain terrain = BuildTerrain(map_, entity);
        for (const MapBrush& prism : terrain.prisms) {
            CheckTextures(prism);
            Add(prism, true, false);
        }
        for (const double x : terrain.columns)
            out_.terrainLines.push_back(out_.planes.Find({1, 0, 0}, x));
        for (const double y : terrain.rows)
            out_.terrainLines.push_back(out_.planes.Find({0, 1, 0}, y));
    }

    static BrushKind KindOf(const MapBrush& brush, const std::vector<const Material*>& materials, bool detail) {
        unsigned flags = 0;
        for (size_t i = 0; i < brush.faces.size(); ++i)
            flags |= materials[i]->flags;
        if (flags & MATERIAL_CLIP) return BrushKind::Clip;
        if (flags & MATERIAL_CUTOUT) return BrushKind::Cutout;
        return detail ? BrushKind::Detail : BrushKind::Solid;
    }

    void Add(const MapBrush& source, bool detail, bool cornerLight) {
        if (out_.list.size() == BRUSHES_MAX) {
            Refuse(source.line, fmt::format("more than {} brushes, those of terrains among them", BRUSHES_MAX),
                   "make the height images smaller");
        }
        Brush brush;
        brush.line = source.line;
        std::vector<const Material*> materials;
        std::vector<const MapFace*> faces;  // the face of each side; a plane that is given twice counts once
        for (const MapFace& face : source.faces) {
            const Plane plane = PlaneOf(face);
            materials.push_back(&MaterialOf(face));
            const int id = out_.planes.Find(plane.normal, plane.dist);
            const bool known = std::any_of(brush.sides.begin(), brush.sides.end(),
                                           [&](const BrushSide& side) { return side.plane == id; });
            if (known) continue;
            brush.sides.push_back({id, -1, {}});
            faces.push_back(&face);
        }
        brush.kind = KindOf(source, materials, detail);
        CutWindings(brush);
        for (size_t i = 0; i < brush.sides.size(); ++i) {
            if (!brush.sides[i].winding.empty()) Paint(brush.sides[i], *faces[i], cornerLight);
        }
        std::erase_if(brush.sides, [](const BrushSide& side) { return side.winding.empty(); });
        std::stable_sort(brush.sides.begin(), brush.sides.end(), [&](const BrushSide& a, const BrushSide& b) {
            return std::abs(out_.planes[a.plane].normal.z) < std::abs(out_.planes[b.plane].normal.z);
        });
        out_.list.push_back(std::move(brush));
    }

    void CutWindings(Brush& brush) const {
        size_t valid = 0;
        for (BrushSide& side : brush.sides) {
            side.winding = BaseWinding(out_.planes[side.plane]);
            for (const BrushSide& other : brush.sides) {
                if (&other != &side && !side.winding.empty()) KeepBack(side.winding, out_.planes[other.plane], 1e-6);
            }
            CleanWinding(side.winding);
            if (side.winding.empty()) continue;
            ++valid;
            for (const Vec3& p : side.winding)
                brush.box.Add(p);
        }
        if (valid < 4) {
            Refuse(brush.line, "the brush has no volume", "delete it, or move its faces apart");
        }
        if (!Box{{}, {}}.Holds(brush.box.min, MAP_EXTENT) || !Box{{}, {}}.Holds(brush.box.max, MAP_EXTENT)) {
            Refuse(brush.line, "the brush is open: its faces do not close a volume", "make it again");
        }
    }

    static void CleanWinding(Winding& winding) {
        constexpr double SNAP = 1e-4;
        for (Vec3& p : winding) {
            for (int axis = 0; axis < 3; ++axis) {
                const double whole = std::floor(p[axis] + 0.5);
                if (std::abs(p[axis] - whole) < SNAP) p[axis] = whole;
            }
        }
        RemoveStraightCorners(winding);
        if (winding.size() < 3) winding.clear();
    }

    void Paint(BrushSide& side, const MapFace& face, bool cornerLight) {
        const Material& material = MaterialOf(face);
        if (material.flags & MATERIAL_SKY) return;
        FaceTexture texture = TextureOf(face, out_.planes[side.plane].normal, material);
        texture.cornerLight = cornerLight;
        side.texture = static_cast<int>(out_.textures.size());
        out_.textures.push_back(texture);
    }

    const MapFile& map_;
    FaultList* const faults_;
    const Material* const standIn_;  // for textures that are not in the list
    std::map<std::string, const Material*> materials_;
    std::set<std::string> checked_;  // names of textures
    Brushes out_;
};

}  // namespace

std::vector<Box> BoxesOf(const Brushes& brushes) {
    std::vector<Box> boxes;
    for (const Brush& brush : brushes.list)
        boxes.push_back(brush.box);
    return boxes;
}

bool Brush::Holds(const Vec3& p, const PlaneTable& planes, double tolerance) const {
    if (!box.Holds(p, tolerance)) return false;
    for (const BrushSide& side : sides) {
        if (planes[side.plane].Distance(p) > tolerance) return false;
    }
    return true;
}

Brushes BuildBrushes(const MapFile& map, const std::vector<Material>& materials, FaultList* faults) {
    BrushBuilder builder(map, materials, faults);
    for (const MapEntity& entity : map.entities) {
        if (entity.brushes.empty()) continue;
        Collect(faults, entity.line.number, [&] { builder.Add(entity); });
    }
    return builder.Take();
}
