#include "mapc/compile.h"

#include "formats/depfile.h"
#include "formats/files.h"
#include "mapc/ceilings.h"
#include "mapc/floors_behind.h"
#include "mapc/guard_points.h"
#include "mapc/hidden_leaves.h"
#include "mapc/hollows.h"
#include "mapc/instances.h"
#include "mapc/ledge_walls.h"
#include "mapc/lids.h"
#include "mapc/light.h"
#include "mapc/light_cuts.h"
#include "mapc/light_slots.h"
#include "mapc/map_places.h"
#include "mapc/merge.h"
#include "mapc/net.h"
#include "mapc/sealing.h"
#include "mapc/skirts.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <chrono>

namespace {

// A line for each hole, but for those beyond the first 20.
std::vector<std::string> LeakTexts(const MapFile& map, const LeakPaths& paths) {
    constexpr size_t SHOWN_MAX = 20;
    std::vector<std::string> texts;
    for (size_t i = 0; i < std::min(paths.size(), SHOWN_MAX); ++i) {
        texts.push_back(fmt::format("{}: the level leaks: the space around info_player_start is open to the outside: "
                                    "close the hole along this path:",
                                    map.name));
        for (const Vec3& p : paths[i])
            texts.back().append(" ").append(PlaceText(p));
    }
    if (paths.size() > SHOWN_MAX)
        texts.push_back(fmt::format("{}: and {} more holes", map.name, paths.size() - SHOWN_MAX));
    return texts;
}

void CheckStart(const Brushes& brushes, const PlayerStart& start) {
    for (const Brush& brush : brushes.list) {
        if (brush.kind == BrushKind::Cutout || !brush.Holds(start.origin, brushes.planes, 0)) continue;
        Refuse(start.line, fmt::format("info_player_start is inside the brush of {}", brush.line.Text()),
               "move it into the open");
    }
    const std::optional<Floor> floor = TopmostBelow(brushes, start.origin);
    if (!floor) Refuse(start.line, "there is no floor below info_player_start", "put it above a floor");
    if (floor->isSky) Refuse(start.line, "info_player_start is above the sky", "put it below, above a floor");
}

// A part of the map that the player cannot get to: brushes that touch each other.
struct UnreachedPart {
    Box box;
    size_t brushes = 0;
    SourceLine line;  // line of its first brush
};

// texturesSeen: for each face texture whether any of it is seen from where the player can be.
std::vector<UnreachedPart> UnreachedParts(const Brushes& brushes, const std::vector<char>& outside,
                                          const std::vector<char>& seen) {
    std::vector<UnreachedPart> parts;
    for (const Brush& brush : brushes.list) {
        const auto anyIn = [&](const std::vector<char>& marks) {
            return std::any_of(brush.sides.begin(), brush.sides.end(), [&](const BrushSide& side) {
                return side.texture >= 0 && marks[static_cast<size_t>(side.texture)];
            });
        };
        if (!anyIn(outside) || anyIn(seen)) continue;
        UnreachedPart part{brush.box, 1, brush.line};
        for (size_t i = 0; i < parts.size();) {
            if (!parts[i].box.Touches(part.box, SPLIT_EPSILON)) {
                ++i;
                continue;
            }
            part.box.Add(parts[i].box);
            part.brushes += parts[i].brushes;
            part.line = parts[i].line;
            parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(i));
            i = 0;
        }
        parts.push_back(part);
    }
    return parts;
}

std::vector<std::string> NotesOf(const std::vector<UnreachedPart>& parts) {
    constexpr size_t SHOWN_MAX = 20;
    std::vector<std::string> notes;
    for (size_t i = 0; i < std::min(parts.size(), SHOWN_MAX); ++i) {
        notes.push_back(fmt::format("{}: {} brush{} around {} cannot be reached or seen, and left out",
                                    parts[i].line.Text(), parts[i].brushes, parts[i].brushes == 1 ? "" : "es",
                                    PlaceText(parts[i].box.Centre())));
    }
    if (parts.size() > SHOWN_MAX) notes.push_back(fmt::format("and {} more such parts", parts.size() - SHOWN_MAX));
    return notes;
}

// Null when the list has none: then nothing invisible can be made.
const Material* ClipMaterial(const MaterialList& list) {
    const auto found = std::find_if(list.materials.begin(), list.materials.end(),
                                    [](const Material& material) { return material.flags & MATERIAL_CLIP; });
    return found == list.materials.end() ? nullptr : &*found;
}

struct ReachableSurface {
    std::vector<Face> faces;    // that the player can get to see or touch
    std::vector<Face> hidden;   // behind and below them
    std::vector<Face> skirts;   // hidden too, at points of the map; never left out
    std::optional<double> net;  // height of the ground below everything
    std::vector<std::string> notes;
    LeakPaths leaks;
};

