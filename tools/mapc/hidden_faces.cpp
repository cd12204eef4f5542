#include "mapc/hidden_faces.h"

Face HiddenFace(Winding winding, Brushes& brushes, const Material& clip) {
    const Vec3 sum = WindingNormal(winding);
    const Vec3 normal = sum * (1 / Length(sum));
    MapFace face;
    face.texture = clip.name;
    brushes.textures.push_back(TextureOf(face, normal, clip));
    PlaceTexture(brushes.textures.back(), {&winding});
    const int plane = brushes.planes.Find(normal, Dot(normal, winding[0]));
    return {std::move(winding), plane, static_cast<int>(brushes.textures.size()) - 1, true};
}

bool LeaveOutSmallest(std::vector<LeafFace>& faces, const Vec3& place, double reach, size_t count) {
    std::vector<double> areas;
    const Box near = Box{place, place}.Grown(reach);
    for (const LeafFace& hidden : faces) {
        if (hidden.face.box.Touches(near, 0)) areas.push_back(WindingArea(hidden.face.winding));
    }
    if (areas.empty()) return false;
    count = std::min(count, areas.size());
    std::nth_element(areas.begin(), areas.begin() + static_cast<std::ptrdiff_t>(count - 1), areas.end());
    const double most = areas[count - 1];
    std::erase_if(faces, [&](const LeafFace& hidden) {
        return hidden.face.box.Touches(near, 0) && WindingArea(hidden.face.winding) <= most;
    });
    return true;
}
