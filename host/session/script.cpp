#include "session/script.h"

#include "input/keys.h"
#include "machine/text_file.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace {

using Words = std::vector<std::string_view>;

constexpr size_t SCRIPT_MAX = 16;  // MiB
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr size_t QUOTE_LENGTH_MAX = 80;

// A word as messages quote it: cut short, and without control characters.
std::string Quote(std::string_view word) {
    std::string quote(word.substr(0, QUOTE_LENGTH_MAX));
    std::replace_if(
        quote.begin(), quote.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, '?');
    return '"' + quote + (word.size() > QUOTE_LENGTH_MAX ? "...\"" : "\"");
}

Words SplitLine(std::string_view line) {
    line = line.substr(0, line.find('#'));
    Words words;
    constexpr std::string_view BLANKS = " \t\r\v\f";
    for (size_t start = line.find_first_not_of(BLANKS); start != std::string_view::npos;) {
        const size_t end = line.find_first_of(BLANKS, start);
        words.push_back(line.substr(start, end - start));
        start = line.find_first_not_of(BLANKS, end);
    }
    return words;
}

template <typename Number>
bool TakeNumber(std::string_view word, Number least, Number most, Number& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc{} && end == word.data() + word.size() && number >= least && number <= most;
}

bool TakeWhen(std::string_view word, ScriptLine& line) {
    line.isFrame = !word.ends_with("ms");
    if (line.isFrame) return TakeNumber<uint32_t>(word, 1, UINT32_MAX, line.when);
    return TakeNumber<uint32_t>(word.substr(0, word.size() - 2), 0, UINT32_MAX, line.when);
}

// Takes one of two words; isOn says which.
bool TakeEither(std::string_view word, std::string_view off, std::string_view on, bool& isOn) {
    isOn = word == on;
    return isOn || word == off;
}

bool TakeKey(const Words& words, ScriptLine& line) {
    return FindKey(words[2], line.code);
}

bool TakeMouse(const Words& words, ScriptLine& line) {
    return TakeNumber(words[2], INT16_MIN, INT16_MAX, line.x) && TakeNumber(words[3], INT16_MIN, INT16_MAX, line.y);
}

bool TakeButton(const Words& words, ScriptLine& line) {
    bool right = false;
    const bool known = TakeEither(words[2], "left", "right", right);
    line.code = right ? 1 : 0;
    return known && TakeEither(words[3], "up", "down", line.on);
}

bool TakeFocus(const Words& words, ScriptLine& line) {
    return TakeEither(words[2], "lost", "gained", line.on);
}

bool TakeWait(const Words& words, ScriptLine& line) {
    return TakeNumber<uint32_t>(words[2], 0, UINT32_MAX, line.milliseconds);
}

bool TakeShot(const Words& words, ScriptLine& line) {
    line.file = words[2];
    return true;
}

bool TakeReal(std::string_view word, float& number) {
    char* end = nullptr;
    const std::string text(word);
    number = std::strtof(text.c_str(), &end);
    return *end == '\0' && std::isfinite(number);
}

bool TakePhoto(const Words& words, ScriptLine& line) {
    line.file = words[7];
    float(&at)[3] = line.camera.position;
    float(&angles)[3] = line.camera.angles;
    return TakeReal(words[2], at[0]) && TakeReal(words[3], at[1]) && TakeReal(words[4], at[2]) &&
           TakeReal(words[5], angles[0]) && TakeReal(words[6], angles[1]);
}

bool TakeNothing(const Words&, ScriptLine&) {
    return true;
}

struct ActionEntry {
    const char* word;
    ScriptAction action;
    size_t arguments;
    bool (*take)(const Words& words, ScriptLine& line);
    const char* expected;
};

const ActionEntry ACTIONS[] = {
    {"down", ScriptAction::KeyDown, 1, TakeKey, "down KEY, such as down UP or down LCONTROL"},
    {"up", ScriptAction::KeyUp, 1, TakeKey, "up KEY, such as up UP or up LCONTROL"},
    {"tap", ScriptAction::Tap, 1, TakeKey, "tap KEY, such as tap SPACE or tap F1"},
    {"mouse", ScriptAction::Mouse, 2, TakeMouse, "mouse DX DY, -32768..32767 each"},
    {"button", ScriptAction::Button, 2, TakeButton, "button left|right down|up"},
    {"focus", ScriptAction::Focus, 1, TakeFocus, "focus lost|gained"},
    {"wait", ScriptAction::Wait, 1, TakeWait, "wait MS"},
    {"shot", ScriptAction::Shot, 1, TakeShot, "shot FILE.png"},
    {"photo", ScriptAction::Photo, 6, TakePhoto, "photo X Y Z PITCH YAW FILE.png"},
    {"quit", ScriptAction::Quit, 0, TakeNothing, "quit"},
};

const ActionEntry* FindAction(std::string_view word) {
    for (const ActionEntry& entry : ACTIONS)
        if (word == entry.word) return &entry;
    return nullptr;
}

// Returns what is wrong with the line; empty: nothing.
std::string ParseLine(const Words& words, ScriptLine& line) {
    if (!TakeWhen(words[0], line)) return Quote(words[0]) + " is neither a frame from 1 on (120) nor a time (3500ms)";
    if (words.size() < 2) return "an action is missing after " + Quote(words[0]);
    const ActionEntry* entry = FindAction(words[1]);
    if (!entry)
        return "unknown action " + Quote(words[1]) +
               "; there are down, up, tap, mouse, button, focus, wait, shot, photo and quit";
    line.action = entry->action;
    if (words.size() != 2 + entry->arguments || !entry->take(words, line))
        return "expected " + std::string(entry->expected);
    return {};
}

}  // namespace

bool ParseScript(std::string_view text, const std::string& name, Script& script, std::string& error) {
    if (text.starts_with(BYTE_ORDER_MARK)) text.remove_prefix(BYTE_ORDER_MARK.size());
    for (uint32_t number = 1; !text.empty(); ++number) {
        const size_t end = text.find('\n');
        const Words words = SplitLine(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (words.empty()) continue;
        ScriptLine line{};
        line.number = number;
        const std::string wrong = ParseLine(words, line);
        if (!wrong.empty()) {
            error = name + ":" + std::to_string(number) + ": " + wrong;
            return false;
        }
        script.lines.push_back(std::move(line));
    }
    return true;
}

bool LoadScript(const std::string& file, Script& script, std::string& error) {
    std::string text;
    return ReadTextFile(file, SCRIPT_MAX, text, error) && ParseScript(text, file, script, error);
}
