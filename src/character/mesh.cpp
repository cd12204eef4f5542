#include "character/mesh.h"

#include "math/vectors.h"
#include "math/world_planes.h"
#include "memory/fatal.h"
#include "memory/file_fields.h"
#include "memory/files.h"
#include "memory/pool.h"
#include "world/bsp.h"
#include "world/world_tables.h"

#include <cmath>

uint32_t CharPointBase;
uint32_t CharPolyBase;

namespace {

constexpr uint32_t PART_TABLE = 12;
constexpr uint32_t PART_HEADER = 12;
constexpr uint32_t COORDINATES_HEADER = 16;
constexpr uint32_t COORDINATES_ENTRY = 28;

struct MeshPart {
    const uint8_t* image;
    uint32_t pointCount, faceCount;
    uint32_t positions, triangles;  // offsets in the file
};

bool AllFinite(const uint8_t* image, uint32_t offset, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        if (!std::isfinite(FileField<float>(image, offset + 4 * i))) return false;
    }
    return true;
}

// False: something lies outside the file, or an index is outside the part.
bool FindPart(const uint8_t* image, uint32_t bytes, uint32_t& boneCount, MeshPart& part) {
    if (bytes < PART_TABLE + 4) return false;
    boneCount = FileField<uint32_t>(image, 4);
    if (boneCount < 1 || boneCount > BONES_MAX || PART_TABLE + 4 * boneCount > bytes) return false;
    const uint64_t start = FileField<uint32_t>(image, PART_TABLE) & ~3u;
    if (start + PART_HEADER > bytes) return false;
    const auto offset = static_cast<uint32_t>(start);
    part = {image, FileField<uint32_t>(image, offset + 4), FileField<uint32_t>(image, offset + 8), offset + PART_HEADER,
            0};
    if (start + PART_HEADER + 12ull * part.pointCount + 12ull * part.faceCount > bytes) return false;
    part.triangles = part.positions + 12 * part.pointCount;
    for (uint32_t i = 0; i < 3 * part.faceCount; ++i) {
        if (FileField<uint32_t>(image, part.triangles + 4 * i) >= part.pointCount) return false;
    }
    return AllFinite(image, part.positions, 3 * part.pointCount);
}

bool ValidCoordinates(const uint8_t* image, uint32_t bytes, uint32_t faceCount) {
    if (COORDINATES_HEADER + uint64_t{COORDINATES_ENTRY} * faceCount > bytes) return false;
    for (uint32_t j = 0; j < faceCount; ++j) {
        if (!AllFinite(image, COORDINATES_HEADER + COORDINATES_ENTRY * j + 4, 6)) return false;
    }
    return true;
}

void ResetBones(MeshRecord& mesh) {
    for (uint32_t b = 0; b < mesh.boneCount; ++b) {
        BoneRecord& bone = mesh.bones[b];
        TransformIdentity(bone.world);
        bone.rotation = {1.0, 0.0, 0.0, 0.0};
        bone.position[0] = bone.position[1] = bone.position[2] = 0.0;
    }
}

void AppendPoints(const MeshPart& part) {
    for (uint32_t i = 0; i < part.pointCount; ++i) {
        WorldGeometry.points[CharPointBase + i].position = FileField<Vec3>(part.image, part.positions + 12 * i);
    }
}

void AppendTriangle(const MeshPart& part, const uint8_t* coordinates, uint32_t face) {
    GeometryCounts& used = WorldGeometry.used;
    const uint32_t entry = COORDINATES_HEADER + COORDINATES_ENTRY * face;
    PolyRecord& polygon = WorldGeometry.polygons[CharPolyBase + face];
    polygon = {};
    polygon.cornerCount = 3;
    polygon.texture = static_cast<uint8_t>(FileField<uint32_t>(coordinates, entry) + CHAR_TEXTURE_BASE);
    polygon.shading = SHADE_CORNER_LIGHT;
    polygon.firstVertex = static_cast<uint16_t>(used.polyVertices);
    polygon.plane = static_cast<uint16_t>(used.planes);
    for (uint32_t k = 0; k < 3; ++k) {
        const uint32_t point = FileField<uint32_t>(part.image, part.triangles + 4 * (3 * face + k));
        WorldGeometry.polyVertices[used.polyVertices + k] = {CharPointBase + point,
                                                             FileField<float>(coordinates, entry + 4 + 8 * k),
                                                             FileField<float>(coordinates, entry + 8 + 8 * k), 0.0f};
    }
    ComputePolyPlane(static_cast<int32_t>(CharPolyBase + face));
    used.polyVertices += 3;
    used.planes += 1;
}

}  // namespace

void LoadMesh(const char* meshPath, MeshRecord& mesh, const char* coordinatesPath) {
    auto* image = static_cast<uint8_t*>(LoadMalloc(meshPath));
    if (!image) FatalError(0, "No Mesh File Found", meshPath);
    auto* coordinates = static_cast<uint8_t*>(LoadMalloc(coordinatesPath));
    if (!coordinates) FatalError(0, "No TUV File Found", coordinatesPath);

    MeshPart part;
    const auto meshBytes = static_cast<uint32_t>(FileSize(meshPath));
    const auto coordinatesBytes = static_cast<uint32_t>(FileSize(coordinatesPath));
    if (!FindPart(image, meshBytes, mesh.boneCount, part)) FatalError(0, "Not a valid mesh file", meshPath);
    if (!ValidCoordinates(coordinates, coordinatesBytes, part.faceCount)) {
        FatalError(0, "Not a valid TUV file", coordinatesPath);
    }
    mesh.bones = static_cast<BoneRecord*>(PoolMalloc(mesh.boneCount * uint32_t{sizeof(BoneRecord)}));
    const GeometryCounts needed = {part.faceCount, part.faceCount, part.pointCount, 3 * part.faceCount};
    if (!mesh.bones || !GeometryHasRoomFor(needed)) FatalError(0, "No room for the mesh", meshPath);
    ResetBones(mesh);
    mesh.pointCount = static_cast<uint16_t>(part.pointCount);
    mesh.faceCount = static_cast<uint16_t>(part.faceCount);
    mesh.firstPoint = static_cast<uint16_t>(CharPointBase);
    mesh.firstPolygon = static_cast<uint16_t>(CharPolyBase);

    AppendPoints(part);
    for (uint32_t face = 0; face < part.faceCount; ++face)
        AppendTriangle(part, coordinates, face);
    CharPointBase += part.pointCount;
    CharPolyBase += part.faceCount;
    WorldGeometry.used.points = CharPointBase;
    WorldGeometry.used.polygons = CharPolyBase;
    SetStaticMarks();
    PoolFree(coordinates);
    PoolFree(image);
}
