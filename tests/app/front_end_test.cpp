// The way from the first picture to a level and a renderer, or out.
#include "app/front_end.h"

#include "app/app_tables.h"
#include "host/dinput.h"
#include "machine.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* TITLE = "ShowBitmap FrontEnd\\Title.Bmp";
constexpr const char* OPTIONS = "ShowBitmap FrontEnd\\Options.Bmp";
constexpr const char* LOAD_SAVE = "ShowBitmap FrontEnd\\LoadSave.Bmp";
constexpr const char* LANGUAGE = "ShowBitmap FrontEnd\\Lang.Bmp";
constexpr const char* LEVELS = "ShowBitmap FrontEnd\\Select01.bmp";
constexpr const char* RENDERERS = "ShowBitmap FrontEnd\\Select02.bmp";

// The keys at each poll after the one that precedes the first picture.
uint8_t RunWithKeys(const std::vector<Keys>& polls) {
    Fake.polls = {{}};
    Fake.polls.insert(Fake.polls.end(), polls.begin(), polls.end());
    const uint8_t mode = RunFrontEnd();
    EXPECT_TRUE(Fake.polls.empty()) << "it ended early";
    return mode;
}

TEST(FrontEnd, LeadsThroughLevelAndRendererToAGame) {
    EXPECT_EQ(RunWithKeys({{DIK_SPACE, DIK_ESCAPE}, {DIK_F3}, {DIK_F11}}), MODE_START);
    EXPECT_EQ(CurrentLevel, 2);
    EXPECT_EQ(UseGlide, 0);
    EXPECT_EQ(Fake.Among({"OpenDisplay", "ClearSurface", "ShowBitmap", "PresentDisplay", "CloseDisplay"}),
              (Calls{"OpenDisplay 640 480 16", TITLE, "PresentDisplay",              //
                     "ClearSurface", "PresentDisplay", LEVELS, "PresentDisplay",     //
                     "ClearSurface", "PresentDisplay", RENDERERS, "PresentDisplay",  //
                     "ClearSurface", "PresentDisplay", "CloseDisplay"}));
}

TEST(FrontEnd, ChoosesTheLastLevelHeldAndTheRendererThatGoesDown) {
    constexpr int DIK_F9 = 0x43, DIK_F10 = 0x44;
    struct Row {
        std::vector<Keys> polls;
        int level, accelerator;
    };
    const Row rows[] = {
        {{{DIK_F1}, {DIK_F11}}, 0, 0},
        {{{DIK_F7}, {DIK_F11, DIK_F12}}, 6, 1},
        {{{DIK_F7, DIK_F2}, {DIK_F12}}, 6, 1},
        {{{DIK_F8, DIK_F4}, {}, {DIK_F11}}, 3, 0},
        {{{DIK_F8}, {DIK_F9}, {DIK_F10}, {DIK_F11}, {DIK_F2}, {DIK_F11}}, 1, 0},  // four choose no level
        {{{DIK_F12, DIK_F1}, {DIK_F12}, {}, {DIK_F12}}, 7, 1},                    // F12 is still held
        {{{DIK_F12}, {DIK_F11, DIK_F12}}, 7, 0},
    };
    for (const auto& [polls, level, accelerator] : rows) {
        std::vector<Keys> all = polls;
        all.insert(all.begin(), {DIK_SPACE});
        RunWithKeys(all);
        EXPECT_EQ(CurrentLevel, level);
        EXPECT_EQ(UseGlide, accelerator) << level;
    }
}

TEST(FrontEnd, EscapeOnAChoiceReturnsToTheFirstPicture) {
    // From the levels, from the renderers, and the level is asked again.
    RunWithKeys(
        {{DIK_SPACE}, {DIK_ESCAPE}, {}, {DIK_SPACE}, {DIK_F7}, {DIK_ESCAPE}, {}, {DIK_SPACE}, {}, {DIK_F4}, {DIK_F11}});
    EXPECT_EQ(CurrentLevel, 3);
    EXPECT_EQ(Fake.Among({"ShowBitmap"}), (Calls{TITLE, LEVELS, TITLE, LEVELS, RENDERERS, TITLE, LEVELS, RENDERERS}));
}

TEST(FrontEnd, QuitsOnTheStrokeOfAKey) {
    for (const int key : {DIK_ESCAPE, DIK_LWIN, DIK_RWIN, DIK_APPS}) {
        Fake.held = {key};  // from the game
        Fake.polls = {{key}, {key}, {}, {key}};
        EXPECT_EQ(RunFrontEnd(), MODE_QUIT) << key;
        EXPECT_TRUE(Fake.polls.empty());
        EXPECT_EQ(Fake.calls.back(), "CloseDisplay");
    }
}

TEST(FrontEnd, ChangesThePictureEightSecondsAfterItWasShown) {
    // The clock at each pass after the first picture, and the picture that pass shows.
    const std::pair<DWORD, const char*> passes[] = {{7999, ""},  {8000, OPTIONS},   {15999, ""},    {17500, LOAD_SAVE},
                                                    {25499, ""}, {25500, LANGUAGE}, {33500, TITLE}, {41500, OPTIONS}};
    for (const DWORD start : {0u, 0xFFFFFF00u}) {
        Fake = {};
        Fake.clock = start;
        Fake.polls = {{}};
        Calls expected = {TITLE};
        for (const auto& [milliseconds, picture] : passes) {
            Fake.polls.push_back({});
            if (*picture != 0) expected.push_back(picture);
        }
        Fake.polls.push_back({DIK_ESCAPE});
        const auto* pass = std::begin(passes);
        Fake.onCall = [&](const std::string& call) {
            if (call == "PollMouse" && Fake.Count(call) > 1 && pass != std::end(passes))
                Fake.clock = start + pass++->first;
        };
        EXPECT_EQ(RunFrontEnd(), MODE_QUIT);
        EXPECT_EQ(Fake.Among({"ShowBitmap"}), expected);
    }
}

}  // namespace
