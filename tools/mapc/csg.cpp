#include "mapc/csg.h"

#include "formats/error.h"
#include "mapc/box_grid.h"
#include "mapc/counts.h"

#include <fmt/format.h>

namespace {

constexpr double AREA_MIN = 0.01;       // area; a smaller covered part is not cut out
constexpr double PARALLEL = 0.7;        // cosine
constexpr size_t PAIRS_MAX = 500'000;   // pairs of brushes that touch; the largest of our levels has 7,390
constexpr size_t PIECES_MAX = 100'000;  // pieces of faces; merging and leaving out the unseen must bring them to 20,000

class Cutter {
public:
    Cutter(const Brushes& brushes, WholeFaces whole) : brushes_(brushes), whole_(whole), grid_(BoxesOf(brushes)) {}

    Surface Cut() {
        CheckPairs();
        Surface surface;
        for (size_t i = 0; i < brushes_.list.size(); ++i) {
            const Brush& brush = brushes_.list[i];
            grid_.Find(brush.box, SPLIT_EPSILON, near_);
            for (const BrushSide& side : brush.sides)
                CutSide(static_cast<int>(i), side, surface);
            CheckCounts(brushes_.file, {{"pieces of faces before they are merged", surface.visible.size(), PIECES_MAX},
                                        {"pieces of outer faces", surface.sealing.size(), PIECES_MAX}});
        }
        return surface;
    }

private:
    // Refuses a map with too many brushes in one place, since all of them touch each other.
    void CheckPairs() {
        size_t pairs = 0;
        for (const Brush& brush : brushes_.list) {
            grid_.Find(brush.box, SPLIT_EPSILON, near_);
            pairs += near_.size();
            if (pairs <= PAIRS_MAX) continue;
            Refuse(brush.line,
                   fmt::format("this brush touches {} others, and all brushes more than {} together", near_.size() - 1,
                               PAIRS_MAX),
                   "delete copies that lie in one place, and join small brushes to larger ones");
        }
    }

    void CutSide(int owner, const BrushSide& side, Surface& surface) {
        const BrushKind kind = brushes_.list[static_cast<size_t>(owner)].kind;
        const auto isSolid = [](BrushKind other) { return other == BrushKind::Solid; };
        if (kind == BrushKind::Solid) {
            std::vector<Winding> pieces{side.winding};
            CutBy(owner, side.plane, pieces, WholeFaces::None, isSolid);
            for (Winding& piece : pieces)
                surface.sealing.emplace_back(std::move(piece), side.plane, side.texture, false);
        }
        if (side.texture < 0) return;
        std::vector<Winding> pieces{side.winding};
        CutBy(owner, side.plane, pieces, whole_, isSolid);
        CutBy(owner, side.plane, pieces, whole_, [kind](BrushKind other) {
            return other == BrushKind::Detail || (other == kind && kind != BrushKind::Solid);
        });
        for (Winding& piece : pieces)
            surface.visible.emplace_back(std::move(piece), side.plane, side.texture, kind == BrushKind::Clip);
    }

    template <class Hides>
    void CutBy(int owner, int plane, std::vector<Winding>& pieces, WholeFaces whole, Hides hides) {
        std::vector<Winding> next;
        for (const int i : near_) {
            const Brush& brush = brushes_.list[static_cast<size_t>(i)];
            if (i == owner || !hides(brush.kind)) continue;
            const bool staysWhole = whole == WholeFaces::BelowWhatStandsOnThem && StandsOn(brush, plane);
            next.clear();
            for (Winding& piece : pieces) {
                const size_t before = next.size();
                Winding uncut = staysWhole ? piece : Winding();
                Subtract(std::move(piece), plane, brush, i < owner, next);
                if (!staysWhole || next.size() <= before + 1) continue;
                next.resize(before);
                next.push_back(std::move(uncut));
            }
            pieces.swap(next);
        }
    }

    // A brush whose walls show the sky does not stand on a face: behind them nothing may be seen.
    bool StandsOn(const Brush& brush, int plane) const {
        const auto isSkyWall = [&](const BrushSide& side) {
            return side.texture < 0 &&
                   std::abs(Dot(brushes_.planes[side.plane].normal, brushes_.planes[plane].normal)) < PARALLEL;
        };
        return std::any_of(brush.sides.begin(), brush.sides.end(),
                           [&](const BrushSide& side) { return side.plane == (plane ^ 1); }) &&
               std::none_of(brush.sides.begin(), brush.sides.end(), isSkyWall);
    }

    // Adds what the brush leaves of the winding. Where the two lie in one plane and face the same way, brushWins says
    // who keeps the face; where they face each other, the brush hides it.
    void Subtract(Winding winding, int plane, const Brush& brush, bool brushWins, std::vector<Winding>& remaining) {
        if (!brush.box.Touches(WindingBox(winding), SPLIT_EPSILON)) {
            remaining.push_back(std::move(winding));
            return;
        }
        std::vector<Winding> outside;
        Winding inside = winding;
        Winding front;
        Winding back;
        for (const BrushSide& side : brush.sides) {
            SplitWinding(inside, brushes_.planes[side.plane], front, back);
            const bool coplanar = (side.plane | 1) == (plane | 1) || (front.empty() && back.empty());
            if (coplanar) {
                const bool sameWay = Dot(brushes_.planes[side.plane].normal, brushes_.planes[plane].normal) > 0;
                if (!sameWay || brushWins) continue;
                back.clear();
            }
            if (back.empty()) {
                remaining.push_back(std::move(winding));
                return;
            }
            if (!front.empty()) outside.push_back(std::move(front));
            inside = std::move(back);
        }
        if (!outside.empty() && WindingArea(inside) < AREA_MIN) {
            remaining.push_back(std::move(winding));
            return;
        }
        for (Winding& piece : outside)
            remaining.push_back(std::move(piece));
    }

    const Brushes& brushes_;
    WholeFaces whole_;
    BoxGrid grid_;
    std::vector<int> near_;  // brushes around the one being cut, ascending
};

}  // namespace

std::vector<Box> BoxesOf(const std::vector<Face>& faces) {
    std::vector<Box> boxes;
    for (const Face& face : faces)
        boxes.push_back(face.box);
    return boxes;
}

std::vector<Box> BoxesOf(const std::vector<const Face*>& faces) {
    std::vector<Box> boxes;
    for (const Face* face : faces)
        boxes.push_back(face->box);
    return boxes;
}

Surface CutBrushes(const Brushes& brushes, WholeFaces whole) {
    return Cutter(brushes, whole).Cut();
}
