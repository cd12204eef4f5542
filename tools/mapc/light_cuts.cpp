#include "mapc/light_cuts.h"

#include "formats/error.h"
#include "mapc/emit.h"
#include "mapc/fan.h"
#include "mapc/tessellate.h"

#include <fmt/format.h>

namespace {

// Pieces of the trial world, which is cut everywhere to see where light bends, and never written.
constexpr size_t TRIAL_POLYGONS_MAX = 150'000;
constexpr double UNCUT = 256;  // tolerance, light bytes; twice the range of light, so that nothing is cut
constexpr double TOLERANCE_STEP = 1.5;
constexpr double TOLERANCE_LEAST = 2;  // what the steps begin with where the map wants less
constexpr double COARSE_RADIUS = 256;  // engine units; faces nearer to a crowded place are cut less

Mesh MeshOf(const Tree& tree, const Brushes& brushes, double scale) {
    Mesh mesh = WeldMesh(tree, scale);
    FillTJunctions(mesh, scale);
    MakeFans(mesh, brushes.planes, scale, [&](const MeshPolygon& polygon) {
        const bool cornerLight = brushes.textures[static_cast<size_t>(polygon.texture)].cornerLight;
        return cornerLight ? CORNER_LIGHT_CORNERS : BSP_CORNERS_MAX;
    });
    return mesh;
}

class LightCuts {
public:
    LightCuts(const Tree& tree, std::vector<LeafFace> hidden, const LightSources& sources)
        : tree_(tree), sources_(sources), hidden_(std::move(hidden)), hiddenAtFirst_(hidden_.size()) {}

    CutWorld Make(const BakeOptions& bake) {
        if (sources_.settings.subdivide == 0 || bake.quality == LightQuality::None) return Uncut();
        if (FacesOf(tree_) > TRIAL_POLYGONS_MAX) return Uncut();
        FindLight(bake.threads);
        CutWorld cut = WithTolerance();
        while (IsTooLarge(cut) && LeaveOutSome())  // before the light suffers
            cut = WithTolerance();
        if (Fits(cut)) return cut;
        CutWorld uncut = Uncut();  // refuses what no coarser grid can help
        while (!Fits(cut) && level_ < UNCUT) {
            if (IsTooLarge(cut) || !CoarsenAround(cut.contacts)) level_ = Raised(level_);
            cut = WithTolerance();
        }
        if (!Fits(cut)) return uncut;
        Note(cut);
        return cut;
    }

private:
    struct CoarsePlace {
        Vec3 place;  // map space
        double tolerance = 0;
    };

    static double Raised(double tolerance) { return std::max(tolerance * TOLERANCE_STEP, TOLERANCE_LEAST); }

    static size_t FacesOf(const Tree& tree) {
        size_t count = 0;
        for (const std::vector<Face>& leaf : tree.leaves)
            count += leaf.size();
        return count;
    }

    // Refuses what is beyond a limit. Hidden faces are no reason to.
    CutWorld Uncut() {
        CutWorld cut = WithHidden(tree_);
        while (IsTooLarge(cut) && LeaveOutSome())
            cut = WithHidden(tree_);
        CheckCounts(sources_.mapName, cut.counts);
        if (cut.contacts.count > LEVEL_CONTACTS_MAX) {
            Refuse(sources_.mapName, 0,
                   fmt::format("a player at {} touches {} polygons at once, at most {}",
                               PlaceText(PlaceOf(cut.contacts)), cut.contacts.count, LEVEL_CONTACTS_MAX),
                   "simplify the brushes around that place: " + CrowdAt(PlaceOf(cut.contacts)));
        }
        return cut;
    }

