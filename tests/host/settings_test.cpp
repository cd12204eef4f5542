#include "machine/settings.h"
#include "machine/window_place.h"
#include "session/screenshot.h"

#include <gtest/gtest.h>

namespace {

TEST(Settings, ADamagedLineIsToldKeepsItsDefaultAndStaysInTheFile) {
    const std::string text =
        "# mine\r\n\nvolume = 70 # quiet\r\nbrightness=400\nscaling\nshadows = on\nmouse_speed = 150";
    const std::vector<std::string> problems = ReadSettings(text, "s.txt");
    ASSERT_EQ(problems.size(), 3u);
    EXPECT_EQ(problems[0], "s.txt:4: brightness must be one of: 50 to 200");
    EXPECT_TRUE(problems[1].starts_with("s.txt:5: ")) << problems[1];
    EXPECT_TRUE(problems[2].starts_with("s.txt:6: ")) << problems[2];
    EXPECT_EQ(SettingValue(Setting::Volume), 70);
    EXPECT_EQ(SettingValue(Setting::Brightness), 100);
    EXPECT_EQ(SettingValue(Setting::MouseSpeed), 150);
    SetSetting(Setting::MouseSpeed, 25);  // by the command line
    StepSetting(Setting::Volume, -1);
    StepSetting(Setting::Scaling, -1);
    const std::string updated = UpdateSettings(text);
    EXPECT_TRUE(updated.starts_with("# mine\r\n\nvolume = 60  # quiet\r\n# not understood: brightness=400\n"
                                    "# not understood: scaling\n# not understood: shadows = on\nmouse_speed = 150\n"))
        << updated;
    EXPECT_TRUE(updated.ends_with("\nscaling = smooth\n")) << updated;
    EXPECT_TRUE(ReadSettings(updated, "").empty());
}

TEST(Settings, AFreshFileHoldsEverySettingAndIsUnderstood) {
    ResetSettings();
    COMFORT_PRESET.apply();
    for (int i = 0; i < 100; ++i)
        StepSetting(Setting::Brightness, 1);
    const std::string text = UpdateSettings("");
    EXPECT_TRUE(ReadSettings(text, "").empty()) << text;
    EXPECT_EQ(SettingValue(Setting::Brightness), 200);
    EXPECT_EQ(SettingText(Setting::Scaling), "sharp");
    EXPECT_EQ(UpdateSettings(text), text);
    ORIGINAL_PRESET.apply();
    EXPECT_EQ(SettingValue(Setting::Brightness), 100);
    EXPECT_EQ(SettingText(Setting::AcceleratorSize), "1");
    ResetSettings();
}

TEST(Settings, AWindowsPlaceIsUnderstoodOrTold) {
    StartWindowPlace();
    ASSERT_TRUE(ReadSettings("window_place = -20,30 640x480", "").empty());
    EXPECT_EQ(RememberedPlace()->x, -20);
    EXPECT_EQ(RememberedPlace()->height, 480);
    for (const std::string damaged : {"5,6 640x480x", "5,6 7x5", "5 640x480", "5,6 640x99999999999", ""})
        EXPECT_EQ(ReadSettings("window_place = " + damaged, "").size(), 1u) << damaged;
    EXPECT_FALSE(RememberedPlace());
}

TEST(Screenshot, GoesWhereTheDesktopSays) {
    EXPECT_EQ(PicturesFolderIn("# x\nXDG_MUSIC_DIR=\"/m\"\nXDG_PICTURES_DIR=\"$HOME/Bilder\"\n", "/home/a"),
              "/home/a/Bilder");
    EXPECT_EQ(PicturesFolderIn("XDG_PICTURES_DIR=\"/p\"", "/home/a"), "/p");
    EXPECT_EQ(PicturesFolderIn("XDG_PICTURES_DIR=\"p", "/home/a"), "") << "neither whole nor below the home folder";
}

}  // namespace
