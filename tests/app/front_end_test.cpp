// The way from the first picture to a level and a renderer, or out.
#include "app/front_end.h"

#include "app/app_tables.h"
#include "host/dinput.h"
#include "machine.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;
using Keys = std::set<int>;

constexpr const char* TITLE = "ShowBitmap FrontEnd\\Title.Bmp";
constexpr const char* OPTIONS = "ShowBitmap FrontEnd\\Options.Bmp";
constexpr const char* LOAD_SAVE = "ShowBitmap FrontEnd\\LoadSave.Bmp";
constexpr const char* LANGUAGE = "ShowBitmap FrontEnd\\Lang.Bmp";
constexpr const char* LEVELS = "ShowBitmap FrontEnd\\Select01.bmp";
constexpr const char* RENDERERS = "ShowBitmap FrontEnd\\Select02.bmp";

// The keys at each poll after the one that precedes the first picture.
uint8_t RunWithKeys(std::initializer_list<Keys> polls) {
    Fake.polls = {{}};
    Fake.polls.insert(Fake.polls.end(), polls);
    const uint8_t mode = RunFrontEnd();
    EXPECT_TRUE(Fake.polls.empty()) << "it ended early";
    return mode;
}

TEST(FrontEnd, LeadsThroughLevelAndRendererToAGame) {
    EXPECT_EQ(RunWithKeys({{DIK_SPACE}, {DIK_F3}, {DIK_F11}}), MODE_START);
    EXPECT_EQ(CurrentLevel, 2);
    EXPECT_EQ(UseGlide, 0);
    EXPECT_EQ(Fake.Among({"OpenDisplay", "ClearSurface", "ShowBitmap", "PresentDisplay", "CloseDisplay"}),
              (Calls{"OpenDisplay 640 480 16", TITLE, "PresentDisplay",              //
                     "ClearSurface", "PresentDisplay", LEVELS, "PresentDisplay",     //
                     "ClearSurface", "PresentDisplay", RENDERERS, "PresentDisplay",  //
                     "ClearSurface", "PresentDisplay", "CloseDisplay"}));
}

TEST(FrontEnd, ChoosesALevelByTheLastHeldKey) {
    const std::pair<Keys, int> rows[] = {{{DIK_F1}, 0},         {{DIK_F2}, 1},        {{DIK_F3}, 2},
                                         {{DIK_F4}, 3},         {{DIK_F5}, 4},        {{DIK_F6}, 5},
                                         {{DIK_F7}, 6},         {{DIK_F12}, 7},       {{DIK_F12, DIK_F1}, 7},
                                         {{DIK_F7, DIK_F2}, 6}, {{DIK_F8, DIK_F4}, 3}};
    for (const auto& [keys, level] : rows) {
        RunWithKeys({{DIK_SPACE}, keys, {}, {DIK_F11}});
        EXPECT_EQ(CurrentLevel, level);
    }
}

TEST(FrontEnd, OtherFunctionKeysChooseNoLevel) {
    constexpr int DIK_F9 = 0x43, DIK_F10 = 0x44;
    RunWithKeys({{DIK_SPACE}, {DIK_F8}, {DIK_F9}, {DIK_F10}, {DIK_F11}, {DIK_F2}, {DIK_F11}});
    EXPECT_EQ(CurrentLevel, 1);
}

TEST(FrontEnd, ChoosesTheRendererByAKeyThatGoesDownThere) {
    RunWithKeys({{DIK_SPACE}, {DIK_F12}, {DIK_F12}, {DIK_F12}, {}, {DIK_F12}});
    EXPECT_EQ(UseGlide, 1);
    RunWithKeys({{DIK_SPACE}, {DIK_F1}, {DIK_F11, DIK_F12}});
    EXPECT_EQ(UseGlide, 1);
    RunWithKeys({{DIK_SPACE}, {DIK_F12}, {DIK_F11, DIK_F12}});
    EXPECT_EQ(UseGlide, 0);
}

