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

float DistanceFade(uint32_t point) {
    if (GlideActive()) return 1.0f;
    if (!(FadeDistance > 0.0f)) return 0.0f;
    float z = WorldGeometry.viewPoints[point].z;
    if (z > FadeDistance) {
        z = FadeDistance;
    } else if (z < NEAREST_FADE) {
        z = NEAREST_FADE;
    }
    return 1.0f - z / FadeDistance;
}

float LevelToIntensity(float level) {
    if (!(level > 0.0f)) return IntensityTable[0];  // also when level is not a number
    if (level > BRIGHTEST_LEVEL) return IntensityTable[BRIGHTEST_LEVEL];
    return IntensityTable[static_cast<int32_t>(level)];
}

float LightToIntensity(int8_t raw, float fade) {
    return LevelToIntensity((LightBias + static_cast<float>(raw) * LightScale) * fade);
}

// Polygons beyond the table have no light bytes of their own: 0.
int8_t CornerLightByte(uint32_t entry) {
    if (entry >= CORNER_LIGHT_POLYGONS * 8) return 0;
    return WorldGeometry.cornerLightStamps[entry] == FrameCount ? CornerLight[entry] : CornerLightBase[entry];
}

float PointIntensity(uint32_t point) {
    if (IntensityCacheStamps[point] != FrameCount) {
        const bool raised = WorldGeometry.pointLightStamps[point] == FrameCount;
        const int8_t raw = raised ? WorldGeometry.pointLight[point] : WorldGeometry.pointLightBase[point];
        IntensityCacheStamps[point] = FrameCount;
        IntensityCache[point] = LightToIntensity(raw, DistanceFade(point));
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
    const int count = record.cornerCount;
    if (record.shading == SHADE_CORNER_LIGHT) {
        // Kept as it is: a polygon with more than eight corners reads the bytes of the next one.
        const uint32_t firstEntry = static_cast<uint32_t>(polygon) * 8;
        for (int k = 0; k < count; ++k) {
            const int8_t raw = CornerLightByte(firstEntry + static_cast<uint32_t>(k));
            corners[k].intensity = LightToIntensity(raw, DistanceFade(corners[k].point));
        }
    } else if (record.shading == SHADE_POINT_LIGHT) {
        for (int k = 0; k < count; ++k)
            corners[k].intensity = PointIntensity(corners[k].point);
    }
}

void ShadeCharacterPoint(uint32_t point) {
    const Vec3& normal = WorldGeometry.points[point].normal;
    float sum = 0.0f;
    for (int32_t i = 0; i < CharacterLightCount; ++i) {
        const CharacterLight& light = CharacterLightList[i];
        const float d = light.direction.x * normal.x + light.direction.y * normal.y + light.direction.z * normal.z;
        if (d > 0.0f) sum += light.strength * LightScale * d * NEUTRAL_LEVEL;
    }
    IntensityCache[point] = LevelToIntensity((LightBias + sum) * DistanceFade(point));
}
