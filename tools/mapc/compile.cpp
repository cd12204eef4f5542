#include "mapc/compile.h"

#include "formats/depfile.h"
#include "formats/files.h"
#include "mapc/instances.h"
#include "mapc/light.h"
#include "mapc/light_cuts.h"
#include "mapc/light_slots.h"
#include "mapc/map_places.h"
#include "mapc/merge.h"
#include "mapc/sealing.h"
#include "mapc/skirts.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <chrono>

namespace {

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

// The view reaches from one end of the level to the other.
void SetFarDistance(const MapFile& map, const WorldFile& world, LevelSettings& settings) {
    const int diagonal = static_cast<int>(std::ceil(DiagonalOf(world)));
    const MapKey* key = map.entities[0].Find("far_distance");
    if (key && settings.farDistance < diagonal) {
        Refuse(key->line,
               fmt::format("far_distance is {}, less than the level's {} from corner to corner", settings.farDistance,
                           diagonal),
               "raise it, or leave it out");
    }
    settings.farDistance = std::max(settings.farDistance, diagonal);
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
    for (const std::string& note : level.notes)
        report += fmt::format("note: {}\n", note);
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
    LevelSettings settings = ReadSettings(map, list.dark);
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
    const Tree tree = BuildDrawingTree(std::move(surface.faces), brushes);
    const LightSources sources{map.name, settings, lights, brushes, list.materials, compiled.placement};
    CutWorld cut = CutForLight(tree, std::move(surface.skirts), sources, bake);
    compiled.world = std::move(cut.world);
    compiled.counts = std::move(cut.counts);
    compiled.contacts = cut.contacts;
    compiled.skirts = cut.skirts;
    compiled.skirtsLeftOut = cut.skirtsLeftOut;
    compiled.notes = std::move(cut.notes);
    SetFarDistance(map, compiled.world, settings);
    AddLight(sources, bake, compiled);
    return compiled;
}

std::string CompileToFiles(const CompileFiles& files) {
    const std::string name = files.level > 0 ? LevelRowOf(files.level).world : files.map.stem().string();
    const std::filesystem::path pathFile = std::filesystem::path(files.map).replace_extension(".pts");
    try {
        const PlacedMap placed = ReadPlacedMap(files.map, files.prefabs);
        const MaterialList list = ReadMaterialList(files.materials);
        const CompiledLevel level = CompileMap(placed.map, list, files.level, files.bake);
        if (files.check) files.check(level, files, list);
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
