#include "mapconvert/map_writer.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

std::string FaceText(const MapFace& face) {
    std::string text;
    for (const Vec3& p : face.points)
        text += fmt::format("( {} {} {} ) ", p.x, p.y, p.z);
    text += face.texture;
    if (face.hasAxes) {
        text += fmt::format(" [ {} {} {} {} ]", face.uAxis.x, face.uAxis.y, face.uAxis.z, face.uOffset);
        text += fmt::format(" [ {} {} {} {} ]", face.vAxis.x, face.vAxis.y, face.vAxis.z, face.vOffset);
    } else {
        text += fmt::format(" {} {}", face.uOffset, face.vOffset);
    }
    return text + fmt::format(" {} {} {}\n", face.rotation, face.uScale, face.vScale);
}

std::string LineText(const SourceLine& line) {
    return line.number > 0 ? fmt::format("// line {}\n", line.number) : "";
}

std::string EntityText(const MapEntity& entity) {
    std::string text = LineText(entity.line) + "{\n";
    for (const MapKey& key : entity.keys)
        text += fmt::format("\"{}\" \"{}\"\n", key.name, key.value);
    for (const MapBrush& brush : entity.brushes) {
        text += LineText(brush.line) + "{\n";
        for (const MapFace& face : brush.faces)
            text += FaceText(face);
        text += "}\n";
    }
    return text + "}\n";
}

}  // namespace

std::string MapText(const MapFile& map) {
    std::string text = "// Game: tarnwick\n";
    for (const MapEntity& entity : map.entities)
        text += EntityText(entity);
    return text;
}
