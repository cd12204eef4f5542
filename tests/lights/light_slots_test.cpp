// lights.alt, the types of lights frame by frame, and the light bytes they raise.
#include "lights/light_slots.h"

#include "camera/camera_tables.h"
#include "math/random.h"
#include "platform/timer.h"
#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/world_tables.h"

#include <algorithm>
#include <limits>

namespace {

constexpr uint32_t POINTS = 1200;

struct Contribution {
    uint16_t target;
    float weight;
};

void AppendBig(std::vector<uint8_t>& bytes, size_t value) {
    bytes.insert(bytes.end(), {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)});
}

template <class Value>
void Append(std::vector<uint8_t>& bytes, const Value& value) {
    const auto* first = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

std::vector<uint8_t> SlotFile(const std::vector<LightSlot>& slots, const std::vector<Contribution>& points = {},
                              const std::vector<Contribution>& corners = {}) {
    std::vector<uint8_t> bytes;
    AppendBig(bytes, slots.size());
    AppendBig(bytes, points.size());
    AppendBig(bytes, 0xABCD);
    for (const LightSlot& slot : slots)
        Append(bytes, slot);
    for (const auto& list : {points, corners}) {
        for (const Contribution& entry : list)
            Append(bytes, entry.target);
        for (const Contribution& entry : list)
            Append(bytes, entry.weight);
    }
    return bytes;
}

LightSlot Slot(int32_t type) {
    LightSlot slot = {};
    slot.type = type;
    return slot;
}

// A world of POINTS points on a line, one unit apart, of base light 20, and one wall.
class Lights : public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
        std::vector<Corners> strips;
        for (uint32_t i = 0; i < POINTS / 4; ++i) {
            const auto x = static_cast<float>(4 * i);
            strips.push_back({{x, 0, 0}, {x + 1, 0, 0}, {x + 2, 0, 0}, {x + 3, 0, 0}});
        }
        world_.AddLeaf(strips);
        world_.Publish();
        std::fill_n(WorldGeometry.pointLightBase, POINTS, int8_t{20});
        std::fill_n(CornerLightBase, 16, int8_t{30});
        Load({});
        FrameCount = 5;
        RandState = RAND_SEED;
    }

    void Load(const std::vector<LightSlot>& slots, const std::vector<Contribution>& points = {},
              const std::vector<Contribution>& corners = {}) {
        LoadLightSlots(FileOf(SlotFile(slots, points, corners)));
    }

    int LightAt(uint32_t point) {
        const bool raised = WorldGeometry.pointLightStamps[point] == FrameCount;
        return raised ? WorldGeometry.pointLight[point] : WorldGeometry.pointLightBase[point];
    }

    void NextFrame() {
        ++FrameCount;
        UpdateLights();
    }

    std::vector<float> Intensities(int frames) {
        std::vector<float> intensities;
        for (int i = 0; i < frames; ++i) {
            NextFrame();
            intensities.push_back(LightSlots[0].intensity);
        }
        return intensities;
    }

    TinyWorld world_;
};

using Row = std::vector<float>;

TEST_F(Lights, RampBlinkAndFlickerFrameByFrame) {
    LightSlot ramp = Slot(LIGHT_RAMP);
    ramp.intensity = 0.5f;
    ramp.highIntensity = 1.0f;
    ramp.lowIntensity = 0.25f;
    ramp.stepUp = 0.375f;
    ramp.stepDown = -0.5f;
    Load({ramp});
    EXPECT_EQ(Intensities(6), (Row{0.875f, 1.0f, 0.5f, 0.25f, 0.625f, 1.0f})) << "a turning frame only clamps";

    LightSlot blink = ramp;
    blink.type = LIGHT_BLINK;
    blink.timer = 1;
    blink.phase = 1;
    blink.highTime = 2;
    blink.lowTime = 3;
    Load({blink});
    EXPECT_EQ(Intensities(7), (Row{0.25f, 0.25f, 0.25f, 1.0f, 1.0f, 0.25f, 0.25f}));

    Load({Slot(LIGHT_FLICKER)});
    RandState = 77;
    std::vector<float> expected;
    while (expected.size() < 40) {
        const float intensity = static_cast<float>((Rand() & 127) + 256) / 128.0f;
        expected.insert(expected.end(), static_cast<size_t>(std::max(1, Rand() & 7)), intensity);
    }
    expected.resize(40);
    RandState = 77;
    EXPECT_EQ(Intensities(40), expected);
}

