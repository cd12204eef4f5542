#include "input/devices.h"
#include "input/key_bindings.h"
#include "input/keys.h"
#include "machine/game.h"
#include "machine/settings.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

constexpr uint8_t W = KeyCode("W"), X = KeyCode("X"), UP = KeyCode("UP"), CTRL = KeyCode("RCONTROL"), J = KeyCode("J");
constexpr HostKey KEYS[] = {{"run", "Run", UP, {}}, {"fire", "Fire", CTRL, {X}}, {"lines", "Lines", W, {}}};
enum { RUN, FIRE, LINES };
using Codes = std::vector<uint8_t>;

class KeyBindings : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        game_.keys = KEYS;
        before_ = std::exchange(CurrentGame, &game_);
        StartKeyBindings();
        ResetSettings();
    }

    void TearDown() override {
        ResetSettings();
        CurrentGame = before_;
    }

    // What the game hears while the key of the keyboard is held.
    static Codes Heard(uint8_t key, MouseUse where) {
        SetMouseUse(where);
        DeviceKey(KeySource::Keyboard, key, true);
        uint8_t keys[KEY_COUNT];
        TakeKeys(keys);
        DeviceKey(KeySource::Keyboard, key, false);
        Codes heard;
        for (size_t code = 0; code < KEY_COUNT; ++code)
            if (keys[code] != 0) heard.push_back(static_cast<uint8_t>(code));
        return heard;
    }

    static Codes InLevel(uint8_t key) { return Heard(key, MouseUse::WithButton); }

    HostGame game_ = *CurrentGame;
    const HostGame* before_ = nullptr;
};

TEST_F(KeyBindings, AKeyThatIsChosenDoesOneThingInALevelAndTheUsualElsewhere) {
    EXPECT_EQ(InLevel(X), Codes{CTRL});
    BindKey(RUN, W);
    EXPECT_EQ(InLevel(W), Codes{UP});
    EXPECT_EQ(InLevel(UP), Codes{});
    EXPECT_EQ(KeysOf(LINES), Codes{}) << "its key is taken";
    EXPECT_EQ(Heard(UP, MouseUse::None), Codes{UP}) << "before a level";
    EXPECT_EQ(Heard(W, MouseUse::None), Codes{W});
    BindKey(LINES, X);
    EXPECT_EQ(KeysOf(FIRE), Codes{CTRL}) << "one of two is left";
    BindKey(FIRE, W);
    EXPECT_EQ(KeysOf(RUN), Codes{}) << "the key has gone to another action";
    EXPECT_EQ(InLevel(W), Codes{CTRL});
    BindKey(FIRE, DIK_ESCAPE);
    EXPECT_EQ(KeysOf(FIRE), Codes{W});
    DeviceKey(KeySource::Pad, UP, true);
    EXPECT_EQ(InLevel(J), (Codes{J, UP})) << "controllers keep their keys";
    DeviceKey(KeySource::Pad, UP, false);
    ResetKeyBindings();
    EXPECT_EQ(KeysOf(RUN), Codes{UP});
    EXPECT_EQ(KeysOf(FIRE), (Codes{CTRL, X}));
}

TEST_F(KeyBindings, AreKeptInTheSettingsAndADamagedOneIsTold) {
    const std::string text = "key_run = J\nkey_fire = none\nkey_lines = ESCAPE\nvolume = 70\n";
    const std::vector<std::string> problems = ReadSettings(text, "s.txt");
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_TRUE(problems[0].starts_with("s.txt:3: key_lines must be one of: usual, none, A")) << problems[0];
    EXPECT_EQ(KeysOf(RUN), Codes{J});
    EXPECT_EQ(KeysOf(FIRE), Codes{});
    EXPECT_EQ(KeysOf(LINES), Codes{W});
    BindKey(FIRE, J);
    EXPECT_EQ(UpdateSettings(text),
              "key_run = none\nkey_fire = J\n# not understood: key_lines = ESCAPE\nvolume = 70\n");
    SetSetting(Setting::Volume, 10);  // as the command line does
    const std::string fresh = UpdateSettings("");
    EXPECT_NE(fresh.find("\nkey_fire = J\nkey_lines = usual\n"), std::string::npos) << fresh;
    EXPECT_NE(fresh.find("\nvolume = 100\n"), std::string::npos) << fresh;
    EXPECT_TRUE(ReadSettings(fresh, "").empty());
}

}  // namespace
