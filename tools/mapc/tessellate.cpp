#include "mapc/tessellate.h"

namespace {

constexpr double WALL_SLOPE = 0.2;    // greatest vertical part of a wall's normal
constexpr double STRIP_PART = 0.125;  // of the grid: narrower strips are not cut off

void CutAlong(int axis, double grid, std::vector<Face>& faces) {
    std::vector<Face> cut;
    Winding front;
    Winding back;
    for (Face& face : faces) {
        const double strip = grid * STRIP_PART;
        Face rest = std::move(face);
        for (double at = std::ceil((rest.box.min[axis] + strip) / grid) * grid; at < rest.box.max[axis] - strip;
             at += grid) {
            Vec3 normal;
            normal[axis] = 1;
            SplitWinding(rest.winding, {normal, at}, front, back);
            if (front.empty() || back.empty()) continue;
            cut.emplace_back(back, rest.plane, rest.texture, rest.hidden);
            rest = Face(front, rest.plane, rest.texture, rest.hidden);
        }
        cut.push_back(std::move(rest));
    }
    faces = std::move(cut);
}

}  // namespace

void TessellateFaces(Tree& tree, const PlaneTable& planes, double grid) {
    for (std::vector<Face>& leaf : tree.leaves) {
        std::vector<Face> result;
        for (Face& face : leaf) {
            std::vector<Face> pieces;
            pieces.push_back(std::move(face));
            const Face& whole = pieces[0];
            const bool isWall = std::abs(planes[whole.plane].normal.z) < WALL_SLOPE;
            if (!whole.hidden) {
                CutAlong(0, grid, pieces);
                CutAlong(1, grid, pieces);
                if (!isWall) CutAlong(2, grid, pieces);
            }
            for (Face& piece : pieces)
                result.push_back(std::move(piece));
        }
        leaf = std::move(result);
    }
}
