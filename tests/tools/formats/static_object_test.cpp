#include "formats/error.h"
#include "formats/light_files.h"
#include "formats/static_object_file.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

StaticObjectFile SmallSky() {
    StaticObjectFile sky;
    sky.points = {{-1, -1, 10}, {1, -1, 10}, {0, 1, 10}};
    sky.polygons = {{17, {{0, 0, 1}, -10}, {{0, 128, -256}, {1, 0, 0.5F}, {2, 1.5F, 2}}}};
    return sky;
}

template <class Action>
std::string Refusal(Action action) {
    try {
        action();
    } catch (const ContentError& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace

TEST(StaticObjectFormat, ReadsBackWhatItWroteAndNothingElse) {
    const std::vector<uint8_t> bytes = EncodeStaticObject(SmallSky(), "file");
    ASSERT_EQ(bytes.size(), 20U + 3 * 12 + 36 + 3 * 10);
    EXPECT_EQ(EncodeStaticObject(DecodeStaticObject(bytes, "file"), "file"), bytes);
    const std::pair<const char*, std::function<void(std::vector<uint8_t>&)>> damages[] = {
        {"not a static object", [](auto& b) { b[0] = 'e'; }},
        {"version 8", [](auto& b) { b[7] = 8; }},
        {"too short", [](auto& b) { b.resize(19); }},
        {"counts ask for", [](auto& b) { b.resize(60); }},
        {"1 bytes after", [](auto& b) { b.push_back(0); }},
        {"polygon 0 uses point 3 of 3", [](auto& b) { b[20 + 36 + 36] = 3; }},
        {"points, 2000 at most", [](auto& b) { b[12] = 0xFF; }},
    };
    for (const auto& [text, damage] : damages) {
        std::vector<uint8_t> damaged = bytes;
        damage(damaged);
        EXPECT_NE(Refusal([&] { DecodeStaticObject(damaged, "file"); }).find(text), std::string::npos) << text;
    }
}

TEST(StaticObjectFormat, WritesNothingBeyondTheGamesTables) {
    StaticObjectFile sky = SmallSky();
    sky.polygons[0].corners.resize(13);
    EXPECT_NE(Refusal([&] { EncodeStaticObject(sky, "file"); }).find("13 corners"), std::string::npos);
    LightSlotFile lights;
    lights.slots.resize(151);
    EXPECT_NE(Refusal([&] { EncodeLightSlots(lights); }).find("151 slots of 150"), std::string::npos);
}
