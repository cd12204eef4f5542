#include "lights/light_slots.h"

#include "camera/camera_tables.h"
#include "math/convert.h"
#include "math/random.h"
#include "memory/fatal.h"
#include "memory/files.h"
#include "platform/timer.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>

LightSlot LightSlots[LIGHT_SLOT_COUNT];

namespace {

constexpr float LEVEL_SCALE = NEUTRAL_LEVEL;  // light bytes that an intensity of 1 adds
constexpr float DIMMEST = 0.01f;              // dynamic lights of less intensity raise no light byte
constexpr int LIST_ROOM = 35000;
static_assert(LIGHT_CONTRIBUTION_MAX <= LIST_ROOM);
static_assert(CORNER_NUMBERS <= CORNER_LIGHT_POLYGONS * CORNER_LIGHT_CORNERS);

struct ContributionList {
    uint16_t targets[LIST_ROOM];
    float weights[LIST_ROOM];
};
ContributionList PointContributions;
ContributionList CornerContributions;

struct GatheredPoint {
    uint16_t point;
    float weight;
};
GatheredPoint Gathered[GATHERED_POINTS_MAX];

bool ReadContributions(ContributionList& list, uint32_t count) {
    return ReadBlock(list.targets, count * uint32_t{sizeof list.targets[0]}) &&
           ReadBlock(list.weights, count * uint32_t{sizeof list.weights[0]});
}

// Kept as it is: corner numbers need no check. All 16-bit numbers lie inside the tables, whether the world has the
// polygon or not.
bool RunIsValid(const ContributionList& list, int32_t first, int32_t count, int32_t listLength, uint32_t targetCount) {
    if (count <= 0) return true;
    if (first < 0 || first > listLength - count) return false;
    for (int32_t i = first; i < first + count; ++i) {
        if (list.targets[i] >= targetCount || !std::isfinite(list.weights[i])) return false;
    }
    return true;
}

template <typename... Numbers>
bool AllFinite(Numbers... numbers) {
    return (std::isfinite(numbers) && ...);
}

bool ContributionsAreValid(const LightSlot& slot, int32_t listLength) {
    return RunIsValid(PointContributions, slot.firstPoint, slot.pointCount, listLength, WorldGeometry.file.points) &&
           RunIsValid(CornerContributions, slot.firstCorner, slot.cornerCount, listLength, CORNER_NUMBERS);
}

// Checks only the fields that the slot's type uses. Every used slot lights the character by place, radius, intensity.
bool IsValid(const LightSlot& slot, int32_t listLength) {
    const int32_t type = slot.type;
    if (type == LIGHT_FREE) return true;
    const Vec3 place = slot.position;
    if (!AllFinite(place.x, place.y, place.z, slot.radius, slot.radiusSquared, slot.intensity)) return false;
    const bool ramps = type == LIGHT_RAMP || type == LIGHT_DYNAMIC_RAMP;
    if ((ramps || type == LIGHT_BLINK) && !AllFinite(slot.highIntensity, slot.lowIntensity)) return false;
    if (ramps && !AllFinite(slot.stepUp, slot.stepDown)) return false;
    const bool contributes = type == LIGHT_RAMP || type == LIGHT_BLINK || type == LIGHT_FLICKER;
    return !contributes || ContributionsAreValid(slot, listLength);
}

bool ReadLightSlots() {
    const auto slots = static_cast<int16_t>(ReadWord());
    const auto contributions = static_cast<int16_t>(ReadWord());
    ReadWord();
    if (slots < 0 || slots > LIGHT_SLOT_COUNT || contributions < 0) return false;
    if (!ReadBlock(LightSlots, static_cast<uint32_t>(slots) * uint32_t{sizeof(LightSlot)})) return false;
    const auto count = static_cast<uint32_t>(contributions);
    return ReadContributions(PointContributions, count) && ReadContributions(CornerContributions, count) &&
           std::all_of(LightSlots, LightSlots + slots,
                       [&](const LightSlot& slot) { return IsValid(slot, contributions); });
}

// The first light that raises a byte in a frame starts from the base; the others add to it.
void Raise(int8_t& current, int8_t base, uint16_t& stamp, float amount) {
    const int8_t start = stamp == FrameCount ? current : base;
    const int32_t raised = TruncToInt(amount + static_cast<float>(start));
    current = static_cast<int8_t>(std::clamp(raised, 0, BRIGHTEST_LEVEL));
    stamp = FrameCount;
}

void RaisePoint(uint32_t point, float amount) {
    Raise(WorldGeometry.pointLight[point], WorldGeometry.pointLightBase[point], WorldGeometry.pointLightStamps[point],
          amount);
}

void RaiseCorner(uint32_t entry, float amount) {
    Raise(CornerLight[entry], CornerLightBase[entry], WorldGeometry.cornerLightStamps[entry], amount);
}

void ApplyContributions(const LightSlot& slot) {
    const float scale = slot.intensity;
    for (int32_t k = 0; k < slot.pointCount; ++k) {
        const int32_t i = slot.firstPoint + k;
        RaisePoint(PointContributions.targets[i], PointContributions.weights[i] * scale * LEVEL_SCALE);
    }
    for (int32_t k = 0; k < slot.cornerCount; ++k) {
        const int32_t i = slot.firstCorner + k;
        RaiseCorner(CornerContributions.targets[i], CornerContributions.weights[i] * scale * LEVEL_SCALE);
    }
}

// Lists the world's points within the radius and returns their number. Points of sky and character are left out.
// Kept as it is: it ends with the first thousand points.
int GatherPoints(const LightSlot& slot) {
    const Vec3 place = slot.position;
    const float radius = slot.radius;
    const double radiusSquared = slot.radiusSquared;
    int count = 0;
    for (uint32_t i = 0; i < WorldGeometry.file.points && count < GATHERED_POINTS_MAX; ++i) {
        const Vec3& point = WorldGeometry.points[i].position;
        const float dx = std::fabs(place.x - point.x);
        const float dy = std::fabs(place.y - point.y);
        const float dz = std::fabs(place.z - point.z);
        if (!(dx < radius && dy < radius && dz < radius)) continue;
        const float distanceSquared = dx * dx + dy * dy + dz * dz;
        if (!(double{distanceSquared} <= radiusSquared)) continue;
        Gathered[count++] = {static_cast<uint16_t>(i), 1.0f - std::sqrt(distanceSquared) / radius};
    }
    return count;
}

// Raises each point within the slot's radius by (how near it is, 0..1) x scale + flat.
void RaisePointsAround(const LightSlot& slot, float scale, float flat) {
    if (!(slot.intensity >= DIMMEST)) return;
    const int count = GatherPoints(slot);
    for (int i = 0; i < count; ++i)
        RaisePoint(Gathered[i].point, Gathered[i].weight * scale + flat);
}

void Ramp(LightSlot& slot) {
    if (slot.phase == 0) {
        slot.intensity += slot.stepUp;
        if (slot.intensity > slot.highIntensity) {
            slot.intensity = slot.highIntensity;
            slot.phase = 1;
        }
    } else if (slot.phase == 1) {
        slot.intensity += slot.stepDown;
        if (slot.lowIntensity > slot.intensity) {
            slot.intensity = slot.lowIntensity;
            slot.phase = 0;
        }
    }
}

// A file's timer may have any value, so the subtraction may wrap.
// Kept as it is: lights count frames, not ticks.
void CountDown(LightSlot& slot) {
    slot.timer = static_cast<int32_t>(static_cast<uint32_t>(slot.timer) - 1);
}

void Blink(LightSlot& slot) {
    CountDown(slot);
    if (slot.timer >= 1) return;
    if (slot.phase == 1) {
        slot.phase = 0;
        slot.intensity = slot.lowIntensity;
        slot.timer = slot.lowTime;
    } else if (slot.phase == 0) {
        slot.phase = 1;
        slot.intensity = slot.highIntensity;
        slot.timer = slot.highTime;
    }
}

void Flicker(LightSlot& slot) {
    CountDown(slot);
    if (slot.timer > 0) return;
    slot.intensity = (static_cast<float>(Rand() & FLICKER_RANGE) + FLICKER_BASE) / FLICKER_SCALE;
    slot.timer = Rand() & FLICKER_TIME_BITS;
}

void Advance(LightSlot& slot) {
    switch (slot.type) {
    case LIGHT_RAMP:
    case LIGHT_DYNAMIC_RAMP: Ramp(slot); break;
    case LIGHT_BLINK: Blink(slot); break;
    case LIGHT_FLICKER: Flicker(slot); break;
    default: break;
    }
}

void RaiseBytes(const LightSlot& slot) {
    switch (slot.type) {
    case LIGHT_RAMP:
    case LIGHT_BLINK:
    case LIGHT_FLICKER: ApplyContributions(slot); break;
    case LIGHT_DYNAMIC: RaisePointsAround(slot, slot.intensity * LEVEL_SCALE, 0.0f); break;
    case LIGHT_DYNAMIC_RAMP: RaisePointsAround(slot, 0.0f, LEVEL_SCALE); break;
    default: break;
    }
}

}  // namespace

