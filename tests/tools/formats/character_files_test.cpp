#include "formats/character_files.h"

#include "formats/error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

CharacterAnimation Nod() {
    CharacterAnimation animation;
    animation.length = 90;
    animation.commands = {0, COMMAND_PUSH, 1, COMMAND_POP, 2};
    animation.bones.resize(3);
    for (size_t b = 0; b < 3; ++b) {
        animation.bones[b].pivot = {0.1 * static_cast<double>(b), 2, -3};
        animation.bones[b].rotations = {{10, {1, 0, 0, 0}}, {50, {0.6, 0.8, 0, 0}}, {90, {1, 0, 0, 0}}};
        animation.bones[b].positions = {{10, {0, -10, 0}}};
    }
    return animation;
}

}  // namespace

TEST(CharacterFileLayout, AnimationsThatTheGameCouldNotPlayAreRefused) {
    const struct {
        const char* fault;
        std::function<void(CharacterAnimation&)> make;
    } rows[] = {
        {"starts late", [](auto& a) { a.bones[1].rotations[0].time = 11; }},
        {"keys fall", [](auto& a) { a.bones[1].rotations[1].time = 95; }},
        {"key beyond the length", [](auto& a) { a.length = 80; }},
        {"no keys", [](auto& a) { a.bones[2].positions.clear(); }},
        {"no number", [](auto& a) { a.bones[2].pivot[1] = 1e308 * 10; }},
        {"pop without push", [](auto& a) { a.commands[1] = COMMAND_POP; }},
        {"push without pop", [](auto& a) { a.commands[3] = COMMAND_PUSH; }},
        {"bone that is not there", [](auto& a) { a.commands[4] = 3; }},
    };
    EXPECT_EQ(DecodeAnimation(EncodeAnimation(Nod()), "a"), Nod());
    for (const auto& row : rows) {
        CharacterAnimation animation = Nod();
        row.make(animation);
        EXPECT_THROW(DecodeAnimation(EncodeAnimation(animation), "a"), ContentError) << row.fault;
    }
}
