#include "mapc/ceilings.h"

#include "mapc/box_grid.h"

#include <optional>

namespace {

// In engine units.
constexpr double NARROW = 40;  // what is narrower than this is a ceiling only as the rim of one: else a beam
constexpr double THIN = 24;    // not even that
constexpr double RIM = 16;     // a ceiling and its rim are no farther apart
constexpr double STEP = 48;    // between the places below a ceiling that are looked at
constexpr double LOW = 32;     // less room than this between slab and floor, and nobody would get through

// Height of the face straight above or below the place; nothing where it is not.
std::optional<double> HeightAt(const Face& face, const Plane& plane, const Vec3& p) {
    const double height = (plane.dist - plane.normal.x * p.x - plane.normal.y * p.y) / plane.normal.z;
    const Vec3 at{p.x, p.y, height};
    for (size_t i = 0; i < face.winding.size(); ++i) {
        const Vec3& from = face.winding[i];
        const Vec3 out = Cross(face.winding[(i + 1) % face.winding.size()] - from, plane.normal);
        if (Dot(at - from, out) > 0) return std::nullopt;
    }
    return height;
}

class SlabMaker {
public:
    SlabMaker(const std::vector<Face>& faces, Brushes& brushes, double scale, double roomMax)
        : faces_(faces), brushes_(brushes), unit_(1 / scale), roomMax_(roomMax), grid_(BoxesOf(faces)) {}

    std::vector<Face> Make(const Material& clip) {
        std::vector<const Face*> wide, narrow;
        for (const Face& face : faces_) {
            if (IsCeiling(face) && IsJumpedInto(face))
                (WindingWidth(face.winding) < NARROW * unit_ ? narrow : wide).push_back(&face);
        }
        const auto continues = [&](const Face* face) {
            return std::any_of(wide.begin(), wide.end(),
                               [&](const Face* other) { return other->box.Touches(face->box, RIM * unit_); });
        };
        std::vector<const Face*> ceilings = wide;
        std::copy_if(narrow.begin(), narrow.end(), std::back_inserter(ceilings), continues);
        std::vector<Face> slabs;
        for (const Face* face : ceilings) {
            Winding winding = face->winding;
            for (Vec3& p : winding)
                p.z -= SLAB_DROP * unit_;
            slabs.push_back(HiddenFace(std::move(winding), brushes_, clip));
        }
        return slabs;
    }

private:
    static std::vector<Box> BoxesOf(const std::vector<Face>& faces) {
        std::vector<Box> boxes;
        for (const Face& face : faces) {
            boxes.push_back(face.box);
            boxes.back().max.z = MAP_EXTENT;  // so that it is found from above
        }
        return boxes;
    }

    bool IsCeiling(const Face& face) const {
        const FaceTexture& texture = brushes_.textures[static_cast<size_t>(face.texture)];
        return brushes_.planes[face.plane].normal.z <= -double{LANDING_SLOPE} && !face.hidden && !texture.smooth &&
               !(texture.material->flags & MATERIAL_CUTOUT) && WindingWidth(face.winding) >= THIN * unit_;
    }

    // Whether there is a floor below from which a jump passes the ceiling, and from which a slab leaves room to walk.
    bool IsJumpedInto(const Face& ceiling) const {
        const Plane plane = brushes_.planes[ceiling.plane];
        const double step = STEP * unit_;
        for (double x = ceiling.box.min.x + step / 2; x < ceiling.box.max.x; x += step) {
            for (double y = ceiling.box.min.y + step / 2; y < ceiling.box.max.y; y += step) {
                const std::optional<double> height = HeightAt(ceiling, plane, {x, y, 0});
                if (!height) continue;
                const double room = RoomBelow({x, y, *height}) / unit_;
                if (room >= SLAB_DROP + LOW && room < roomMax_) return true;
            }
        }
        return false;
    }

    // From the place down to the floor; infinite where something else comes first.
    double RoomBelow(const Vec3& p) const {
        double least = std::numeric_limits<double>::infinity();
        bool isFloor = false;
        grid_.AnyAt(p, 0, [&](int i) {
            const Face& face = faces_[static_cast<size_t>(i)];
            const Plane& plane = brushes_.planes[face.plane];
            if (face.hidden || plane.normal.z < double{STEEP_SLOPE}) return false;
            const std::optional<double> height = HeightAt(face, plane, p);
            if (!height || p.z - *height < unit_ || p.z - *height >= least) return false;
            least = p.z - *height;
            isFloor = plane.normal.z >= double{LANDING_SLOPE};
            return false;
        });
        return isFloor ? least : std::numeric_limits<double>::infinity();
    }

    const std::vector<Face>& faces_;
    Brushes& brushes_;
    double unit_;     // an engine unit in map units
    double roomMax_;  // engine units between floor and ceiling from which on no head reaches it
    BoxGrid grid_;
};

}  // namespace

std::vector<Face> SlabsBelowCeilings(const std::vector<Face>& faces, Brushes& brushes, const Material& clip,
                                     double scale, int ticks) {
    return SlabMaker(faces, brushes, scale, HEAD_ROOM + JumpHeight(ticks)).Make(clip);
}
