#include "skyc/compile.h"

#include "formats/error.h"
#include "formats/files.h"
#include "skyc/layers.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace {

constexpr double BENT = 0.5;  // units that a corner may lie off its polygon's plane
constexpr double AREA_MIN = 0.01;
const char* const TURN_ROUND = "wind its corners counter-clockwise as seen from the middle of the sky";

WorldVector Narrowed(const Vector& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

class SkyCompiler {
public:
    SkyCompiler(const std::vector<Material>& materials, const std::string& file) : materials_(materials), file_(file) {}

    void Add(const SkyPolygon& polygon) {
        const Material& material = MaterialOf(polygon);
        StaticObjectPolygon result;
        result.texture = static_cast<uint8_t>(material.slot);
        result.plane = PlaneOf(polygon);
        for (const SkyCorner& corner : polygon.corners) {
            CheckDistance(corner.place, polygon);
            result.corners.push_back({PointAt(corner.place), Texel(corner.u, material.width, polygon.fitted),
                                      Texel(corner.v, material.height, polygon.fitted)});
        }
        object_.polygons.push_back(std::move(result));
    }

    StaticObjectFile Take() { return std::move(object_); }

private:
    const Material& MaterialOf(const SkyPolygon& polygon) const {
        const std::string& name = polygon.material;
        const auto found = std::find_if(materials_.begin(), materials_.end(),
                                        [&](const Material& material) { return material.name == name; });
        if (found == materials_.end()) {
            Refuse(file_, polygon.line, fmt::format("the level has no material '{}'", Shown(name)),
                   "add it to its textures.toml");
        }
        if (found->flags & (MATERIAL_CLIP | MATERIAL_SKY) || found->slot > UINT8_MAX) {
            Refuse(file_, polygon.line, fmt::format("'{}' is never drawn", Shown(name)), "name another material");
        }
        return *found;
    }

    [[noreturn]] void RefusePolygon(const SkyPolygon& polygon, const std::string& problem,
                                    const std::string& remedy) const {
        const Vector& p = polygon.corners[0].place;
        Refuse(file_, polygon.line,
               fmt::format("a polygon of '{}' at ({:.0f} {:.0f} {:.0f}) {}", Shown(polygon.material), p.x, p.y, p.z,
                           problem),
               remedy);
    }

    void CheckDistance(const Vector& place, const SkyPolygon& polygon) const {
        const double distance = Length(place);
        if (distance >= static_cast<double>(SKY_NEAREST) && distance <= static_cast<double>(SKY_FARTHEST)) return;
        RefusePolygon(polygon, fmt::format("has a corner {:.0f} from the eye", distance),
                      fmt::format("keep within {} to {}", SKY_NEAREST, SKY_FARTHEST));
    }

    // The normal points away from the eye.
    WorldPlane PlaneOf(const SkyPolygon& polygon) const {
        const auto place = [&](size_t i) { return polygon.corners[i % polygon.corners.size()].place; };
        Vector normal;
        for (size_t i = 1; i + 1 < polygon.corners.size(); ++i)
            normal = normal + Cross(place(i) - place(0), place(i + 1) - place(0));
        if (Length(normal) < AREA_MIN) RefusePolygon(polygon, "has no area", "remove it");
        normal = normal * (1 / Length(normal));
        for (size_t i = 0; i < polygon.corners.size(); ++i) {
            if (std::abs(Dot(normal, place(i) - place(0))) > BENT) RefusePolygon(polygon, "is bent", "use triangles");
            if (Dot(Cross(place(i + 1) - place(i), place(i + 2) - place(i)), normal) < 0) {
                RefusePolygon(polygon, "is not convex", "cut it into triangles");
            }
        }
        const Vector origin{0, SKY_EYE_HEIGHT, 0};
        const double offset = -Dot(normal, place(0) + origin);
        if (-Dot(normal, place(0)) >= 0) RefusePolygon(polygon, "is turned away from the eye", TURN_ROUND);
        return {Narrowed(normal), static_cast<float>(offset)};
    }

    uint16_t PointAt(const Vector& place) {
        const WorldVector point = Narrowed(place + Vector{0, SKY_EYE_HEIGHT, 0});
        const auto [found, isNew] = pointOf_.try_emplace(point, object_.points.size());
        if (isNew) object_.points.push_back(point);
        return static_cast<uint16_t>(found->second);
    }

    // In 1/256 texel; a fitted picture keeps half a texel inside its border.
    static float Texel(double part, int texels, bool fitted) {
        const double size = texels;
        return static_cast<float>(256 * (fitted ? 0.5 + part * (size - 1) : part * size));
    }

    const std::vector<Material>& materials_;
    const std::string& file_;
    StaticObjectFile object_;
    std::map<WorldVector, size_t> pointOf_;
};

}  // namespace

SkyShape ReadSky(const std::filesystem::path& description) {
    const TomlTable settings = TomlTable::Load(description);
    const float ofAll = settings.Number("radius", SKY_RADIUS, SKY_NEAREST, SKY_FARTHEST);
    SkyShape shape;
    const std::vector<TomlTable> layers = settings.Tables("layer");
    if (layers.empty()) settings.RefuseTable("the sky has no layers", "add a [[layer]] with a kind");
    for (const TomlTable& layer : layers) {
        const size_t before = shape.size();
        const auto radius = [&] { return layer.Number("radius", ofAll, SKY_NEAREST, SKY_FARTHEST); };
        layer.NeedText("kind");
        switch (layer.Choice("kind", "dome", {"dome", "sheet", "disc", "stars", "model"})) {
        case 0: AddDome(layer, radius(), shape); break;
        case 1: AddSheet(layer, shape); break;
        case 2: AddDisc(layer, radius(), shape); break;
        case 3: AddStars(layer, radius(), shape); break;
        default: AddModel(layer, shape); break;
        }
        layer.Finish();
        CheckCount(shape.size(), layer);
        for (size_t i = before; i < shape.size(); ++i)
            shape[i].line = layer.Line();
    }
    settings.Finish();
    return shape;
}

StaticObjectFile CompileSky(const SkyShape& shape, const std::vector<Material>& materials, const std::string& file) {
    SkyCompiler compiler(materials, file);
    for (const SkyPolygon& polygon : shape)
        compiler.Add(polygon);
    return compiler.Take();
}

std::string CompileSkyToFile(const std::filesystem::path& description, const std::filesystem::path& materials,
                             const std::filesystem::path& output) {
    const std::string file = description.string();
    const StaticObjectFile sky = CompileSky(ReadSky(description), ReadMaterialList(materials).materials, file);
    WriteWholeFile(output, EncodeStaticObject(sky, file));
    return fmt::format("{} polygons of {}, {} points of {}\n", sky.polygons.size(), STATIC_OBJECT_POLYGONS_MAX,
                       sky.points.size(), STATIC_OBJECT_POINTS_MAX);
}