// What the player can get to of a map; of one that leaks, everything.
struct SurfaceRequest {
    const PlayerStart& start;
    const LevelSettings& settings;
    const Material* clip;  // to paint hidden faces with; null: there are none
    int ticks;             // length of a frame
    std::vector<Vec3> skirtPoints;
    bool takeLeaks;
};

void AddHidden(const SurfaceRequest& request, const std::vector<Face>& faces, Brushes& brushes,
               const SealedSpace& space, ReachableSurface& surface) {
    const double scale = request.settings.scale;
    const Guards& guards = request.settings.guards;
    const auto add = [&](const std::vector<Face>& hidden) {
        surface.hidden.insert(surface.hidden.end(), hidden.begin(), hidden.end());
    };
    if (request.settings.skirts) add(SkirtsBehind(faces, brushes, space, *request.clip, scale, guards.floors));
    surface.skirts = SkirtsAtPoints(request.skirtPoints, faces, brushes, space, *request.clip, scale);
    if (guards.floors) {
        add(FloorsBehind(faces, brushes, space, *request.clip, scale));
        add(FloorsBelowThings(faces, brushes, *request.clip, scale));
    }
    if (guards.ceilings) add(SlabsBelowCeilings(faces, brushes, *request.clip, scale, request.ticks));
    if (!guards.net) return;
    const std::vector<Face> net = NetBelow(faces, brushes, *request.clip, scale);
    if (!net.empty()) surface.net = net[0].winding[0].z;
    add(net);
}

// ContentError with the faults, and with the leak where that is none to be taken.
ReachableSurface SurfaceOf(const MapFile& map, Brushes& brushes, const SurfaceRequest& request, FaultList& faults) {
    const bool stayWhole = request.settings.facesBehind == FacesBehind::AllAndWhole;
    Surface surface = CutBrushes(brushes, stayWhole ? WholeFaces::BelowWhatStandsOnThem : WholeFaces::None);
    const SealedSpace space(std::move(surface.sealing), brushes, request.start.origin, request.settings.scale);
    ReachableSurface reachable;
    reachable.leaks = space.LeakPaths();
    for (const std::string& text : LeakTexts(map, reachable.leaks)) {
        if (request.takeLeaks)
            reachable.notes.push_back(text);
        else
            faults.Add(FaultList::AT_THE_END, text);
    }
    if (!reachable.leaks.empty() && !request.takeLeaks) throw LeakError(faults.Text(), reachable.leaks);
    faults.Throw();
    std::vector<char> outside(brushes.textures.size());
    std::vector<char> seen(brushes.textures.size());
    for (const Face& face : surface.visible)
        outside[static_cast<size_t>(face.texture)] = 1;
    std::erase_if(surface.visible, [&](const Face& face) { return !space.IsSeen(face); });
    for (const Face& face : surface.visible)
        seen[static_cast<size_t>(face.texture)] = 1;
    for (std::string& note : NotesOf(UnreachedParts(brushes, outside, seen)))
        reachable.notes.push_back(std::move(note));
    if (surface.visible.empty())
        Refuse(request.start.line, "nothing can be seen from info_player_start", "put it into the level");
    MergeFaces(surface.visible, brushes);
    if (request.clip) AddHidden(request, surface.visible, brushes, space, reachable);
    CheckCounts(map.name, {PolygonCount(surface.visible.size() + reachable.hidden.size() + reachable.skirts.size())});
    reachable.faces = std::move(surface.visible);
    return reachable;
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
    report += fmt::format("{:>9} hidden faces", level.hidden);
    if (level.hiddenLeftOut > 0)
        report += fmt::format("; {} more would be too many for the level or for a place in it", level.hiddenLeftOut);
    report += "\n";
    report += fmt::format("{:>9.2f} seconds of light: {} rays, {:.1f} million a second\n", level.lightSeconds,
                          level.rays, static_cast<double>(level.rays) / (level.lightSeconds * 1e6));
    for (const std::string& note : level.notes)
        report += fmt::format("note: {}\n", note);
    return report;
}

// Says where the paths are.
std::string WritePaths(const std::filesystem::path& path, const LeakPaths& paths) {
    std::string text;
    const auto add = [&](const Vec3& p) { text += fmt::format("{:.1f} {:.1f} {:.1f}\n", p.x, p.y, p.z); };
    for (size_t i = 0; i < paths.size(); ++i) {
        std::for_each(paths[i].begin(), paths[i].end(), add);
        if (i + 1 < paths.size()) std::for_each(paths[i].rbegin() + 1, paths[i].rend(), add);
    }
    try {
        WriteWholeFile(path, {text.begin(), text.end()});
        return fmt::format("the editor shows {} from {}", paths.size() == 1 ? "it" : "all paths", path.string());
    } catch (const ContentError& error) {
        return error.what();
    }
}

}  // namespace