TEST_F(Lights, AddUpFromTheBaseInEachFrameWithinTheRangeOfAByte) {
    LightSlot lamp = Slot(LIGHT_RAMP);
    lamp.intensity = lamp.highIntensity = lamp.lowIntensity = 1.0f;
    lamp.pointCount = 3;
    lamp.cornerCount = 1;
    lamp.firstCorner = 2;
    LightSlot second = lamp;
    second.firstPoint = 2;
    second.pointCount = 1;
    Load({lamp, second}, {{7, 0.5f}, {8, 3.0f}, {9, -0.255f}}, {{0, 0}, {0, 0}, {11, 0.25f}});
    for (int frame = 0; frame < 2; ++frame) {
        NextFrame();
        EXPECT_EQ(LightAt(7), 20 + 32);
        EXPECT_EQ(LightAt(8), 127);
        EXPECT_EQ(LightAt(9), 0) << "20 - 16.32 is 3, and then less than nothing";
        EXPECT_EQ(CornerLight[11], 30 + 16 + 16);
        EXPECT_EQ(WorldGeometry.cornerLightStamps[11], FrameCount);
    }
    ++FrameCount;
    EXPECT_EQ(LightAt(7), 20) << "no light yet in this frame";
}

TEST_F(Lights, DynamicLightsHaveADimmestIntensityAndAThousandPointsAtMost) {
    LightSlot light = Slot(LIGHT_DYNAMIC);
    light.position = {100, 0, 0};
    light.radius = 8.0f;
    light.radiusSquared = 64.0;
    light.intensity = 0.5f;
    Load({light});
    for (const auto& [intensity, touches] : {std::pair{0.0099f, false}, {0.01f, true}}) {
        LightSlots[0].intensity = intensity;
        NextFrame();
        EXPECT_EQ(WorldGeometry.pointLightStamps[100] == FrameCount, touches) << intensity;
    }
    LightSlots[0].intensity = 100.0f;
    LightSlots[0].radius = 5000.0f;
    LightSlots[0].radiusSquared = 25e6;
    NextFrame();
    EXPECT_EQ(LightAt(999), 127);
    EXPECT_EQ(LightAt(1000), 20) << "a thousand points at most";

    light.type = LIGHT_DYNAMIC_RAMP;
    light.stepUp = 0.25f;
    light.highIntensity = 2.0f;
    Load({light});
    NextFrame();
    EXPECT_EQ(float{LightSlots[0].intensity}, 0.75f);
    EXPECT_EQ(LightAt(107), 20 + 64) << "whatever weight and intensity";
}

// A point must lie within the radius along each axis, and within the root of its square in the whole.
TEST_F(Lights, BothRadiiOfADynamicLightCount) {
    LightSlot light = Slot(LIGHT_DYNAMIC);
    light.intensity = 0.5f;
    const struct {
        Vec3 position;
        float radius;
        double radiusSquared;
        int raised;
    } rows[] = {{{100, 0, 0}, 9, 1e6, 32},  {{88, 0, 0}, 9, 1e6, 0},   {{100, 12, 0}, 9, 1e6, 0},
                {{100, 0, -12}, 9, 1e6, 0}, {{98, 2, -1}, 100, 9, 31}, {{106, 0, 0}, 8, 64, 8},
                {{98, 2, -1}, 100, 8.9, 0}};
    for (const auto& row : rows) {
        light.position = row.position;
        light.radius = row.radius;
        light.radiusSquared = row.radiusSquared;
        Load({light});
        NextFrame();
        EXPECT_EQ(LightAt(100), 20 + row.raised) << &row - rows;
    }
}

TEST_F(Lights, PointsOfSkyAndCharacterAreLeftAlone) {
    LightSlot light = Slot(LIGHT_DYNAMIC);
    light.intensity = 1.0f;
    light.radius = 8.0f;
    light.radiusSquared = 64.0;
    Load({light});
    WorldGeometry.used.points = POINTS + 1;
    WorldGeometry.points[POINTS].position = {0, 0, 0};
    NextFrame();
    EXPECT_EQ(LightAt(0), 20 + 64);
    EXPECT_NE(WorldGeometry.pointLightStamps[POINTS], FrameCount);
}

