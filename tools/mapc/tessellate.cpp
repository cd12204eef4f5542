#include "mapc/tessellate.h"

#include "mapc/box_grid.h"

namespace {

constexpr double WALL_SLOPE = 0.2;     // greatest vertical part of a wall's normal
constexpr double FLOOR_SLOPE = 0.7;    // least vertical part of a floor's normal
constexpr double STRIP_PART = 0.125;   // of the grid: narrower strips are not cut off
constexpr double STEP_CLEARANCE = 64;  // engine units from a floor up to the first cut of a wall
constexpr double FALL_REACH = 600;     // engine units: farther from the edge of a floor nobody falls

class Tessellator {
public:
    Tessellator(const Tree& tree, const PlaneTable& planes, double grid, double scale)
        : planes_(planes), grid_(grid), scale_(scale), floorBoxes_(FloorsOf(tree, planes)), floors_(floorBoxes_) {}

    std::vector<Face> Cut(Face face) {
        std::vector<Face> pieces;
        const bool isWall = std::abs(planes_[face.plane].normal.z) < WALL_SLOPE;
        std::vector<double> cuts[3];
        for (int axis = 0; axis < 3; ++axis)
            cuts[axis] = CutsOf(face, axis);
        if (isWall) RemoveFalseSteps(face, cuts[2]);
        pieces.push_back(std::move(face));
        for (int axis = 0; axis < 3; ++axis)
            CutAlong(axis, cuts[axis], pieces);
        return pieces;
    }

private:
    static std::vector<Box> FloorsOf(const Tree& tree, const PlaneTable& planes) {
        std::vector<Box> floors;
        for (const std::vector<Face>& leaf : tree.leaves) {
            for (const Face& face : leaf) {
                if (planes[face.plane].normal.z > FLOOR_SLOPE) floors.push_back(face.box);
            }
        }
        return floors;
    }

    std::vector<double> CutsOf(const Face& face, int axis) const {
        std::vector<double> cuts;
        const double strip = grid_ * STRIP_PART;
        const double end = face.box.max[axis] - strip;
        for (double at = std::ceil((face.box.min[axis] + strip) / grid_) * grid_; at < end; at += grid_) {
            cuts.push_back(at);
        }
        return cuts;
    }

    void RemoveFalseSteps(const Face& wall, std::vector<double>& heights) {
        if (heights.empty()) return;
        floors_.Find({{wall.box.min.x, wall.box.min.y, -MAP_EXTENT}, {wall.box.max.x, wall.box.max.y, MAP_EXTENT}},
                     FALL_REACH / scale_, near_);
        double highest = -MAP_EXTENT * 2;
        for (const int floor : near_)
            highest = std::max(highest, floorBoxes_[static_cast<size_t>(floor)].max.z);
        std::erase_if(heights, [&](double height) { return height < highest + STEP_CLEARANCE / scale_; });
    }

    static void CutAlong(int axis, const std::vector<double>& cuts, std::vector<Face>& faces) {
        Winding front;
        Winding back;
        for (const double at : cuts) {
            Vec3 normal;
            normal[axis] = 1;
            const size_t count = faces.size();
            for (size_t i = 0; i < count; ++i) {
                SplitWinding(faces[i].winding, {normal, at}, front, back);
                if (front.empty() || back.empty()) continue;
                const Face whole = std::move(faces[i]);
                faces[i] = Face(back, whole.plane, whole.texture, whole.hidden);
                faces.emplace_back(front, whole.plane, whole.texture, whole.hidden);
            }
        }
    }

    const PlaneTable& planes_;
    double grid_;
    double scale_;
    std::vector<Box> floorBoxes_;
    BoxGrid floors_;
    std::vector<int> near_;
};

}  // namespace

void TessellateFaces(Tree& tree, const PlaneTable& planes, double grid, double scale) {
    Tessellator tessellator(tree, planes, grid, scale);
    for (std::vector<Face>& leaf : tree.leaves) {
        std::vector<Face> result;
        for (Face& face : leaf) {
            if (face.hidden) {
                result.push_back(std::move(face));
                continue;
            }
            for (Face& piece : tessellator.Cut(std::move(face)))
                result.push_back(std::move(piece));
        }
        leaf = std::move(result);
    }
}