CompiledLevel CompileMap(const MapFile& map, const MaterialList& list, int level, const BakeOptions& bake,
                         bool takeLeaks) {
    FaultList faults;
    CheckEntities(map, &faults);
    LevelSettings settings;
    Collect(&faults, 0, [&] { settings = ReadSettings(map, list.dark); });
    const std::vector<PointLight> lights = ReadLights(map, &faults);
    Brushes brushes = BuildBrushes(map, list.materials, &faults);
    CheckLights(brushes, lights, faults);
    std::optional<PlayerStart> start;
    bool startIsGood = false;  // else every place would seem to leak
    Collect(&faults, FaultList::AT_THE_END, [&] {
        start = FindPlayerStart(map);
        CheckSize(brushes, settings.scale);
        CheckStart(brushes, *start);
        startIsGood = true;
    });
    if (!startIsGood) faults.Throw();
    LightShiningPerCorner(brushes);
    CompiledLevel compiled;
    Collect(&faults, FaultList::AT_THE_END, [&] {
        compiled.placement = PlaceMap(brushes, *start, level, settings.scale);
        compiled.places = PlacesOf(map, brushes, compiled.placement);
    });

    const Material* clip = ClipMaterial(list);
    const int ticks = level > 0 ? LevelRowOf(level).ticks : 1;
    ReachableSurface surface =
        SurfaceOf(map, brushes, {*start, settings, clip, ticks, SkirtPoints(map, clip), takeLeaks}, faults);
    Tree tree = BuildDrawingTree(std::move(surface.faces), brushes, {settings.scale, settings.facesBehind});
    // These stay in the leaves of their ledges, and lie in the planes of walls that are seen.
    std::vector<LeafFace> walls;
    if (clip && settings.guards.walls) walls = WallsBesideLedges(tree, brushes, *clip, settings.scale);
    std::vector<LeafFace> hidden = walls;
    const auto addHidden = [&](std::vector<Face> faces) {
        for (Face& face : faces) {
            const size_t leaf = LeafAt(tree, brushes.planes, WindingCentre(face.winding));
            hidden.push_back({std::move(face), leaf});
        }
    };
    addHidden(std::move(surface.hidden));
    if (clip && settings.guards.hollows) addHidden(FloorsInHollows(tree, hidden, brushes, *clip, settings.scale));
    hidden.erase(hidden.begin(), hidden.begin() + static_cast<std::ptrdiff_t>(walls.size()));
    if (clip && settings.guards.lids) addHidden(LidsOverLedges(tree, hidden, brushes, *clip, {settings.scale, ticks}));
    const auto addAlways = [&](std::vector<Face> faces) {
        for (Face& face : faces) {
            const size_t leaf = LeafAt(tree, brushes.planes, WindingCentre(face.winding));
            tree.leaves[leaf].push_back(std::move(face));
        }
    };
    addAlways(FacesAtGuardPoints(map, tree, hidden, brushes, clip, {settings.scale, ticks}));
    addAlways(std::move(surface.skirts));
    SetHiddenApart(tree, hidden, brushes, settings.scale);
    hidden.insert(hidden.begin(), walls.begin(), walls.end());
    const LightSources sources{map.name, settings, lights, brushes, list.materials, compiled.placement};
    CutWorld cut = CutForLight(tree, std::move(hidden), sources, bake);
    compiled.world = std::move(cut.world);
    compiled.counts = std::move(cut.counts);
    compiled.contacts = cut.contacts;
    compiled.leaks = std::move(surface.leaks);
    compiled.hidden = cut.hidden;
    compiled.hiddenLeftOut = cut.hiddenLeftOut;
    if (surface.net && cut.hidden > 0) compiled.places.net = compiled.placement.ToEngine({0, 0, *surface.net}).y;
    compiled.notes = std::move(surface.notes);
    compiled.notes.insert(compiled.notes.end(), cut.notes.begin(), cut.notes.end());
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
        CompiledLevel level = CompileMap(placed.map, list, files.level, files.bake, files.takeLeaks);
        if (files.check && level.leaks.empty()) {
            const std::vector<std::string> notes = files.check(level, files, list);
            level.notes.insert(level.notes.end(), notes.begin(), notes.end());
        }
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
        if (level.leaks.empty())
            std::filesystem::remove(pathFile, ignored);
        else
            level.notes.push_back(WritePaths(pathFile, level.leaks));
        return ReportOf(level);
    } catch (const LeakError& leak) {
        throw LeakError(fmt::format("{}; {}", leak.what(), WritePaths(pathFile, leak.paths)), leak.paths);
    }
}
