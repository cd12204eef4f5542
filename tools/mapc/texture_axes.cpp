#include "mapc/texture_axes.h"

#include "transforms/angles.h"

#include <array>

namespace {

struct FacingAxes {
    Vec3 normal, u, v;
};

// The first one wins where several fit equally, so a 45 degree slope is painted like a floor.
constexpr std::array<FacingAxes, 6> FACINGS{{
    {{0, 0, 1}, {1, 0, 0}, {0, -1, 0}},
    {{0, 0, -1}, {1, 0, 0}, {0, -1, 0}},
    {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
    {{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
    {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}},
    {{0, -1, 0}, {1, 0, 0}, {0, 0, -1}},
}};

const FacingAxes& FacingOf(const Vec3& normal) {
    constexpr double CLEARLY = 1e-9;
    const FacingAxes* best = &FACINGS[0];
    for (const FacingAxes& facing : FACINGS) {
        if (Dot(normal, facing.normal) > Dot(normal, best->normal) + CLEARLY) best = &facing;
    }
    return *best;
}

int MainAxis(const Vec3& v) {
    return v.x != 0 ? 0 : v.y != 0 ? 1 : 2;
}

Vec3 Rotated(Vec3 v, int first, int second, const SineCosine& turn) {
    const double a = v[first];
    const double b = v[second];
    v[first] = turn.cosine * a - turn.sine * b;
    v[second] = turn.sine * a + turn.cosine * b;
    return v;
}

// The least and the greatest texel coordinate of the corners.
std::array<double, 2> RangeOf(const std::vector<const Winding*>& windings, const Vec3& axis, double offset) {
    std::array<double, 2> range{std::numeric_limits<double>::max(), -std::numeric_limits<double>::max()};
    for (const Winding* winding : windings) {
        for (const Vec3& p : *winding) {
            range[0] = std::min(range[0], Dot(p, axis) + offset);
            range[1] = std::max(range[1], Dot(p, axis) + offset);
        }
    }
    return range;
}

bool IsWholeNumber(double number) {
    return std::abs(number - std::floor(number + 0.5)) < 1e-6;
}

bool SameAxis(const Vec3& a, const Vec3& b) {
    return LengthSquared(a - b) < 1e-16;
}

// The shift in texels; sets fits when the range is exactly one repeat.
double RepeatShift(const std::array<double, 2>& range, double size, bool& fits) {
    constexpr double ALMOST = 0.01;  // texels
    const double first = std::floor((range[0] + ALMOST) / size);
    fits = std::abs(range[0] - first * size) < ALMOST && std::abs(range[1] - (first + 1) * size) < ALMOST;
    if (range[1] <= (first + 1) * size + ALMOST) return first * size;
    return std::floor((range[0] + range[1]) / 2 / size) * size;
}

void Inset(Vec3& axis, double& offset, double size) {
    const double shrink = (size - 1) / size;
    axis = axis * shrink;
    offset = offset * shrink + 0.5;
}

}  // namespace

void GiveAxes(MapFace& face, const Vec3& normal) {
    for (double* scale : {&face.uScale, &face.vScale}) {
        if (*scale == 0) *scale = UNITS_PER_TEXEL;
    }
    if (face.hasAxes) return;
    const FacingAxes& facing = FacingOf(normal);
    const SineCosine turn = SineCosineOfDegrees(face.rotation);
    face.uAxis = Rotated(facing.u, MainAxis(facing.u), MainAxis(facing.v), turn);
    face.vAxis = Rotated(facing.v, MainAxis(facing.u), MainAxis(facing.v), turn);
    face.hasAxes = true;
}

FaceTexture TextureOf(const MapFace& face, const Vec3& normal, const Material& material) {
    MapFace painted = face;
    GiveAxes(painted, normal);
    FaceTexture texture;
    texture.material = &material;
    texture.line = face.line;
    texture.smooth = face.smooth;
    texture.uAxis = painted.uAxis * (1 / painted.uScale);
    texture.vAxis = painted.vAxis * (1 / painted.vScale);
    texture.uOffset = face.uOffset;
    texture.vOffset = face.vOffset;
    if (face.inRepeats) {
        texture.uAxis = texture.uAxis * material.width;
        texture.vAxis = texture.vAxis * material.height;
        texture.uOffset *= material.width;
        texture.vOffset *= material.height;
    }
    return texture;
}

bool PaintAlike(const FaceTexture& a, const FaceTexture& b) {
    return !a.smooth && !b.smooth && a.material == b.material && a.cornerLight == b.cornerLight &&
           SameAxis(a.uAxis, b.uAxis) && SameAxis(a.vAxis, b.vAxis) &&
           IsWholeNumber((a.uOffset - b.uOffset) / a.material->width) &&
           IsWholeNumber((a.vOffset - b.vOffset) / a.material->height);
}

void PlaceTexture(FaceTexture& texture, const std::vector<const Winding*>& windings) {
    const double width = texture.material->width;
    const double height = texture.material->height;
    bool fitsU = false;
    bool fitsV = false;
    texture.uOffset -= RepeatShift(RangeOf(windings, texture.uAxis, texture.uOffset), width, fitsU);
    texture.vOffset -= RepeatShift(RangeOf(windings, texture.vAxis, texture.vOffset), height, fitsV);
    if (fitsU && fitsV) {
        Inset(texture.uAxis, texture.uOffset, width);
        Inset(texture.vAxis, texture.vOffset, height);
    }
}
