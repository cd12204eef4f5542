#include "mapc/sealing.h"

#include "mapc/box_grid.h"
#include "mapc/counts.h"
#include "mapc/holes.h"

#include <array>

namespace {

constexpr size_t PORTALS_MAX = 1'000'000;  // the largest of our levels has 3,092
constexpr double MARGIN = 64;              // empty space around the map, map units
constexpr double PORTAL_AREA_MIN = 0.1;    // what is smaller lets nothing through
constexpr double SLIT = 0.2;               // engine units; what is narrower is no leak
// Area of a face that must border on flooded space; of a smaller face, half of it must.
constexpr double SEEN_AREA_MIN = 0.05;
constexpr double SOLID_TOLERANCE = 0.01;  // a point on the seam of two brushes is solid
// In front of a face, the planes of its neighbours may cut off a space so thin that the tolerance makes it solid. What
// is this far in front counts, too.
constexpr double SEEN_DISTANCE = 5 * SOLID_TOLERANCE;

std::array<Plane, 6> SidesOf(const Box& box) {
    std::array<Plane, 6> sides;  // facing inwards
    for (int axis = 0; axis < 3; ++axis) {
        Vec3 normal;
        normal[axis] = 1;
        sides[static_cast<size_t>(axis * 2)] = {normal, box.min[axis]};
        sides[static_cast<size_t>(axis * 2 + 1)] = {-normal, -box.max[axis]};
    }
    return sides;
}

}  // namespace

SealedSpace::SealedSpace(std::vector<Face> sealing, Brushes& brushes, const Vec3& start, double scale)
    : file_(brushes.file), slit_(SLIT / scale), planes_(brushes.planes) {
    Box bounds;
    bounds.Add(start);
    for (const Face& face : sealing)
        bounds.Add(face.box);
    bounds = bounds.Grown(MARGIN);
    tree_ = BuildSealingTree(std::move(sealing), brushes);
    leaves_.resize(tree_.leaves.size());
    std::vector<Plane> hull;
    for (const Plane& side : SidesOf(bounds))
        hull.push_back(side.Flipped());
    MakePortals(0, hull);
    MakeOuterPortals(bounds);
    MarkSolid(brushes);
    if (Flood(start, true) < 0) return;
    if (const int outside = Flood(start, false); outside >= 0) FindLeaks(start, outside);
}

// hull: the planes around the subtree, facing out of it.
void SealedSpace::MakePortals(int child, std::vector<Plane>& hull) {
    if (child < 0) return;
    const TreeNode node = tree_.nodes[static_cast<size_t>(child)];
    const Plane& plane = planes_[node.plane];
    Winding winding = BaseWinding(plane);
    for (size_t i = 0; i < hull.size() && !winding.empty(); ++i)
        KeepBack(winding, hull[i]);
    if (!winding.empty()) {
        std::vector<std::pair<int, Winding>> fronts;
        std::vector<std::pair<int, Winding>> backs;
        FilterDown(node.front, std::move(winding), fronts);
        for (auto& [front, piece] : fronts) {
            backs.clear();
            FilterDown(node.back, std::move(piece), backs);
            for (const auto& [back, portal] : backs)
                Join(front, back, portal);
        }
    }
    hull.push_back(plane.Flipped());
    MakePortals(node.front, hull);
    hull.back() = plane;
    MakePortals(node.back, hull);
    hull.pop_back();
}

void SealedSpace::MakeOuterPortals(const Box& bounds) {
    const std::array<Plane, 6> sides = SidesOf(bounds);
    for (const Plane& side : sides) {
        Winding winding = BaseWinding(side);
        for (const Plane& other : sides) {
            if (&other != &side && !winding.empty()) KeepBack(winding, other.Flipped());
        }
        std::vector<std::pair<int, Winding>> pieces;
        FilterDown(0, std::move(winding), pieces);
        for (const auto& [leaf, piece] : pieces) {
            LeafSpace& space = leaves_[static_cast<size_t>(leaf)];
            space.outside = true;
            space.centreSum = space.centreSum + WindingCentre(piece);
            ++space.centreCount;
        }
    }
}