void LoadLightSlots(const char* path) {
    for (LightSlot& slot : LightSlots)
        slot.type = LIGHT_FREE;
    ReadStream = OpenGameFile(path, "rb");
    if (!ReadStream) return;
    const bool valid = ReadLightSlots();
    CloseReadStream();
    if (!valid) FatalError(0, "Not a valid light slot file", path);
}

void UpdateLights() {
    for (LightSlot& slot : LightSlots) {
        Advance(slot);
        RaiseBytes(slot);
    }
}

void RaiseLightBytes(const LightSlot (&slots)[LIGHT_SLOT_COUNT]) {
    for (const LightSlot& slot : slots)
        RaiseBytes(slot);
}

int32_t SpawnLight() {
    // Kept as it is: slot 0 is never handed out.
    for (int32_t i = 1; i < LIGHT_SLOT_COUNT; ++i) {
        LightSlot& slot = LightSlots[i];
        if (slot.type != LIGHT_FREE) continue;
        slot.type = LIGHT_DYNAMIC;
        slot.position = CameraPos;
        slot.radius = SHOT_LIGHT_RADIUS;
        slot.radiusSquared = double{SHOT_LIGHT_RADIUS} * SHOT_LIGHT_RADIUS;
        slot.intensity = 1.0f;
        return i;
    }
    return -1;
}

void SetLightPosition(int32_t slot, float x, float y, float z) {
    if (slot >= 0) LightSlots[slot].position = {x, y, z};
}

void FreeLight(int32_t slot) {
    if (slot >= 0) LightSlots[slot].type = LIGHT_FREE;
}
