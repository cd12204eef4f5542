#include "mapc/terrain.h"

#include "formats/error.h"
#include "formats/height_image.h"
#include "mapc/terrain_mesh.h"
#include "mapc/winding.h"
#include "transforms/angles.h"

#include <fmt/format.h>

namespace {

constexpr double CELL_MIN = 32;  // map units
constexpr double STEEP_FROM = 35;

// Corners counter-clockwise as seen from above.
using Triangle = std::array<Vec3, 3>;

class TerrainBuilder {
public:
    TerrainBuilder(const MapFile& map, const MapEntity& entity) : map_(map), entity_(entity) {
        if (entity.brushes.size() != 1) {
            Refuse(entity.line, fmt::format("a func_terrain has {} brushes", entity.brushes.size()),
                   "give it one, a box: where the terrain lies and how high it rises");
        }
        ReadBox();
        ReadImage();
        ReadBands();
        tolerance_ = NumberKeyIn(entity, "tolerance", 0, 0, MAP_EXTENT);
    }

    Terrain Build() {
        const int step = tolerance_ > 0 ? GRID_BLOCK : 1;
        for (int x = 0; x < image_.width; x += step)
            out_.columns.push_back(Corner(x, 0).x);
        for (int y = 0; y < image_.height; y += step)
            out_.rows.push_back(Corner(0, y).y);
        const auto heightAt = [&](int x, int y) { return Corner(x, y).z - box_.min.z; };
        for (const auto& [a, b, c] : SimplifyGrid(image_.width, image_.height, heightAt, tolerance_))
            AddPrism({Corner(a), Corner(b), Corner(c)});
        return std::move(out_);
    }

private:
    // Finds the box's face toward each side: its texture is the terrain's on that side.
    void ReadBox() {
        const MapBrush& brush = entity_.brushes[0];
        for (const MapFace& face : brush.faces) {
            const Vec3 out = Cross(face.points[2] - face.points[0], face.points[1] - face.points[0]);
            for (int axis = 0; axis < 3; ++axis) {
                if (std::abs(out[axis]) < Length(out) * (1 - 1e-9)) continue;
                const bool above = out[axis] > 0;
                sides_[static_cast<size_t>(axis * 2 + above)] = &face;
                (above ? box_.max : box_.min)[axis] = face.points[0][axis];
            }
        }
        const bool isBox = brush.faces.size() == 6 && std::count(sides_.begin(), sides_.end(), nullptr) == 0;
        if (!isBox) Refuse(brush.line, "the brush of a func_terrain is no box", "make it an upright box");
    }

    void ReadImage() {
        const MapKey* key = entity_.Find("image");
        if (!key) Refuse(entity_.line, "a func_terrain has no image", "name a height image beside the map");
        image_ = ReadHeightImage(std::filesystem::path(map_.name).parent_path() / key->value);
        const Vec3 size = box_.max - box_.min;
        const double cell = std::min(size.x / (image_.width - 1), size.y / (image_.height - 1));
        if (cell >= CELL_MIN) return;
        Refuse(key->line, fmt::format("{} gives cells of {:.0f} units", Shown(key->value), cell),
               fmt::format("make it smaller, or the box larger: {:.0f} are the least", CELL_MIN));
    }

    void ReadBands() {
        const auto texture = [&](const char* name) {
            const MapKey* key = entity_.Find(name);
            return key ? key->value : std::string();
        };
        steep_ = texture("steep");
        high_ = texture("high");
        steepFrom_ = SineCosineOfDegrees(NumberKey(entity_, "steep_from", STEEP_FROM)).cosine;
        highFrom_ = box_.min.z + NumberKey(entity_, "high_from", (box_.max.z - box_.min.z) / 2);
    }

    // A corner of the grid, from the south west, on whole units, so that neighbouring cells meet exactly.
    Vec3 Corner(int x, int y) const {
        const auto between = [](double from, double to, double part) {
            return std::floor(from + (to - from) * part + 0.5);
        };
        return {between(box_.min.x, box_.max.x, static_cast<double>(x) / (image_.width - 1)),
                between(box_.min.y, box_.max.y, static_cast<double>(y) / (image_.height - 1)),
                between(box_.min.z, box_.max.z, image_.At(x, image_.height - 1 - y) / 65535.0)};
    }

    Vec3 Corner(const GridPoint& p) const { return Corner(p.x, p.y); }
    bool IsRaised(const Vec3& p) const { return p.z > box_.min.z; }
    Vec3 Foot(const Vec3& p) const { return {p.x, p.y, box_.min.z}; }

    void AddPrism(const Triangle& top) {
        if (std::none_of(top.begin(), top.end(), [&](const Vec3& p) { return IsRaised(p); })) return;
        MapBrush prism;
        prism.line = entity_.brushes[0].line;
        const auto add = [&](const MapFace& like, const Vec3& a, const Vec3& b, const Vec3& c) -> MapFace& {
            prism.faces.push_back(like);
            prism.faces.back().points = {a, c, b};  // maps want them clockwise
            return prism.faces.back();
        };
        MapFace& ground = add(*sides_[5], top[0], top[1], top[2]);
        ground.texture = TextureOf(top);
        ground.smooth = true;
        add(*sides_[4], Foot(top[0]), Foot(top[2]), Foot(top[1]));
        for (size_t i = 0; i < 3; ++i) {
            const Vec3& a = top[i];
            const Vec3& b = top[(i + 1) % 3];
            if (!IsRaised(a) && !IsRaised(b)) continue;
            const Vec3 out = Cross(b - a, {0, 0, 1});
            const int axis = std::abs(out.x) > std::abs(out.y) ? 0 : 1;
            add(*sides_[static_cast<size_t>(axis * 2 + (out[axis] > 0))], Foot(a), Foot(b), a.z > b.z ? a : b);
        }
        out_.prisms.push_back(std::move(prism));
    }

    std::string TextureOf(const Triangle& top) const {
        const Vec3 normal = Cross(top[1] - top[0], top[2] - top[0]);
        if (!steep_.empty() && normal.z < steepFrom_ * Length(normal)) return steep_;
        if (!high_.empty() && (top[0].z + top[1].z + top[2].z) / 3 >= highFrom_) return high_;
        return sides_[5]->texture;
    }

    const MapFile& map_;
    const MapEntity& entity_;
    Box box_;
    std::array<const MapFace*, 6> sides_{};  // west, east, south, north, bottom, top
    HeightImage image_;
    std::string steep_, high_;
    double steepFrom_ = 0;  // cosine
    double highFrom_ = 0;
    double tolerance_ = 0;  // map units
    Terrain out_;
};

}  // namespace

Terrain BuildTerrain(const MapFile& map, const MapEntity& entity) {
    return TerrainBuilder(map, entity).Build();
}
