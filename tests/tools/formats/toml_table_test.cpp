#include "formats/colour_text.h"
#include "formats/nesting.h"
#include "formats/toml_table.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <functional>

TEST(TomlTable, RefusalsNameFileLineAndKey) {
    const struct {
        const char* text;
        const char* expected;
        std::function<void(const TomlTable&)> read;
    } rows[] = {
        {"a = 1\nb = = 2\n", "a.toml:2", [](const TomlTable&) {}},
        {"\nn = 12\n", "a.toml:2: 'n'", [](const TomlTable& s) { s.Int("n", 0, 0, 9); }},
        {"n = 1.5\n", "'n'", [](const TomlTable& s) { s.Int("n", 0, 0, 9); }},
        {"x = nan\n", "'x'", [](const TomlTable& s) { s.Number("x", 0, 0, 9); }},
        {"x = [1, 'y']\n", "'x'", [](const TomlTable& s) { s.Numbers("x"); }},
        {"x = [1, 2, 3]\n", "give 2", [](const TomlTable& s) { s.Numbers("x", 2, {}); }},
        {"t = 1\n", "'t'", [](const TomlTable& s) { s.NeedText("t"); }},
        {"u = 1\n", "'t' is missing", [](const TomlTable& s) { s.NeedText("t"); }},
        {"c = '#12345g'\n", "'c'", [](const TomlTable& s) { ReadColour(s, "c"); }},
        {"k = 'gree'\n", "green",
         [](const TomlTable& s) {
             s.Choice("k", "", {"red", "green"});
         }},
        {"s = 3\n", "[[s]]", [](const TomlTable& s) { s.Tables("s"); }},
        {"good = 1\nmispelt = 2\n", "a.toml:2: 'mispelt'",
         [](const TomlTable& s) { s.Int("good", 0, 0, 9), s.Finish(); }},
    };
    for (const auto& row : rows)
        ExpectRefusal(row.expected, [&] { row.read(TomlTable::Parse(row.text, "a.toml")); });
}

TEST(TomlTable, NestingIsBoundedBeforeItIsParsed) {
    const auto times = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const std::string deep = times(65, "["), tooDeep = "is nested deeper than 64 levels", fine = "no error";
    const std::pair<std::string, std::string> tomlRows[] = {
        {times(64, "["), fine},
        {"\na = " + deep, "a.toml:2: " + tooDeep},
        {"x = {" + times(65, "a.'b c'.\"d\" . ") + "e = 1}", tooDeep},
        {"x = [" + times(100, "1.5, ") + "]\n" + times(100, "[a.b]\n"), fine},
        // What brackets and quotes mean depends on where they stand.
        {"a = \"" + deep + R"(\")" + deep + "\" # " + deep + "\n'" + deep + "' = 1", fine},
        {"a = '''\n'" + deep + "''''\nb = \"\"\"" + deep + R"(\"""")", fine},
        {"a = \"\" # '\nb = " + deep, tooDeep},
        {R"(a = '\')" + ("\nb = " + deep), tooDeep},
        {R"(a = """a"""")" + ("\nb = " + deep), tooDeep},
    };
    for (const auto& row : tomlRows)
        ExpectRefusal(row.second, [&] { CheckNesting(row.first, NestedText::Toml, "a.toml"); });
    ExpectRefusal(fine, [&] { CheckNesting("{\"" + deep + R"(\")" + deep + "\": 1}", NestedText::Json, "a.glb"); });
    ExpectRefusal(tooDeep, [&] { CheckNesting("{\"a'#\": " + deep, NestedText::Json, "a.glb"); });
    ExpectRefusal(tooDeep, [&] { TomlTable::Parse(times(100000, "a.") + "b = 1", "a.toml"); });
}

TEST(TomlTable, MessagesQuoteALittleOfWhatTheyRefuse) {
    const std::string start(79, 'x');
    const std::string text = "k = '" + start + "\u00E4" + std::string(100000, 'y') + "'\n";
    ExpectRefusal("'" + start + "...' is not known",
                  [&] { TomlTable::Parse(text, "a.toml").Choice("k", "", {"red"}); });
    ExpectRefusal("'?[2J' is not known",
                  [] { TomlTable::Parse("k = \"\\u001B[2J\"\n", "a.toml").Choice("k", "", {"red"}); });
    ExpectRefusal("has 4097 entries or more: 4096 are the most", [] {
        std::string list = "n = [0";
        for (int i = 0; i < 4096; ++i)
            list += ",0";
        TomlTable::Parse(list + "]", "a.toml").Numbers("n");
    });
}
