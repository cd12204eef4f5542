#include "mapc/compile.h"

#include "formats/depfile.h"
#include "formats/files.h"
#include "mapc/emit.h"
#include "mapc/fan.h"
#include "mapc/instances.h"
#include "mapc/light.h"
#include "mapc/light_slots.h"
#include "mapc/map_places.h"
#include "mapc/merge.h"
#include "mapc/sealing.h"
#include "mapc/skirts.h"
#include "mapc/tessellate.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <chrono>

namespace {

std::string PlaceText(const Vec3& p) {
    return fmt::format("({:.0f} {:.0f} {:.0f})", p.x, p.y, p.z);
}

[[noreturn]] void RefuseLeak(const MapFile& map, const std::vector<Vec3>& path) {
    std::string text =
        fmt::format("{}: the level leaks: the space around info_player_start is open to the outside", map.name);
    text += ": close the hole along this path:";
    for (const Vec3& p : path)
        text.append(" ").append(PlaceText(p));
    throw LeakError(text, path);
}

void CheckStart(const Brushes& brushes, const PlayerStart& start) {
    for (const Brush& brush : brushes.list) {
        if (brush.kind == BrushKind::Cutout || !brush.Holds(start.origin, brushes.planes, 0)) continue;
        Refuse(start.line, fmt::format("info_player_start is inside the brush of {}", brush.line.Text()),
               "move it into the open");
    }
}

// Null when the list has none: then nothing invisible can be made.
const Material* ClipMaterial(const MaterialList& list) {
    const auto found = std::find_if(list.materials.begin(), list.materials.end(),
                                    [](const Material& material) { return material.flags & MATERIAL_CLIP; });
    return found == list.materials.end() ? nullptr : &*found;
}

struct ReachableSurface {
    std::vector<Face> faces;   // that the player can get to see or touch
    std::vector<Face> skirts;  // behind them
};

ReachableSurface SurfaceOf(const MapFile& map, Brushes& brushes, const PlayerStart& start, const Material* clip,
                           double scale) {
    Surface surface = CutBrushes(brushes);
    const SealedSpace space(std::move(surface.sealing), brushes, start.origin);
    if (!space.LeakPath().empty()) RefuseLeak(map, space.LeakPath());
    std::erase_if(surface.visible, [&](const Face& face) { return !space.IsSeen(face); });
    MergeFaces(surface.visible, brushes);
    std::vector<Face> skirts;
    if (clip) skirts = SkirtsBehind(surface.visible, brushes, space, *clip, scale);
    CheckCounts(map.name, {PolygonCount(surface.visible.size() + skirts.size())});
    return {std::move(surface.visible), std::move(skirts)};
}

Mesh MeshOf(const Tree& tree, const Brushes& brushes, double scale) {
    Mesh mesh = WeldMesh(tree, scale);
    CheckMesh(brushes.file, tree, mesh);
    FillTJunctions(mesh, scale);
    CheckMesh(brushes.file, tree, mesh);
    MakeFans(mesh, brushes.planes, [&](const MeshPolygon& polygon) {
        const bool cornerLight = brushes.textures[static_cast<size_t>(polygon.texture)].cornerLight;
        return cornerLight ? CORNER_LIGHT_CORNERS : BSP_CORNERS_MAX;
    });
    return mesh;
}

WorldFile CutOnWholeGrid(const MapFile& map, Tree tree, const Brushes& brushes, const Placement& placement,
                         const LightGrid& grid) {
    TessellateFaces(tree, brushes, grid);
    const Mesh mesh = MeshOf(tree, brushes, placement.scale);
    CheckMesh(map.name, tree, mesh);
    return EmitWorld(tree, mesh, brushes, placement);
}

void Emit(Tree tree, const Brushes& brushes, const std::vector<Face>& skirts, CompiledLevel& compiled) {
    AddWhole(tree, skirts, brushes.planes);
    const Mesh mesh = MeshOf(tree, brushes, compiled.placement.scale);
    CheckMesh(brushes.file, tree, mesh);
    compiled.world = EmitWorld(tree, mesh, brushes, compiled.placement);
    compiled.counts = CountWorld(compiled.world, tree.depth);
    CheckCounts(brushes.file, compiled.counts);
    CheckPlacesToStand(brushes.file, compiled.world);
    compiled.contacts = MostContacts(compiled.world);
}

// Where the player would touch too many polygons, the smallest skirts have to go.
void EmitWithSkirts(const Tree& tree, const Brushes& brushes, std::vector<Face> skirts, CompiledLevel& compiled) {
    const size_t all = skirts.size();
    Emit(tree, brushes, skirts, compiled);
    while (compiled.contacts.count > LEVEL_CONTACTS_MAX) {
        const WorldVector& place = compiled.contacts.place;
        const size_t tooMany = static_cast<size_t>(compiled.contacts.count - LEVEL_CONTACTS_MAX);
        const double reach = CONTACTS_REACH / compiled.placement.scale;
        if (!ThinSkirts(skirts, compiled.placement.ToMap({place[0], place[1], place[2]}), reach, tooMany)) break;
        Emit(tree, brushes, skirts, compiled);
    }
    compiled.skirts = skirts.size();
    compiled.skirtsLeftOut = all - skirts.size();
}

void CheckContacts(const MapFile& map, const Contacts& contacts, const Placement& placement) {
    if (contacts.count <= LEVEL_CONTACTS_MAX) return;
    const Vec3 place = placement.ToMap({contacts.place[0], contacts.place[1], contacts.place[2]});
    Refuse(map.name, 0,
           fmt::format("a player at {} touches {} polygons at once, at most {}", PlaceText(place), contacts.count,
                       LEVEL_CONTACTS_MAX),
           "simplify the brushes around that place");
}

void AddLight(const LightSources& sources, const BakeOptions& options, CompiledLevel& compiled) {
    const auto begin = std::chrono::steady_clock::now();
    LitWorld lit = LightWorld(compiled.world, sources, options);
    compiled.light = std::move(lit.file);
    compiled.slots = std::move(lit.slots);
    for (const Count& count : CountSlots(compiled.slots))
        compiled.counts.push_back(count);
    compiled.rays = lit.rays;
    compiled.lightSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// Gives shining surfaces corner light: they share points with the surfaces beside them, which must not get their
// brightness.
void LightShiningPerCorner(Brushes& brushes) {
    for (FaceTexture& texture : brushes.textures)
        texture.cornerLight = texture.cornerLight || texture.material->light > 0;
}

std::string ReportOf(const CompiledLevel& level) {
    std::string report;
    for (const Count& count : level.counts) {
        report += fmt::format("{:>9} of {:>8}  {}\n", count.value, count.limit, count.name);
    }
    report += fmt::format("{:>9} of {:>8}  polygons touched at one place\n", level.contacts.count, LEVEL_CONTACTS_MAX);
    report += fmt::format("{:>9} skirts behind walls", level.skirts);
    if (level.skirtsLeftOut > 0)
        report += fmt::format("; {} more would be too many polygons at one place", level.skirtsLeftOut);
    report += "\n";
    report += fmt::format("{:>9.2f} seconds of light: {} rays, {:.1f} million a second\n", level.lightSeconds,
                          level.rays, static_cast<double>(level.rays) / (level.lightSeconds * 1e6));
    return report;
}

// Says where the path is.
std::string WritePath(const std::filesystem::path& path, const std::vector<Vec3>& points) {
    std::string text;
    for (const Vec3& p : points)
        text += fmt::format("{:.1f} {:.1f} {:.1f}\n", p.x, p.y, p.z);
    try {
        WriteWholeFile(path, {text.begin(), text.end()});
        return fmt::format("the editor shows it from {}", path.string());
    } catch (const ContentError& error) {
        return error.what();
    }
}

}  // namespace

CompiledLevel CompileMap(const MapFile& map, const MaterialList& list, int level, const BakeOptions& bake) {
    CheckEntities(map);
    const LevelSettings settings = ReadSettings(map, list.dark);
    const std::vector<PointLight> lights = ReadLights(map);
    const PlayerStart start = FindPlayerStart(map);
    Brushes brushes = BuildBrushes(map, list.materials);
    CheckSize(brushes, settings.scale);
    LightShiningPerCorner(brushes);
    CheckStart(brushes, start);
    CheckLights(brushes, lights);
    CompiledLevel compiled;
    compiled.placement = PlaceMap(brushes, start, level, settings.scale);
    compiled.places = PlacesOf(map, brushes, compiled.placement);

    const Material* clip = settings.skirts ? ClipMaterial(list) : nullptr;
    ReachableSurface surface = SurfaceOf(map, brushes, start, clip, settings.scale);
    Tree tree = BuildDrawingTree(std::move(surface.faces), brushes);
    const LightSources sources{map.name, settings, lights, brushes, list.materials, compiled.placement};
    if (settings.subdivide > 0 && bake.quality != LightQuality::None) {
        const LightGrid grid{settings.subdivide / settings.scale, settings.scale};
        const WorldFile whole = CutOnWholeGrid(map, tree, brushes, compiled.placement, grid);
        const std::vector<int8_t> light = BrightestLight(whole, sources, bake.threads);
        TessellateWhereLightBends(tree, brushes.planes, grid, {whole, light, compiled.placement},
                                  settings.lightTolerance);
    }
    EmitWithSkirts(tree, brushes, std::move(surface.skirts), compiled);
    CheckContacts(map, compiled.contacts, compiled.placement);
    AddLight(sources, bake, compiled);
    return compiled;
}

std::string CompileToFiles(const CompileFiles& files) {
    const std::string name = files.level > 0 ? LevelRowOf(files.level).world : files.map.stem().string();
    const std::filesystem::path pathFile = std::filesystem::path(files.map).replace_extension(".pts");
    try {
        const PlacedMap placed = ReadPlacedMap(files.map, files.prefabs);
        const CompiledLevel level = CompileMap(placed.map, ReadMaterialList(files.materials), files.level, files.bake);
        const std::filesystem::path world = files.output / (name + ".bgm");
        const std::string places = PlacesText(level.places);
        std::vector<OutputFile> outputs{{world, EncodeWorld(level.world)},
                                        {files.output / "lights.lmp", EncodeLightMap(level.light)},
                                        {files.output / "lights.alt", EncodeLightSlots(level.slots)},
                                        {files.output / "places.txt", {places.begin(), places.end()}}};
        if (!files.depfile.empty()) {
            const std::string line = DepfileLine(world.string(), placed.files);
            outputs.push_back({files.depfile, {line.begin(), line.end()}});
        }
        WriteWholeFiles(outputs);
        std::error_code ignored;
        std::filesystem::remove(pathFile, ignored);
        return ReportOf(level);
    } catch (const LeakError& leak) {
        throw LeakError(fmt::format("{}; {}", leak.what(), WritePath(pathFile, leak.path)), leak.path);
    }
}
