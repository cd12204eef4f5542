#include "mapc/merge.h"

#include <optional>

namespace {

constexpr double SAME_POINT = 0.01;
constexpr double CONVEX_TOLERANCE = 1e-6;  // sine of the turn at a corner

bool Same(const Vec3& a, const Vec3& b) {
    return LengthSquared(a - b) < SAME_POINT * SAME_POINT;
}

// Whether the corner b between a and c turns left, or goes straight, seen from the front.
bool IsConvex(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& normal) {
    const Vec3 in = b - a;
    const Vec3 out = c - b;
    return Dot(Cross(in, out), normal) >= -CONVEX_TOLERANCE * Length(in) * Length(out);
}

const Vec3& At(const Winding& winding, size_t i) {
    return winding[i % winding.size()];
}

// a's edge i runs against b's edge j: b's other corners replace it.
std::optional<Winding> Join(const Winding& a, size_t i, const Winding& b, size_t j, const Vec3& normal) {
    if (!IsConvex(At(a, i + a.size() - 1), At(a, i), At(b, j + 2), normal)) return std::nullopt;
    if (!IsConvex(At(b, j + b.size() - 1), At(b, j), At(a, i + 2), normal)) return std::nullopt;
    Winding joined;
    for (size_t k = 1; k <= a.size(); ++k)
        joined.push_back(At(a, i + k));
    for (size_t k = 2; k < b.size(); ++k)
        joined.push_back(At(b, j + k));
    RemoveStraightCorners(joined);
    return joined;
}

std::optional<Winding> Join(const Winding& a, const Winding& b, const Vec3& normal) {
    for (size_t i = 0; i < a.size(); ++i) {
        for (size_t j = 0; j < b.size(); ++j) {
            if (!Same(At(a, i), At(b, j + 1)) || !Same(At(a, i + 1), At(b, j))) continue;
            if (auto joined = Join(a, i, b, j, normal)) return joined;
        }
    }
    return std::nullopt;
}

// Each piece in turn takes in all that it can.
void MergeSide(std::vector<Face>& pieces, const PlaneTable& planes) {
    for (size_t i = 0; i < pieces.size(); ++i) {
        for (size_t j = 0; j < pieces.size();) {
            const bool near = i != j && pieces[i].box.Touches(pieces[j].box, SAME_POINT);
            auto joined = near ? Join(pieces[i].winding, pieces[j].winding, planes[pieces[i].plane].normal)
                               : std::optional<Winding>();
            if (!joined) {
                ++j;
                continue;
            }
            pieces[i] = Face(std::move(*joined), pieces[i].plane, pieces[i].texture, pieces[i].hidden);
            pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(j));
            if (j < i) --i;
            j = 0;
        }
    }
}

}  // namespace

void MergeFaces(std::vector<Face>& faces, const PlaneTable& planes) {
    std::vector<Face> merged;
    std::vector<Face> side;
    for (size_t i = 0; i < faces.size(); ++i) {
        side.push_back(std::move(faces[i]));
        if (i + 1 < faces.size() && faces[i + 1].texture == side[0].texture) continue;
        MergeSide(side, planes);
        for (Face& face : side)
            merged.push_back(std::move(face));
        side.clear();
    }
    faces = std::move(merged);
}
