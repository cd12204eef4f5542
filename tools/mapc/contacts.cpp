// The engine's contact query, tried wherever the player can stand or leap.
#include "mapc/geometry.h"
#include "mapc/limits.h"
#include "records/walking_facts.h"

namespace {

constexpr double RADIUS = CONTACTS_REACH;
constexpr size_t PLACES_MAX = 4'000'000;  // fifteen floors as large as a level may be
constexpr double SAMPLE_STEP = 128;       // between places tried on a floor
// Heights of the sphere above the floor that are tried: standing, and in a leap.
constexpr double HEIGHTS[] = {MOVE_SPHERE_RADIUS + 1, 150, 300};
constexpr double ROOT_2 = 1.414213562;

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

class ContactAudit {
public:
    explicit ContactAudit(const WorldFile& world) : world_(world) {
        for (const WorldPlane& plane : world.planes) {
            planes_.push_back({Widened(plane.normal), -static_cast<double>(plane.offset)});
        }
        for (const WorldPolygon& polygon : world.polygons)
            polygons_.push_back(ShapeOf(polygon));
        leafRadii_.resize(world.leaves.size());
        nodeRadii_.resize(world.nodes.size());
        for (size_t i = 0; i < world.leaves.size(); ++i)
            leafRadii_[i] = LeafRadius(i, Widened(world.leaves[i].centre));
        MeasureNode(0);
    }

    Contacts Most() {
        for (size_t i = 0; i < polygons_.size(); ++i) {
            if (-planes_[world_.polygons[i].plane].normal.y >= LANDING_SLOPE) TryFloor(i);
        }
        return most_;
    }

private:
    struct Shape {
        std::vector<Vec3> corners;
        std::vector<Plane> edges;  // facing out of the polygon
    };

    Shape ShapeOf(const WorldPolygon& polygon) const {
        Shape shape;
        for (size_t k = 0; k < polygon.cornerCount; ++k) {
            shape.corners.push_back(Widened(world_.points[world_.corners[polygon.firstCorner + k].point].position));
        }
        for (size_t k = 0; k < shape.corners.size(); ++k) {
            const Vec3 along = shape.corners[(k + 1) % shape.corners.size()] - shape.corners[k];
            const Vec3 out = Cross(along, planes_[polygon.plane].normal);
            const double length = Length(out);
            if (length > 0) shape.edges.push_back({out * (1 / length), Dot(out, shape.corners[k]) / length});
        }
        return shape;
    }

    double LeafRadius(size_t leaf, const Vec3& centre) const {
        double most = 0;
        const size_t first = world_.leaves[leaf].firstPolygon;
        for (size_t i = first; i < first + world_.leaves[leaf].polygonCount; ++i) {
            for (const Vec3& p : polygons_[i].corners)
                most = std::max(most, LengthSquared(p - centre));
        }
        return std::sqrt(most);
    }

    // Leaves below a node; sets the node's radius on the way.
    std::vector<size_t> MeasureNode(int child) {
        if (child < 0) return {static_cast<size_t>(~child)};
        const WorldNode& node = world_.nodes[static_cast<size_t>(child)];
        std::vector<size_t> leaves = MeasureNode(node.front);
        const std::vector<size_t> others = MeasureNode(node.back);
        leaves.insert(leaves.end(), others.begin(), others.end());
        double most = 0;
        for (const size_t leaf : leaves)
            most = std::max(most, LeafRadius(leaf, Widened(node.centre)));
        nodeRadii_[static_cast<size_t>(child)] = most;
        return leaves;
    }

    void TryFloor(size_t polygon) {
        Box box;
        for (const Vec3& p : polygons_[polygon].corners)
            box.Add(p);
        TryAbove(box.Centre());
        for (double x = std::ceil(box.min.x / SAMPLE_STEP) * SAMPLE_STEP; x <= box.max.x; x += SAMPLE_STEP) {
            for (double z = std::ceil(box.min.z / SAMPLE_STEP) * SAMPLE_STEP; z <= box.max.z; z += SAMPLE_STEP) {
                const Plane& plane = planes_[world_.polygons[polygon].plane];
                const double y = (plane.dist - plane.normal.x * x - plane.normal.z * z) / plane.normal.y;
                if (IsInside(polygons_[polygon], {x, y, z}, 0)) TryAbove({x, y, z});
            }
        }
    }

    void TryAbove(const Vec3& floor) {
        for (const double height : HEIGHTS) {
            const Vec3 centre = floor + Vec3{0, height, 0};
            const int count = CountFrom(0, centre);
            if (count <= most_.count) continue;
            most_ = {count, {static_cast<float>(centre.x), static_cast<float>(centre.y), static_cast<float>(centre.z)}};
        }
    }

    static bool IsInside(const Shape& shape, const Vec3& p, double tolerance) {
        return std::all_of(shape.edges.begin(), shape.edges.end(),
                           [&](const Plane& edge) { return edge.Distance(p) <= tolerance; });
    }

    int CountFrom(int child, const Vec3& centre) const {
        if (child < 0) return CountInLeaf(static_cast<size_t>(~child), centre);
        const size_t i = static_cast<size_t>(child);
        const double distance = LengthSquared(Widened(world_.nodes[i].centre) - centre);
        if (distance > RADIUS * RADIUS + nodeRadii_[i] * nodeRadii_[i]) return 0;
        return CountFrom(world_.nodes[i].front, centre) + CountFrom(world_.nodes[i].back, centre);
    }

    int CountInLeaf(size_t i, const Vec3& centre) const {
        const WorldLeaf& leaf = world_.leaves[i];
        const double reach = leafRadii_[i] * ROOT_2;
        if (LengthSquared(Widened(leaf.centre) - centre) > reach * reach) return 0;
        int count = 0;
        for (size_t k = leaf.firstPolygon; k < size_t{leaf.firstPolygon} + leaf.polygonCount; ++k) {
            const double distance = planes_[world_.polygons[k].plane].Distance(centre);
            if (std::abs(distance) <= RADIUS && IsInside(polygons_[k], centre, RADIUS)) ++count;
        }
        return count;
    }

    const WorldFile& world_;
    std::vector<Plane> planes_;
    std::vector<Shape> polygons_;
    std::vector<double> leafRadii_;
    std::vector<double> nodeRadii_;
    Contacts most_;
};

}  // namespace

Count PlacesToStand(const WorldFile& world) {
    double places = 0;
    for (const WorldPolygon& polygon : world.polygons) {
        if (-static_cast<double>(world.planes[polygon.plane].normal[1]) < LANDING_SLOPE) continue;
        Box box;
        for (size_t k = 0; k < polygon.cornerCount; ++k)
            box.Add(Widened(world.points[world.corners[polygon.firstCorner + k].point].position));
        const Vec3 steps = (box.max - box.min) * (1 / SAMPLE_STEP) + Vec3{1, 1, 1};
        places += steps.x * steps.z;
    }
    return {"places to stand", static_cast<size_t>(places), PLACES_MAX};
}

Contacts MostContacts(const WorldFile& world) {
    return ContactAudit(world).Most();
}