TEST_F(Lights, SlotsAreHandedOutFromTheSecondOn) {
    CameraPos = {1, 2, 3};
    LightSlots[70].intensity = 0.25f;
    for (int32_t slot = 1; slot < LIGHT_SLOT_COUNT; ++slot)
        EXPECT_EQ(SpawnLight(), slot);
    EXPECT_EQ(SpawnLight(), -1);
    EXPECT_EQ(int32_t{LightSlots[0].type}, LIGHT_FREE);
    FreeLight(70);
    EXPECT_EQ(SpawnLight(), 70);
    const LightSlot spawned = LightSlots[70];
    EXPECT_EQ(int32_t{spawned.type}, LIGHT_DYNAMIC);
    EXPECT_EQ(Vec3{spawned.position}.z, 3.0f);
    EXPECT_EQ(double{spawned.radiusSquared}, 250000.0);
    EXPECT_EQ(float{spawned.radius}, 500.0f);
    EXPECT_EQ(float{spawned.intensity}, 1.0f);
    LoadLightSlots("there is no such file");
    EXPECT_EQ(SpawnLight(), 1) << "a level load frees them all";
}

TEST_F(Lights, OnlyWhatATypeUsesIsLookedAt) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    LightSlot wild = {};
    wild.firstPoint = wild.firstCorner = std::numeric_limits<int32_t>::max();
    wild.pointCount = wild.cornerCount = std::numeric_limits<int32_t>::max();
    wild.highIntensity = wild.lowIntensity = wild.stepUp = wild.stepDown = none;
    std::vector<LightSlot> slots(4, wild);
    slots[0].type = LIGHT_FREE;
    slots[0].radius = slots[0].intensity = none;
    slots[1].type = 7;
    slots[2].type = LIGHT_DYNAMIC;
    slots[3].type = LIGHT_FLICKER;
    slots[3].pointCount = 0;
    slots[3].cornerCount = 1;
    slots[3].firstCorner = 1;
    Load(slots, {{0xFFFF, none}, {0xFFFF, none}}, {{0xFFFF, none}, {0xFFFF, 1}});
    NextFrame();
    EXPECT_EQ(CornerLight[0xFFFF], 127) << "of a polygon that does not exist";
    EXPECT_EQ(LightAt(POINTS - 1), 20);
}

TEST_F(Lights, ADamagedFileIsRefused) {
    LightSlot slot = Slot(LIGHT_RAMP);
    slot.pointCount = slot.cornerCount = 1;
    LightSlot outside = slot, overflowing = slot, unreal = slot, passive = slot, ramp = slot, blink = slot;
    outside.firstPoint = 1;
    overflowing.cornerCount = std::numeric_limits<int32_t>::max();
    const float none = std::numeric_limits<float>::quiet_NaN();
    unreal.radius = passive.intensity = ramp.stepDown = blink.lowIntensity = none;
    passive.type = 8;
    blink.type = LIGHT_BLINK;
    std::vector<uint8_t> shorter = SlotFile({slot}, {{0, 1}}, {{0, 1}});
    shorter.pop_back();
    const std::vector<uint8_t> files[] = {SlotFile({outside}, {{0, 1}}, {{0, 1}}),
                                          SlotFile({overflowing}, {{0, 1}}, {{0, 1}}),
                                          SlotFile({unreal}, {{0, 1}}, {{0, 1}}),
                                          SlotFile({slot}, {{POINTS, 1}}, {{0, 1}}),
                                          SlotFile({slot}, {{0, 1}}, {{0, none}}),
                                          SlotFile({slot}, {{0, none}}, {{0, 1}}),
                                          SlotFile({passive}),
                                          SlotFile({ramp}, {{0, 1}}, {{0, 1}}),
                                          SlotFile({blink}, {{0, 1}}, {{0, 1}}),
                                          SlotFile(std::vector<LightSlot>(151, Slot(LIGHT_FREE))),
                                          {0, 0, 0xFF, 0xFF, 0, 0},
                                          shorter};
    for (const std::vector<uint8_t>& file : files)
        EXPECT_EQ(FatalOf([&] { LoadLightSlots(FileOf(file)); }), "0: Not a valid light slot file") << &file - files;
}

}  // namespace
