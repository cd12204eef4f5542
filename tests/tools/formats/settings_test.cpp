#include "formats/colour_text.h"
#include "formats/settings.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <functional>

TEST(Settings, ReadsEachKindAndKeepsFallbacksAsTheyAre) {
    const Settings s =
        Settings::Parse("n = 3\nx = 0.5\nb = true\nt = 'hi'\nc = ['#102030', '#fffefd']\np = [[1, 2], [3, 4]]\n"
                        "[[sub]]\nn = 1\n[[sub]]\nn = 2\n",
                        "a.toml");
    EXPECT_EQ(s.Int("n", 0, 0, 9), 3);
    EXPECT_EQ(s.Number("n", 0, 0, 9), 3.0F) << "a whole number is a number";
    EXPECT_EQ(s.Number("x", 0, 0, 1), 0.5F);
    EXPECT_TRUE(s.Flag("b", false));
    EXPECT_EQ(s.Text("t", ""), "hi");
    EXPECT_EQ(ReadColours(s, "c"), (std::vector<Rgba>{{16, 32, 48, 255}, {255, 254, 253, 255}}));
    EXPECT_EQ(s.Numbers("p"), (std::vector<float>{1, 2, 3, 4}));
    const std::vector<Settings> sub = s.Tables("sub");
    ASSERT_EQ(sub.size(), 2U);
    EXPECT_EQ(sub[1].NeedInt("n", 0, 9), 2);
    EXPECT_EQ(s.Int("missing", -7, 0, 9), -7);
    EXPECT_NO_THROW(s.Finish());
}

TEST(Settings, RefusalsNameFileLineAndKey) {
    const struct {
        const char* text;
        const char* expected;
        std::function<void(const Settings&)> read;
    } rows[] = {
        {"a = 1\nb = = 2\n", "a.toml:2", [](const Settings&) {}},
        {"\nn = 12\n", "a.toml:2: 'n'", [](const Settings& s) { s.Int("n", 0, 0, 9); }},
        {"n = 1.5\n", "'n'", [](const Settings& s) { s.Int("n", 0, 0, 9); }},
        {"x = nan\n", "'x'", [](const Settings& s) { s.Number("x", 0, 0, 9); }},
        {"x = [1, 'y']\n", "'x'", [](const Settings& s) { s.Numbers("x"); }},
        {"x = [1, 2, 3]\n", "give 2", [](const Settings& s) { s.Numbers("x", 2, {}); }},
        {"t = 1\n", "'t'", [](const Settings& s) { s.NeedText("t"); }},
        {"u = 1\n", "'t' is missing", [](const Settings& s) { s.NeedText("t"); }},
        {"c = '#12345g'\n", "'c'", [](const Settings& s) { ReadColour(s, "c"); }},
        {"k = 'gree'\n", "green",
         [](const Settings& s) {
             s.Choice("k", "", {"red", "green"});
         }},
        {"s = 3\n", "[[s]]", [](const Settings& s) { s.Tables("s"); }},
        {"good = 1\nmispelt = 2\n", "a.toml:2: 'mispelt'",
         [](const Settings& s) { s.Int("good", 0, 0, 9), s.Finish(); }},
    };
    for (const auto& row : rows)
        ExpectRefusal(row.expected, [&] { row.read(Settings::Parse(row.text, "a.toml")); });
}
