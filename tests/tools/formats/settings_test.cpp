#include "formats/colour_text.h"
#include "formats/settings.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <functional>

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