void SealedSpace::FilterDown(int child, Winding winding, std::vector<std::pair<int, Winding>>& pieces) const {
    while (child >= 0) {
        const TreeNode& node = tree_.nodes[static_cast<size_t>(child)];
        Winding front;
        Winding back;
        SplitWinding(winding, planes_[node.plane], front, back);
        if (!front.empty() && !back.empty()) {
            FilterDown(node.back, std::move(back), pieces);
            winding = std::move(front);
            child = node.front;
        } else {
            child = back.empty() ? node.front : node.back;
        }
    }
    pieces.emplace_back(~child, std::move(winding));
}

void SealedSpace::Join(int front, int back, const Winding& winding) {
    const Vec3 centre = WindingCentre(winding);
    const bool passable = WindingArea(winding) >= PORTAL_AREA_MIN;
    const int portal = static_cast<int>(portals_.size());
    CheckCounts(file_, {{"openings between the spaces around the brushes", portals_.size(), PORTALS_MAX}});
    if (passable)
        portals_.push_back(
            {{front, back}, centre, WindingArea(winding), WindingBox(winding), WindingWidth(winding) < slit_});
    for (const int leaf : {front, back}) {
        LeafSpace& space = leaves_[static_cast<size_t>(leaf)];
        if (passable) space.portals.push_back(portal);
        space.centreSum = space.centreSum + centre;
        ++space.centreCount;
    }
}

// A leaf is wholly solid or wholly empty, so a few points inside it tell which. More than one is asked, because one
// could lie just where tolerances decide.
void SealedSpace::MarkSolid(const Brushes& brushes) {
    std::vector<Box> boxes;
    for (const Brush& brush : brushes.list) {
        if (brush.kind == BrushKind::Solid) boxes.push_back(brush.box);
    }
    const BoxGrid grid(boxes);  // solid brushes come first in the list
    const auto isSolid = [&](const Vec3& p) {
        return grid.AnyAt(p, SOLID_TOLERANCE, [&](int i) {
            return brushes.list[static_cast<size_t>(i)].Holds(p, brushes.planes, SOLID_TOLERANCE);
        });
    };
    for (LeafSpace& leaf : leaves_) {
        if (leaf.centreCount == 0) {
            leaf.solid = true;  // no volume
            continue;
        }
        const Vec3 centre = leaf.centreSum * (1.0 / leaf.centreCount);
        int votes = isSolid(centre) ? 1 : -1;
        for (size_t i = 0; i < leaf.portals.size() && i < 4; ++i) {
            votes += isSolid((centre + portals_[static_cast<size_t>(leaf.portals[i])].centre) * 0.5) ? 1 : -1;
        }
        leaf.solid = votes > 0;
    }
}

// Breadth first, so that a leak is reported along a short way. closed: portals that let nothing through, or empty.
// Returns the first leaf on the outside that is reached, or -1.
int SealedSpace::Flood(const Vec3& start, bool throughSlits, const std::vector<char>& closed) {
    for (LeafSpace& leaf : leaves_) {
        leaf.flooded = false;
        leaf.cameFrom = -1;
    }
    int outside = -1;
    std::vector<int> queue{static_cast<int>(LeafAt(tree_, planes_, start))};
    leaves_[static_cast<size_t>(queue[0])].flooded = true;
    for (size_t at = 0; at < queue.size(); ++at) {
        const LeafSpace& leaf = leaves_[static_cast<size_t>(queue[at])];
        if (leaf.outside && outside < 0) outside = queue[at];
        for (const int number : leaf.portals) {
            const Portal& portal = portals_[static_cast<size_t>(number)];
            const int next = portal.leaf[portal.leaf[0] == queue[at] ? 1 : 0];
            LeafSpace& space = leaves_[static_cast<size_t>(next)];
            if (space.solid || space.flooded || (portal.isSlit && !throughSlits)) continue;
            if (!closed.empty() && closed[static_cast<size_t>(number)]) continue;
            space.flooded = true;
            space.cameFrom = number;
            queue.push_back(next);
        }
    }
    return outside;
}