TEST(FrontEnd, EscapeOnAChoiceReturnsToTheFirstPicture) {
    Fake.onCall = [](const std::string& call) {
        if (call == "CloseDisplay") {
            EXPECT_EQ(CurrentLevel, 3);
        }
    };
    RunWithKeys({{DIK_SPACE},
                 {DIK_ESCAPE},
                 {},  // from the levels
                 {DIK_SPACE},
                 {DIK_F7},
                 {DIK_ESCAPE},
                 {},  // from the renderers: the level is asked again
                 {DIK_SPACE},
                 {},
                 {DIK_F4},
                 {DIK_F11}});
    EXPECT_EQ(Fake.Among({"ShowBitmap"}), (Calls{TITLE, LEVELS, TITLE, LEVELS, RENDERERS, TITLE, LEVELS, RENDERERS}));
}

TEST(FrontEnd, QuitsOnTheStrokeOfAKey) {
    for (const int key : {DIK_ESCAPE, DIK_LWIN, DIK_RWIN, DIK_APPS}) {
        EXPECT_EQ(RunWithKeys({{}, {key}}), MODE_QUIT) << key;
        EXPECT_EQ(Fake.calls.back(), "CloseDisplay");
    }
}

TEST(FrontEnd, EscapeStillHeldFromTheGameDoesNotQuit) {
    Fake.held = {DIK_ESCAPE};
    Fake.polls = {{DIK_ESCAPE}, {DIK_ESCAPE}, {}, {DIK_ESCAPE}};
    EXPECT_EQ(RunFrontEnd(), MODE_QUIT);
    EXPECT_TRUE(Fake.polls.empty());
}

TEST(FrontEnd, SpaceWinsOverEscape) {
    EXPECT_EQ(RunWithKeys({{DIK_SPACE, DIK_ESCAPE}, {DIK_F1}, {DIK_F11}}), MODE_START);
}

// The clock at each pass after the first picture, and the picture that pass shows.
void ExpectPictures(DWORD start, const std::vector<std::pair<DWORD, const char*>>& passes) {
    Fake.clock = start;
    Calls expected = {TITLE};
    size_t pass = 0;
    Fake.polls = {{}};
    for (const auto& [milliseconds, picture] : passes) {
        Fake.polls.push_back({});
        if (*picture != 0) expected.push_back(picture);
    }
    Fake.polls.push_back({DIK_ESCAPE});
    Fake.onCall = [&](const std::string& call) {
        if (call == "PollMouse" && Fake.Count("PollMouse") > 1 && pass < passes.size())
            Fake.clock = start + passes[pass++].first;
    };
    EXPECT_EQ(RunFrontEnd(), MODE_QUIT);
    EXPECT_EQ(Fake.Among({"ShowBitmap"}), expected);
    Fake = {};
}

TEST(FrontEnd, ChangesThePictureEveryEightSeconds) {
    for (const DWORD start : {0u, 5000u, 0xFFFFFF00u}) {
        ExpectPictures(start, {{7999, ""},
                               {8000, OPTIONS},
                               {15999, ""},
                               {16000, LOAD_SAVE},
                               {24000, LANGUAGE},
                               {32000, TITLE},
                               {40000, OPTIONS}});
    }
}

TEST(FrontEnd, PeriodStartsWhenThePictureIsShown) {
    ExpectPictures(0, {{9500, OPTIONS}, {17499, ""}, {17500, LOAD_SAVE}});
}

TEST(FrontEnd, ReturnsTheModeItFoundWhenTheDisplayDoesNotOpen) {
    for (const uint8_t mode : {MODE_LEAVE, MODE_PLAYING}) {
        Fake = {};
        Fake.displayOpens = false;
        GameMode = mode;
        EXPECT_EQ(RunFrontEnd(), mode);
        EXPECT_EQ(Fake.boxes, Calls{"Unable to initialize DirectDraw"});
        EXPECT_EQ(Fake.calls.back(), "CloseDisplay");
    }
}

TEST(FrontEnd, EndsOnAQuitMessage) {
    Fake.messages = {WM_QUIT};
    EXPECT_EQ(RunFrontEnd(), MODE_FRONTEND);
    EXPECT_EQ(Fake.Count("PollKeyboard"), 1);
}

}  // namespace
