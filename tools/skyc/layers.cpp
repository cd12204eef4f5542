#include "skyc/layers.h"

#include "formats/static_object_file.h"
#include "transforms/angles.h"

#include <fmt/format.h>

#include <cstdint>

namespace {

constexpr int SEGMENTS_MAX = 64;

// A ring of a surface of revolution: its distance from the axis, and its height.
struct Ring {
    double reach = 0, height = 0;
    bool IsPoint() const { return reach < 1e-6; }
};

// How pictures lie on a strip between two rings.
struct Mapping {
    std::vector<std::string> materials;  // side by side around the eye, again and again
    int around = 1;                      // pictures side by side
    double top = 0, bottom = 1;          // part of the picture's height that the strip shows
    double flat = 0;                     // not 0: laid on from above, a picture every so many units
};

struct Turning {
    int segments = 16;
    double bearing = 0;  // where the first segment begins
    double BearingOf(int segment) const { return bearing + 360.0 * segment / segments; }
};

SkyCorner CornerAt(const Ring& ring, double bearing) {
    const SineCosine turn = SineCosineOfDegrees(bearing);
    return {{ring.reach * turn.sine, ring.height, ring.reach * turn.cosine}, 0, 0};
}

void LayFlat(SkyPolygon& polygon, double size) {
    for (SkyCorner& corner : polygon.corners) {
        corner.u = corner.place.x / size;
        corner.v = -corner.place.z / size;
    }
}

void AddStrip(const Ring& lower, const Ring& upper, const Turning& turning, const Mapping& mapping, SkyShape& shape) {
    const int perPicture = turning.segments / mapping.around;
    for (int i = 0; i < turning.segments; ++i) {
        const auto picture = static_cast<size_t>(i / perPicture) % mapping.materials.size();
        SkyPolygon polygon{mapping.materials[picture], {}, mapping.flat == 0};
        const auto add = [&](const Ring& ring, int side, double v) {
            SkyCorner corner = CornerAt(ring, turning.BearingOf((i + side) % turning.segments));
            corner.u = (i % perPicture + (ring.IsPoint() ? 0.5 : side)) / perPicture;
            corner.v = v;
            polygon.corners.push_back(corner);
        };
        add(lower, 0, mapping.bottom);
        if (!lower.IsPoint()) add(lower, 1, mapping.bottom);
        add(upper, 1, mapping.top);
        if (!upper.IsPoint()) add(upper, 0, mapping.top);
        if (mapping.flat > 0) LayFlat(polygon, mapping.flat);
        shape.push_back(std::move(polygon));
    }
}

Turning ReadTurning(const TomlTable& layer) {
    Turning turning;
    turning.segments = layer.Int("segments", turning.segments, 3, SEGMENTS_MAX);
    turning.bearing = static_cast<double>(layer.Number("bearing", 0, -360, 360));
    return turning;
}

std::vector<std::string> ReadMaterials(const TomlTable& layer) {
    std::vector<std::string> materials = layer.Texts("material");
    if (materials.empty()) layer.RefuseTable("'material' is missing", "name one or more of the level's materials");
    return materials;
}

Mapping ReadMapping(const TomlTable& band, const Turning& turning) {
    Mapping mapping;
    mapping.materials = ReadMaterials(band);
    mapping.flat = static_cast<double>(band.Number("flat", 0, 0, SKY_FARTHEST));
    mapping.around = band.Int("around", 1, 1, turning.segments);
    if (turning.segments % mapping.around != 0) {
        band.RefuseKey("around", fmt::format("does not divide the {} segments", turning.segments),
                       "each picture takes as many whole segments");
    }
    return mapping;
}

Ring RingAt(double radius, double elevation) {
    const SineCosine angle = SineCosineOfDegrees(elevation);
    return {radius * angle.cosine, radius * angle.sine};
}

void AddBand(const TomlTable& band, double radius, const Turning& turning, SkyShape& shape) {
    const Mapping whole = ReadMapping(band, turning);
    const auto from = static_cast<double>(band.Number("from", 0, -90, 90));
    const auto to = static_cast<double>(band.Number("to", 90, -90, 90));
    if (to <= from) band.RefuseKey("to", "is not above 'from'", "give the band some height");
    const int rows = band.Int("rows", 1, 1, 16);
    for (int row = 0; row < rows; ++row) {
        Mapping mapping = whole;
        mapping.bottom = 1 - static_cast<double>(row) / rows;
        mapping.top = 1 - static_cast<double>(row + 1) / rows;
        const auto at = [&](int step) { return RingAt(radius, from + (to - from) * step / rows); };
        AddStrip(at(row), at(row + 1), turning, mapping, shape);
    }
    band.Finish();
}

// A square that faces the eye.
SkyPolygon FacingSquare(const std::string& material, const Vector& direction, double distance, double side) {
    Vector right = Cross({0, 1, 0}, direction);
    right = Length(right) < 1e-6 ? Vector{1, 0, 0} : right * (1 / Length(right));
    const Vector up = Cross(direction, right);
    SkyPolygon polygon{material, {}, true};
    const auto add = [&](double u, double v) {
        polygon.corners.push_back({direction * distance + right * ((u - 0.5) * side) + up * ((0.5 - v) * side), u, v});
    };
    add(0, 1);
    add(1, 1);
    add(1, 0);
    add(0, 0);
    return polygon;
}

// The side of a square that is seen under so many degrees.
double SideOf(double distance, double degrees) {
    const SineCosine half = SineCosineOfDegrees(degrees / 2);
    return 2 * distance * half.sine / half.cosine;
}

// Numbers from 0 to 1, the same on every machine.
class Random {
public:
    explicit Random(int seed) : state_(static_cast<uint32_t>(seed) * 2654435761u + 1) {}
    double Next(double least, double most) {
        state_ = state_ * 1664525u + 1013904223u;
        return least + (most - least) * (state_ >> 8) / 16777216.0;
    }

private:
    uint32_t state_;
};

}  // namespace

