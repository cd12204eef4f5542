#include "world/light_map.h"

#include "app/app_tables.h"
#include "character/character_tables.h"
#include "memory/fatal.h"
#include "memory/files.h"
#include "platform/timer.h"
#include "records/view_facts.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "world/world_tables.h"

namespace {

constexpr uint32_t VALUES_BYTES = 28;  // size of the values behind the light bytes in the file
constexpr float NEAREST_FADE = 1.0f;

// What the accelerator multiplies the file's value by.
constexpr float GLIDE_FIRST_LEVEL_CONTRAST = 0.8f;
constexpr float GLIDE_CONTRAST = 0.3f;

int16_t ReadSignedWord() {
    return static_cast<int16_t>(ReadWord());
}

float ReadDistance() {
    return static_cast<float>(static_cast<int32_t>(ReadLong()));
}

void ReadColour(int16_t colour[3]) {
    for (int i = 0; i < 3; ++i)
        colour[i] = ReadSignedWord();
}

// False, and nothing is changed: the counts do not fit the tables or the file.
bool ReadLightBytes() {
    for (int i = 0; i < 3; ++i)
        ReadLong();
    const uint32_t points = ReadLong();
    const uint32_t polygons = ReadLong();
    if (points > WorldGeometry.file.points + SPARE_POINTS || polygons > CORNER_LIGHT_POLYGONS) return false;
    if (BytesLeft() < points + 8 * polygons + VALUES_BYTES) return false;
    return ReadBlock(WorldGeometry.pointLightBase, points) && ReadBlock(CornerLightBase, 8 * polygons);
}

void ReadLevelValues() {
    LightLevel = static_cast<float>(ReadSignedWord()) / 100.0f;
    LightContrast = static_cast<float>(ReadSignedWord()) / 100.0f;
    FadeDistance = ReadDistance();
    FarDistance = ReadDistance();
    if (GlideActive()) {
        // Kept as it is: the accelerator replaces the level's distances and uses less of its contrast.
        LightContrast *= CurrentLevel == 0 ? GLIDE_FIRST_LEVEL_CONTRAST : GLIDE_CONTRAST;
        FogNearDistance = GLIDE_FOG_NEAR;
        FadeDistance = GLIDE_FADE_DISTANCE;
        FarDistance = GLIDE_FAR_DISTANCE;
    }
    LightMode = ReadSignedWord();
    std::printf("LightMode = %d \n", LightMode);
    PlainBrightening = ReadSignedWord();
    ReadColour(BrightColour);
    ReadColour(DarkColour);
}

Float4 DistanceFade(Float4 z) {
    if (GlideActive()) return All(1);
    if (!(FadeDistance > 0.0f)) return Float4{};
    const Float4 nearest = z < NEAREST_FADE ? All(NEAREST_FADE) : z;
    return 1.0f - (z > FadeDistance ? All(FadeDistance) : nearest) / FadeDistance;
}

// Levels that are not numbers count as 0.
Float4 LevelToIntensity(Float4 level) {
    const Int4 entries = TruncToInts(Least(Greatest(level, Float4{}), All(BRIGHTEST_LEVEL)));
    return Float4{IntensityTable[entries[0]], IntensityTable[entries[1]], IntensityTable[entries[2]],
                  IntensityTable[entries[3]]};
}

Float4 LightToIntensity(Int4 raw, Float4 z) {
    return LevelToIntensity((LightBias + ToFloats(raw) * LightScale) * DistanceFade(z));
}

// The same of one point.
float LightToIntensity(int8_t raw, float z) {
    return LightToIntensity(Int4{raw, 0, 0, 0}, Float4{z, 0, 0, 0})[0];
}

// Kept as it is: the entries behind a polygon's eighth corner are those of the next one.
uint32_t EntryOf(uint32_t polygon, int corner) {
    return polygon * 8 + static_cast<uint32_t>(corner);
}

// Polygons beyond the table have no light bytes of their own: 0.
int8_t CornerLightByte(uint32_t entry) {
    if (entry >= CORNER_LIGHT_POLYGONS * 8) return 0;
    return WorldGeometry.cornerLightStamps[entry] == FrameCount ? CornerLight[entry] : CornerLightBase[entry];
}

int8_t PointLightByte(uint32_t point) {
    const bool isRaised = WorldGeometry.pointLightStamps[point] == FrameCount;
    return isRaised ? WorldGeometry.pointLight[point] : WorldGeometry.pointLightBase[point];
}

float PointIntensity(uint32_t point) {
    if (IntensityCacheStamps[point] != FrameCount) {
        IntensityCacheStamps[point] = FrameCount;
        IntensityCache[point] = LightToIntensity(PointLightByte(point), WorldGeometry.viewPoints[point].z);
    }
    return IntensityCache[point];
}

}  // namespace