    // The brushes with the most faces within reach of a player.
    std::string CrowdAt(const Vec3& place) const {
        constexpr size_t SHOWN_MAX = 5;
        const double reach = CONTACTS_REACH / sources_.settings.scale;
        const auto isNear = [&](const Box& box) { return box.Holds(place, reach); };
        std::vector<const Face*> faces;
        for (const std::vector<Face>& leaf : tree_.leaves) {
            for (const Face& face : leaf)
                if (isNear(face.box)) faces.push_back(&face);
        }
        std::vector<std::pair<size_t, const Brush*>> crowd;
        for (const Brush& brush : sources_.brushes.list) {
            // Merged faces no longer know their brush.
            const auto isOfBrush = [&](const Face* face) {
                return brush.box.Touches(face->box, 0) &&
                       std::any_of(brush.sides.begin(), brush.sides.end(),
                                   [&](const BrushSide& side) { return side.plane == face->plane; });
            };
            if (!isNear(brush.box)) continue;
            const auto count = static_cast<size_t>(std::count_if(faces.begin(), faces.end(), isOfBrush));
            if (count > 0) crowd.emplace_back(count, &brush);
        }
        std::stable_sort(crowd.begin(), crowd.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
        std::string text = fmt::format("{} brushes, the most polygons from", crowd.size());
        for (size_t i = 0; i < std::min(crowd.size(), SHOWN_MAX); ++i)
            text += fmt::format("{} {} ({})", i == 0 ? "" : ",", crowd[i].second->line.Text(), crowd[i].first);
        return text;
    }

    // Bakes the light of the world that is cut on the whole grid.
    void FindLight(int threads) {
        const double scale = sources_.settings.scale;
        for (grid_ = {sources_.settings.subdivide / scale, scale};; grid_.size *= 2) {
            Tree tree = tree_;
            if (!TessellateFaces(tree, sources_.brushes.planes, grid_, TRIAL_POLYGONS_MAX)) continue;
            const WorldFile world =
                EmitWorld(tree, MeshOf(tree, sources_.brushes, scale), sources_.brushes, sources_.placement);
            light_.emplace(world, BrightestLight(world, sources_, threads), sources_.placement);
            return;
        }
    }

    CutWorld WithTolerance() {
        Tree tree = tree_;
        TessellateWhereLightBends(tree, sources_.brushes.planes, grid_, *light_,
                                  [this](const Face& face) { return ToleranceOf(face); });
        return WithHidden(tree);
    }

    double ToleranceOf(const Face& face) const {
        double tolerance = level_;
        for (const CoarsePlace& coarse : coarse_) {
            if (face.box.Holds(coarse.place, COARSE_RADIUS / grid_.scale))
                tolerance = std::max(tolerance, coarse.tolerance);
        }
        return tolerance;
    }

    // Where the player would touch too many polygons, the smallest hidden faces have to go before the light grid does.
    CutWorld WithHidden(const Tree& tree) {
        CutWorld cut = WorldOf(tree);
        while (!IsTooLarge(cut) && cut.contacts.count > LEVEL_CONTACTS_MAX) {
            const size_t tooMany = static_cast<size_t>(cut.contacts.count - LEVEL_CONTACTS_MAX);
            if (!LeaveOutNear(PlaceOf(cut.contacts), tooMany)) break;
            cut = WorldOf(tree);
        }
        cut.hidden = hidden_.size();
        cut.hiddenLeftOut = hiddenAtFirst_ - hidden_.size();
        if (hidden_.empty() && hiddenAtFirst_ > 0)
            cut.notes.push_back("no hidden faces find room in the level: its walls can be crept through");
        return cut;
    }

    CutWorld WorldOf(Tree tree) const {
        for (const LeafFace& hidden : hidden_)
            tree.leaves[hidden.leaf].push_back(hidden.face);
        CutWorld cut;
        cut.world = EmitWorld(tree, MeshOf(tree, sources_.brushes, sources_.settings.scale), sources_.brushes,
                              sources_.placement);
        cut.counts = CountWorld(cut.world, tree.depth);
        cut.counts.push_back(PlacesToStand(cut.world));
        if (!IsTooLarge(cut)) cut.contacts = MostContacts(cut.world);
        return cut;
    }

    static bool IsTooLarge(const CutWorld& cut) {
        return std::any_of(cut.counts.begin(), cut.counts.end(),
                           [](const Count& count) { return count.value > count.limit; });
    }

    // At their sharp corners the game takes polygons for much larger: where there are none near, those farther away.
    bool LeaveOutNear(const Vec3& place, size_t tooMany) {
        for (double reach = CONTACTS_REACH; reach < 8 * CONTACTS_REACH; reach *= 2) {
            if (LeaveOutSmallest(hidden_, place, reach / sources_.settings.scale, tooMany)) return true;
        }
        return false;
    }

    // False when there are none left.
    bool LeaveOutSome() {
        constexpr size_t SHARE = 16;
        if (hidden_.empty()) return false;
        LeaveOutSmallest(hidden_, hidden_.size() / SHARE + 1);
        return true;
    }

    static bool Fits(const CutWorld& cut) { return !IsTooLarge(cut) && cut.contacts.count <= LEVEL_CONTACTS_MAX; }

    Vec3 PlaceOf(const Contacts& contacts) const {
        return sources_.placement.ToMap({contacts.place[0], contacts.place[1], contacts.place[2]});
    }

    // False: nothing is cut there any more.
    bool CoarsenAround(const Contacts& contacts) {
        const Vec3 place = PlaceOf(contacts);
        double tolerance = level_;
        for (const CoarsePlace& coarse : coarse_) {
            if (Length(coarse.place - place) * grid_.scale < COARSE_RADIUS / 2)
                tolerance = std::max(tolerance, coarse.tolerance);
        }
        if (tolerance >= UNCUT) return false;
        coarse_.push_back({place, Raised(Raised(tolerance))});
        return true;
    }

    void Note(CutWorld& cut) const {
        if (level_ > sources_.settings.lightTolerance) {
            cut.notes.push_back(fmt::format(
                "to keep the limits, the light grid is as coarse as light_tolerance {:.1f} makes it", level_));
        }
        for (const CoarsePlace& coarse : coarse_) {
            cut.notes.push_back(fmt::format("the light grid is coarser around {}, where a player touches many polygons",
                                            PlaceText(coarse.place)));
        }
    }

    const Tree& tree_;
    const LightSources& sources_;
    std::vector<LeafFace> hidden_;
    size_t hiddenAtFirst_;
    LightGrid grid_;
    std::optional<SurfaceLight> light_;
    double level_ = sources_.settings.lightTolerance;  // tolerance everywhere, light bytes
    std::vector<CoarsePlace> coarse_;
};

}  // namespace

CutWorld CutForLight(const Tree& tree, std::vector<LeafFace> hidden, const LightSources& sources,
                     const BakeOptions& bake) {
    return LightCuts(tree, std::move(hidden), sources).Make(bake);
}