void CheckCount(size_t polygons, const TomlTable& layer) {
    if (polygons <= STATIC_OBJECT_POLYGONS_MAX) return;
    layer.RefuseTable(fmt::format("the sky has {} polygons up to this layer", polygons),
                      fmt::format("{} are the most: give it fewer segments or stars", STATIC_OBJECT_POLYGONS_MAX));
}

Vector DirectionOf(double bearing, double elevation) {
    return CornerAt(RingAt(1, elevation), bearing).place;
}

void AddDome(const TomlTable& layer, float radius, SkyShape& shape) {
    const Turning turning = ReadTurning(layer);
    const std::vector<TomlTable> bands = layer.Tables("band");
    if (bands.empty()) layer.RefuseTable("the dome has no bands", "add [[layer.band]] with from, to and material");
    for (size_t i = 0; i < bands.size(); ++i) {
        const bool meets = i == 0 || bands[i].Number("from", 0, -90, 90) == bands[i - 1].Number("to", 90, -90, 90);
        if (!meets) bands[i].RefuseKey("from", "is not where the band before ends", "leave no gap between them");
        AddBand(bands[i], static_cast<double>(radius), turning, shape);
    }
}

void AddSheet(const TomlTable& layer, SkyShape& shape) {
    const Turning turning = ReadTurning(layer);
    Mapping mapping = ReadMapping(layer, turning);
    if (mapping.flat == 0) layer.RefuseTable("'flat' is missing", "say every how many units the picture repeats");
    const auto height = static_cast<double>(layer.Number("height", 300, SKY_NEAREST, SKY_FARTHEST));
    const auto sag = static_cast<double>(layer.Number("sag", 0, 0, SKY_FARTHEST));
    const auto reach = static_cast<double>(layer.Number("reach", SKY_RADIUS, SKY_NEAREST, SKY_FARTHEST));
    const int rings = layer.Int("rings", 3, 1, 16);
    const auto at = [&](int ring) {
        const double part = static_cast<double>(ring) / rings;
        return Ring{reach * part, height - sag * part * part};
    };
    for (int ring = rings; ring > 0; --ring)
        AddStrip(at(ring), at(ring - 1), turning, mapping, shape);
}

void AddDisc(const TomlTable& layer, float radius, SkyShape& shape) {
    const Vector direction = DirectionOf(static_cast<double>(layer.Number("bearing", 0, -360, 360)),
                                         static_cast<double>(layer.Number("elevation", 30, -90, 90)));
    const double side = SideOf(static_cast<double>(radius), static_cast<double>(layer.Number("size", 6, 0.1f, 90)));
    shape.push_back(FacingSquare(layer.NeedText("material"), direction, static_cast<double>(radius), side));
}

void AddStars(const TomlTable& layer, float radius, SkyShape& shape) {
    const std::vector<std::string> materials = ReadMaterials(layer);
    const std::vector<float> size = layer.Numbers("size", 2, {0.5f, 1});
    if (!(size[0] > 0 && size[0] <= size[1] && size[1] <= 30)) {
        layer.RefuseKey("size", "is no range of sizes", "give the least and the most degrees, 0 to 30");
    }
    const double lowest = DirectionOf(0, static_cast<double>(layer.Number("from", 5, -90, 90))).y;
    const int count = layer.NeedInt("count", 1, 1000);
    Random random(layer.Int("seed", 1, 0, 1000000));
    for (int i = 0; i < count; ++i) {
        const double height = random.Next(lowest, 1);
        const SineCosine turn = SineCosineOfDegrees(random.Next(0, 360));
        const double reach = std::sqrt(1 - height * height);
        const double degrees = random.Next(static_cast<double>(size[0]), static_cast<double>(size[1]));
        shape.push_back(FacingSquare(materials[static_cast<size_t>(i) % materials.size()],
                                     {reach * turn.sine, height, reach * turn.cosine}, static_cast<double>(radius),
                                     SideOf(static_cast<double>(radius), degrees)));
    }
}
