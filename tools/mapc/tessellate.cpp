#include "mapc/tessellate.h"

#include "mapc/box_grid.h"
#include "mapc/light_fit.h"
#include "mapc/mesh.h"
#include "records/walking_facts.h"

#include <optional>

namespace {

constexpr double STRIP_PART = 0.125;  // share of the grid's size: narrower strips are not cut off
constexpr double FALL_REACH = 600;    // engine units; nobody falls farther away than this from the edge of a floor

// Where the grid may cut a face.
class GridLines {
public:
    GridLines(const Tree& tree, const PlaneTable& planes, const LightGrid& grid)
        : planes_(planes), grid_(grid), floorBoxes_(FloorsOf(tree, planes)), floors_(floorBoxes_) {}

    // Height below which a face is not cut across: the player would take the lower part of a wall for a step.
    double LowestCut(const Face& face) {
        if (std::abs(planes_[face.plane].normal.z) >= STEEP_SLOPE) return -MAP_EXTENT * 2;
        floors_.Find({{face.box.min.x, face.box.min.y, -MAP_EXTENT}, {face.box.max.x, face.box.max.y, MAP_EXTENT}},
                     FALL_REACH / grid_.scale, near_);
        double highest = -MAP_EXTENT * 2;
        for (const int floor : near_)
            highest = std::max(highest, floorBoxes_[static_cast<size_t>(floor)].max.z);
        return highest + double{LEDGE_MAX} / grid_.scale;
    }

    std::vector<double> Through(const Box& box, int axis, double lowestCut) const {
        std::vector<double> cuts;
        const double strip = grid_.size * STRIP_PART;
        const double end = box.max[axis] - strip;
        for (double at = std::ceil((box.min[axis] + strip) / grid_.size) * grid_.size; at < end; at += grid_.size) {
            if (axis != 2 || at >= lowestCut) cuts.push_back(at);
        }
        return cuts;
    }

private:
    static std::vector<Box> FloorsOf(const Tree& tree, const PlaneTable& planes) {
        std::vector<Box> floors;
        for (const std::vector<Face>& leaf : tree.leaves) {
            for (const Face& face : leaf) {
                if (planes[face.plane].normal.z > LANDING_SLOPE) floors.push_back(face.box);
            }
        }
        return floors;
    }

    const PlaneTable& planes_;
    LightGrid grid_;
    std::vector<Box> floorBoxes_;
    BoxGrid floors_;
    std::vector<int> near_;
};

struct Cut {
    int axis = 0;
    double at = 0;
};

// Cuts a face in two. False: it lies on one side of the cut.
bool CutFace(const Face& whole, const Cut& cut, Face& below, Face& above) {
    Vec3 normal;
    normal[cut.axis] = 1;
    Winding front;
    Winding back;
    SplitWinding(whole.winding, {normal, cut.at}, front, back);
    if (front.empty() || back.empty()) return false;
    below = Face(std::move(back), whole.plane, whole.texture, whole.hidden);
    above = Face(std::move(front), whole.plane, whole.texture, whole.hidden);
    return true;
}

std::vector<Face> CutEverywhere(GridLines& lines, const Face& face) {
    const double lowestCut = lines.LowestCut(face);
    std::vector<Face> pieces{face};
    for (int axis = 0; axis < 3; ++axis) {
        for (const double at : lines.Through(face.box, axis, lowestCut)) {
            const size_t count = pieces.size();
            for (size_t i = 0; i < count; ++i) {
                Face below;
                Face above;
                if (!CutFace(pieces[i], {axis, at}, below, above)) continue;
                pieces[i] = std::move(below);
                pieces.push_back(std::move(above));
            }
        }
    }
    return pieces;
}

using Samples = std::vector<const LightSample*>;

// Divides one face until the light of every piece is nearly linear, each time where that helps most.
class LightCutter {
public:
    LightCutter(const GridLines& lines, double lowestCut, const Vec3& normal, double tolerance)
        : lines_(lines), lowestCut_(lowestCut), normal_(normal), tolerance_(tolerance) {}