// Leaves the space flooded through all holes.
void SealedSpace::FindLeaks(const Vec3& start, int firstOutside) {
    const std::vector<Vec3> shortest = PathTo(firstOutside, start);
    std::vector<Opening> openings;
    std::vector<size_t> portalOf;  // of each opening
    for (size_t i = 0; i < portals_.size(); ++i) {
        const Portal& portal = portals_[i];
        const auto isSolid = [&](int leaf) { return leaves_[static_cast<size_t>(leaf)].solid; };
        if (portal.isSlit || isSolid(portal.leaf[0]) || isSolid(portal.leaf[1])) continue;
        openings.push_back({{portal.leaf[0], portal.leaf[1]}, portal.area, portal.box});
        portalOf.push_back(i);
    }
    std::vector<char> isOutside;
    for (const LeafSpace& leaf : leaves_)
        isOutside.push_back(leaf.outside);
    const auto holes = FindHoles(openings, isOutside, static_cast<int>(LeafAt(tree_, planes_, start)));
    std::vector<char> closed(portals_.size());
    const auto close = [&](const std::vector<int>& hole, bool isClosed) {
        for (const int opening : hole)
            closed[portalOf[static_cast<size_t>(opening)]] = isClosed;
    };
    for (const std::vector<int>& hole : holes)
        close(hole, true);
    for (const std::vector<int>& hole : holes) {
        close(hole, false);
        if (const int outside = Flood(start, false, closed); outside >= 0) leakPaths_.push_back(PathTo(outside, start));
        close(hole, true);
    }
    if (leakPaths_.empty()) leakPaths_.push_back(shortest);
    Flood(start, false);
}

std::vector<Vec3> SealedSpace::PathTo(int leaf, const Vec3& start) const {
    const LeafSpace& end = leaves_[static_cast<size_t>(leaf)];
    std::vector<Vec3> path{end.centreSum * (1.0 / end.centreCount)};
    while (leaves_[static_cast<size_t>(leaf)].cameFrom >= 0) {
        const Portal& portal = portals_[static_cast<size_t>(leaves_[static_cast<size_t>(leaf)].cameFrom)];
        path.push_back(portal.centre);
        leaf = portal.leaf[portal.leaf[0] == leaf ? 1 : 0];
    }
    path.push_back(start);
    std::reverse(path.begin(), path.end());
    return Straightened(path);
}

// Led from each point straight on to the farthest one that is seen from it.
std::vector<Vec3> SealedSpace::Straightened(const std::vector<Vec3>& path) const {
    std::vector<Vec3> straight{path[0]};
    for (size_t at = 0; at + 1 < path.size();) {
        size_t next = path.size() - 1;
        while (next > at + 1 && !IsOpen(0, path[at], path[next]))
            --next;
        straight.push_back(path[next]);
        at = next;
    }
    return straight;
}

bool SealedSpace::IsOpen(int child, const Vec3& from, const Vec3& to) const {
    if (child < 0) return !leaves_[static_cast<size_t>(~child)].solid;
    const TreeNode& node = tree_.nodes[static_cast<size_t>(child)];
    const double fromDistance = planes_[node.plane].Distance(from);
    const double toDistance = planes_[node.plane].Distance(to);
    const int nearChild = fromDistance >= 0 ? node.front : node.back;
    const int farChild = fromDistance >= 0 ? node.back : node.front;
    if ((fromDistance >= 0) == (toDistance >= 0)) return IsOpen(nearChild, from, to);
    const Vec3 middle = from + (to - from) * (fromDistance / (fromDistance - toDistance));
    return IsOpen(nearChild, from, middle) && IsOpen(farChild, middle, to);
}

bool SealedSpace::IsSeen(const Face& face) const {
    const double areaMin = std::min(SEEN_AREA_MIN, WindingArea(face.winding) * 0.5);
    if (SeesFlood(0, face.winding, face.plane, areaMin)) return true;
    Winding ahead = face.winding;
    for (Vec3& corner : ahead)
        corner = corner + planes_[face.plane].normal * SEEN_DISTANCE;
    return SeesFlood(0, ahead, face.plane, areaMin);
}

bool SealedSpace::SeesFlood(int child, const Winding& winding, int plane, double areaMin) const {
    if (child < 0) {
        return leaves_[static_cast<size_t>(~child)].flooded && WindingArea(winding) >= areaMin;
    }
    const TreeNode& node = tree_.nodes[static_cast<size_t>(child)];
    Winding front;
    Winding back;
    if ((node.plane | 1) != (plane | 1)) SplitWinding(winding, planes_[node.plane], front, back);
    if (front.empty() && back.empty()) {
        const bool facesFront = Dot(planes_[plane].normal, planes_[node.plane].normal) > 0;
        return SeesFlood(facesFront ? node.front : node.back, winding, plane, areaMin);
    }
    return (!front.empty() && SeesFlood(node.front, front, plane, areaMin)) ||
           (!back.empty() && SeesFlood(node.back, back, plane, areaMin));
}
