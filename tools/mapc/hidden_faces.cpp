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

namespace {

// Among those for which `counts` holds. False when there are none.
template <class Test>
bool LeaveOutSmallestOf(std::vector<LeafFace>& faces, size_t count, Test counts) {
    std::vector<std::pair<double, size_t>> areas;
    for (size_t i = 0; i < faces.size(); ++i) {
        if (counts(faces[i])) areas.emplace_back(WindingArea(faces[i].face.winding), i);
    }
    if (areas.empty()) return false;
    std::sort(areas.begin(), areas.end());
    areas.resize(std::min(count, areas.size()));
    std::vector<char> isLeftOut(faces.size());
    for (const auto& [area, i] : areas)
        isLeftOut[i] = 1;
    std::vector<LeafFace> kept;
    for (size_t i = 0; i < faces.size(); ++i) {
        if (!isLeftOut[i]) kept.push_back(std::move(faces[i]));
    }
    faces = std::move(kept);
    return true;
}

}  // namespace

void LeaveOutSmallest(std::vector<LeafFace>& faces, size_t count) {
    LeaveOutSmallestOf(faces, count, [](const LeafFace&) { return true; });
}

bool LeaveOutSmallest(std::vector<LeafFace>& faces, const Vec3& place, double reach, size_t count) {
    const Box near = Box{place, place}.Grown(reach);
    return LeaveOutSmallestOf(faces, count, [&](const LeafFace& hidden) { return hidden.face.box.Touches(near, 0); });
}