    void Divide(Face face, const Samples& samples, std::vector<Face>& pieces) const {
        // Values that far from one plane, and others interpolated between them, differ by twice as much at most.
        const bool isLinear = FitLight(samples, normal_).worst * 2 <= tolerance_;
        const std::optional<Cut> cut = isLinear ? std::nullopt : BestCut(face, samples);
        Face below;
        Face above;
        if (!cut || !CutFace(face, *cut, below, above)) {
            pieces.push_back(std::move(face));
            return;
        }
        Divide(std::move(below), Below(*cut, samples), pieces);
        Divide(std::move(above), Above(*cut, samples), pieces);
    }

private:
    static Samples Below(const Cut& cut, const Samples& samples) {
        Samples below;
        for (const LightSample* sample : samples) {
            if (sample->place[cut.axis] <= cut.at + SPLIT_EPSILON) below.push_back(sample);
        }
        return below;
    }

    static Samples Above(const Cut& cut, const Samples& samples) {
        Samples above;
        for (const LightSample* sample : samples) {
            if (sample->place[cut.axis] >= cut.at - SPLIT_EPSILON) above.push_back(sample);
        }
        return above;
    }

    std::optional<Cut> BestCut(const Face& face, const Samples& samples) const {
        std::optional<Cut> best;
        double bestSquares = std::numeric_limits<double>::max();
        for (int axis = 0; axis < 3; ++axis) {
            for (const double at : lines_.Through(face.box, axis, lowestCut_)) {
                const Cut cut{axis, at};
                const double squares =
                    FitLight(Below(cut, samples), normal_).squares + FitLight(Above(cut, samples), normal_).squares;
                if (squares >= bestSquares) continue;
                bestSquares = squares;
                best = cut;
            }
        }
        return best;
    }

    const GridLines& lines_;
    double lowestCut_;
    Vec3 normal_;
    double tolerance_;
};

std::vector<LightSample> SamplesOf(const std::vector<Face>& cells, const SurfaceLight& light, const Vec3& normal,
                                   double weldDistance) {
    std::vector<Vec3> places;
    Welder welder(places, weldDistance);
    for (const Face& cell : cells) {
        for (const Vec3& p : cell.winding)
            welder.Find(p);
    }
    std::vector<LightSample> samples;
    for (const Vec3& place : places) {
        if (const std::optional<double> byte = light.At(place, normal)) samples.push_back({place, *byte});
    }
    return samples;
}

template <class CutOne>
void CutDrawnFaces(Tree& tree, CutOne cutOne) {
    for (std::vector<Face>& leaf : tree.leaves) {
        std::vector<Face> result;
        for (Face& face : leaf) {
            if (face.hidden) {
                result.push_back(std::move(face));
                continue;
            }
            for (Face& piece : cutOne(face))
                result.push_back(std::move(piece));
        }
        leaf = std::move(result);
    }
}

}  // namespace

bool TessellateFaces(Tree& tree, const PlaneTable& planes, const LightGrid& grid, size_t piecesMax) {
    GridLines lines(tree, planes, grid);
    size_t count = 0;
    CutDrawnFaces(tree, [&](const Face& face) {
        std::vector<Face> pieces = count > piecesMax ? std::vector<Face>() : CutEverywhere(lines, face);
        count += pieces.size();
        return pieces;
    });
    return count <= piecesMax;
}

void TessellateWhereLightBends(Tree& tree, const PlaneTable& planes, const LightGrid& grid, const SurfaceLight& light,
                               const std::function<double(const Face&)>& tolerance) {
    GridLines lines(tree, planes, grid);
    CutDrawnFaces(tree, [&](Face& face) {
        const Vec3& normal = planes[face.plane].normal;
        const std::vector<LightSample> samples =
            SamplesOf(CutEverywhere(lines, face), light, normal, WELD_DISTANCE / grid.scale);
        Samples all;
        for (const LightSample& sample : samples)
            all.push_back(&sample);
        std::vector<Face> pieces;
        LightCutter(lines, lines.LowestCut(face), normal, tolerance(face)).Divide(std::move(face), all, pieces);
        return pieces;
    });
}