void LoadLightMap(const char* path) {
    ReadStream = OpenGameFile(path, "rb");
    // Kept as it is: a missing light map leaves the values of the level before.
    if (!ReadStream) return;
    if (!ReadLightBytes()) {
        CloseReadStream();
        FatalError(0, "Not a valid light map file", path);
    }
    ReadLevelValues();
    CloseReadStream();
}

void ApplyLightLevel() {
    const bool inverted = (LightMode & INVERTED_LIGHT) != 0;
    LightScale = inverted ? -LightContrast : LightContrast;
    LightBias = (inverted ? 2.0f - LightLevel : LightLevel) * NEUTRAL_LEVEL;
}

void ShadePolygon(int32_t polygon) {
    const PolyRecord& record = WorldGeometry.polygons[polygon];
    PolyVertex* corners = WorldGeometry.polyVertices + record.firstVertex;
    for (int k = 0; k < record.cornerCount; ++k) {
        const uint32_t point = corners[k].point;
        if (record.shading == SHADE_CORNER_LIGHT)
            corners[k].intensity = LightToIntensity(CornerLightByte(EntryOf(static_cast<uint32_t>(polygon), k)),
                                                    WorldGeometry.viewPoints[point].z);
        else if (record.shading == SHADE_POINT_LIGHT)
            corners[k].intensity = PointIntensity(point);
    }
}

Float4 CornerIntensities(uint32_t polygon, int first, Float4 depths) {
    const PolyRecord& record = WorldGeometry.polygons[polygon];
    const PolyVertex* corners = WorldGeometry.polyVertices + record.firstVertex;
    const int k[] = {first, OrFirst(first + 1, record.cornerCount), OrFirst(first + 2, record.cornerCount),
                     OrFirst(first + 3, record.cornerCount)};
    const auto lit = [&](auto raw) {
        return LightToIntensity(Int4{raw(k[0]), raw(k[1]), raw(k[2]), raw(k[3])}, depths);
    };
    if (record.shading == SHADE_CORNER_LIGHT) return lit([&](int n) { return CornerLightByte(EntryOf(polygon, n)); });
    if (record.shading == SHADE_POINT_LIGHT) return lit([&](int n) { return PointLightByte(corners[n].point); });
    return Float4{corners[k[0]].intensity, corners[k[1]].intensity, corners[k[2]].intensity, corners[k[3]].intensity};
}

void ShadeCharacterPoint(uint32_t point) {
    const Vec3& normal = WorldGeometry.points[point].normal;
    float sum = 0.0f;
    for (int32_t i = 0; i < CharacterLightCount; ++i) {
        const CharacterLight& light = CharacterLightList[i];
        const float d = light.direction.x * normal.x + light.direction.y * normal.y + light.direction.z * normal.z;
        const float level = light.strength * LightScale * d * NEUTRAL_LEVEL;
        sum += d > 0.0f ? level : 0.0f;
    }
    const float z = WorldGeometry.viewPoints[point].z;
    IntensityCache[point] = LevelToIntensity((LightBias + sum) * DistanceFade(Float4{z, 0, 0, 0}))[0];
}
