#include "machine/settings.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <optional>
#include <span>

namespace {

constexpr std::string_view OFF_ON[] = {"off", "on"};
constexpr std::string_view SIZES[] = {"640x480", "800x600", "960x720", "1280x960", "1600x1200"};
constexpr std::string_view DISPLAYS[] = {"auto", "1", "2", "3", "4", "5", "6"};
constexpr std::string_view SCALINGS[] = {"original", "integer", "sharp", "smooth"};
constexpr std::string_view BOARDS[] = {"auto", "gpu", "cpu"};
constexpr std::string_view BOARD_SCALES[] = {"fit", "1", "2", "3", "4", "5", "6", "7", "8"};
static_assert(std::size(SIZES) == std::size(WINDOW_SIZES) && std::size(BOARDS) == std::size(BOARD_CHOICES));

struct SettingEntry {
    std::string_view key, label, comment;
    int start;                                  // the value without a file
    std::span<const std::string_view> choices;  // empty: a number of per cent
    int least = 0, most = 0, step = 0;
    std::string_view hint = {};
};

// By Setting.
constexpr SettingEntry ENTRIES[] = {
    {"full_screen", "Full screen", "on: the whole screen; off: a window", 1, OFF_ON},
    {"window_size", "Window size", "the window's size, where it is not remembered", 2, SIZES},
    {"display", "Display", "which display it is shown on; auto: the one where the window was", 0, DISPLAYS},
    {"scaling", "Scaling",
     "how the picture fills the window. original: 320x240 sharp, 640x480 smooth; integer: whole pixels only", 0,
     SCALINGS, 0, 0, 0, "original: sharp at 320x240, else smooth"},
    {"smooth", "Smooth pictures",
     "on: the display's rate is filled with pictures between the game's, and all is shown one game frame later", 0,
     OFF_ON, 0, 0, 0, "one game frame later, more drawing"},
    {"steady_lamps", "Steady lamps", "on: lamps flicker less in what is shown, for which each frame is drawn once more",
     0, OFF_ON, 0, 0, 0, "lamps flicker less; frames are drawn twice"},
    {"software_size", "Software size", "pixels that the software renderer draws, from the next level on", 0,
     SOFTWARE_SIZES, 0, 0, 0, "from the next level on"},
    {"board", "Accelerator",
     "which accelerator draws, from the next level on: gpu draws with OpenGL, cpu with the processor", 0, BOARDS, 0, 0,
     0, "gpu: graphics card; from the next level on"},
    {"board_scale", "Accelerator size",
     "how many times 640x480 the gpu board draws, from the next level on; fit: as the window's size asks", 0,
     BOARD_SCALES, 0, 0, 0, "times 640x480; from the next level on"},
    {"brightness", "Brightness", "of the shown picture, 50 to 200 per cent", 100, {}, 50, 200, 10},
    {"mouse_speed", "Mouse speed", "25 to 400 per cent", 100, {}, 25, 400, 25},
    {"mouse_inverted", "Mouse inverted", "on: the mouse moved away turns the other way", 0, OFF_ON},
    {"volume", "Volume", "of the music, 0 to 100 per cent", 100, {}, 0, 100, 10},
    {"music_stops", "Mute in background", "on: the music is silent while another window has the focus", 0, OFF_ON},
};
static_assert(std::size(ENTRIES) == SETTING_COUNT);

struct Value {
    int value = 0;
    bool changed = false;  // true: the player has changed it
};

std::array<Value, SETTING_COUNT> StartValues() {
    std::array<Value, SETTING_COUNT> all;
    for (size_t i = 0; i < SETTING_COUNT; ++i)
        all[i].value = ENTRIES[i].start;
    return all;
}

std::array<Value, SETTING_COUNT> values = StartValues();

struct TextEntry {
    TextSetting setting;
    std::string text;
    bool changed = false;  // by the player
};

std::vector<TextEntry> texts;  // numbered from SETTING_COUNT on where both kinds are

const SettingEntry& EntryOf(Setting setting) {
    return ENTRIES[static_cast<size_t>(setting)];
}

Value& ValueOf(Setting setting) {
    return values[static_cast<size_t>(setting)];
}

std::string_view Trimmed(std::string_view text) {
    const auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
    while (!text.empty() && blank(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    while (!text.empty() && blank(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    return text;
}

std::string Expected(const SettingEntry& entry) {
    if (entry.choices.empty()) return std::to_string(entry.least) + " to " + std::to_string(entry.most);
    std::string list;
    for (const std::string_view choice : entry.choices)
        list.append(list.empty() ? "" : ", ").append(choice);
    return list;
}

std::optional<int> ParseValue(const SettingEntry& entry, std::string_view text) {
    if (!entry.choices.empty()) {
        const auto found = std::find(entry.choices.begin(), entry.choices.end(), text);
        if (found == entry.choices.end()) return {};
        return static_cast<int>(found - entry.choices.begin());
    }
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < entry.least || value > entry.most)
        return {};
    return value;
}

std::string FileText(const SettingEntry& entry, int value) {
    return entry.choices.empty() ? std::to_string(value) : std::string(entry.choices[static_cast<size_t>(value)]);
}

// Of both kinds of settings.
size_t EntryCount() {
    return SETTING_COUNT + texts.size();
}

TextEntry& TextOf(size_t index) {
    return texts[index - SETTING_COUNT];
}

std::string_view KeyOf(size_t index) {
    return index < SETTING_COUNT ? ENTRIES[index].key : std::string_view(TextOf(index).setting.key);
}

std::string_view CommentOf(size_t index) {
    return index < SETTING_COUNT ? ENTRIES[index].comment : std::string_view(TextOf(index).setting.comment);
}

std::string ExpectedOf(size_t index) {
    return index < SETTING_COUNT ? Expected(ENTRIES[index]) : TextOf(index).setting.expected;
}

std::string FileTextOf(size_t index) {
    return index < SETTING_COUNT ? FileText(ENTRIES[index], values[index].value) : TextOf(index).text;
}

std::string StartTextOf(size_t index) {
    return index < SETTING_COUNT ? FileText(ENTRIES[index], ENTRIES[index].start) : TextOf(index).setting.start;
}

bool ChangedByPlayer(size_t index) {
    return index < SETTING_COUNT ? values[index].changed : TextOf(index).changed;
}

bool Understands(size_t index, std::string_view text) {
    if (index >= SETTING_COUNT) return TextOf(index).setting.understands(text);
    return ParseValue(ENTRIES[index], text).has_value();
}

// A text that it understands.
void Take(size_t index, std::string_view text) {
    if (index < SETTING_COUNT)
        values[index].value = *ParseValue(ENTRIES[index], text);
    else
        TextOf(index).text = text;
}

struct Line {
    std::optional<size_t> index;  // number of the setting; none: the line gives none
    std::string_view text;        // its value
    std::string problem;          // empty: none
};

Line ParseLine(std::string_view line) {
    const std::string_view text = Trimmed(line.substr(0, line.find('#')));
    if (text.empty()) return {};
    const size_t equals = text.find('=');
    const std::string_view key = Trimmed(text.substr(0, equals));
    if (equals == std::string_view::npos) return {{}, {}, "a line must be `key = value`"};
    size_t index = 0;
    while (index < EntryCount() && KeyOf(index) != key)
        ++index;
    if (index == EntryCount()) return {{}, {}, "there is no setting of this name"};
    const std::string_view value = Trimmed(text.substr(equals + 1));
    if (Understands(index, value)) return {index, value, {}};
    return {{}, {}, std::string(key) + " must be one of: " + ExpectedOf(index)};
}

// Calls take(line, number) for each line, without its end.
template <typename Take>
void ForEachLine(std::string_view text, Take take) {
    for (size_t start = 0, number = 1; start < text.size(); ++number) {
        const size_t end = std::min(text.find('\n', start), text.size());
        take(text.substr(start, end - start), number);
        start = end + 1;
    }
}

// What only the command line says stays out of the file.
void AppendEntry(std::string& text, size_t index) {
    const std::string_view comment = CommentOf(index);
    if (!comment.empty()) text.append("\n# ").append(comment).append(" (").append(ExpectedOf(index)).append(")\n");
    text.append(KeyOf(index)).append(" = ").append(ChangedByPlayer(index) ? FileTextOf(index) : StartTextOf(index));
    text.append("\n");
}

void Change(Setting setting, int value) {
    ValueOf(setting) = {value, true};
}

}  // namespace

const SettingsPreset ORIGINAL_PRESET = {"original", [] {
                                            for (size_t i = 0; i < SETTING_COUNT; ++i)
                                                if (i > static_cast<size_t>(Setting::Display))
                                                    Change(static_cast<Setting>(i), ENTRIES[i].start);
                                            Change(Setting::AcceleratorSize, 1);
                                        }};
const SettingsPreset COMFORT_PRESET = {"comfort", [] {
                                           Change(Setting::AcceleratorSize, 0);
                                           Change(Setting::Scaling, static_cast<int>(ScalingChoice::Sharp));
                                           Change(Setting::SmoothPictures, 1);
                                           Change(Setting::SteadyLamps, 1);
                                           Change(Setting::MusicStops, 1);
                                       }};

int SettingValue(Setting setting) {
    return ValueOf(setting).value;
}

void SetSetting(Setting setting, int value) {
    ValueOf(setting).value = value;
}

void StepSetting(Setting setting, int steps) {
    const SettingEntry& entry = EntryOf(setting);
    const int value = SettingValue(setting);
    const auto count = static_cast<int>(entry.choices.size());
    Change(setting, count > 0 ? ((value + steps) % count + count) % count
                              : std::clamp(value + steps * entry.step, entry.least, entry.most));
}

void ResetSettings() {
    values = StartValues();
    for (TextEntry& entry : texts)
        entry = {entry.setting, entry.setting.start};
}

std::string_view SettingLabel(Setting setting) {
    return EntryOf(setting).label;
}

std::string SettingText(Setting setting) {
    const SettingEntry& entry = EntryOf(setting);
    return FileText(entry, SettingValue(setting)) + (entry.choices.empty() ? " %" : "");
}

std::string_view SettingHint(Setting setting) {
    return EntryOf(setting).hint;
}

std::vector<std::string> ReadSettings(std::string_view text, const std::string& name) {
    ResetSettings();
    std::vector<std::string> problems;
    ForEachLine(text, [&](std::string_view line, size_t number) {
        const Line parsed = ParseLine(line);
        if (parsed.index) Take(*parsed.index, parsed.text);
        if (!parsed.problem.empty()) problems.push_back(name + ":" + std::to_string(number) + ": " + parsed.problem);
    });
    return problems;
}

std::string UpdateSettings(std::string_view text) {
    std::string updated = text.empty() ? "# Settings of the game. The settings screen (F10) changes them.\n" : "";
    std::vector<bool> present(EntryCount());
    ForEachLine(text, [&](std::string_view line, size_t) {
        const Line parsed = ParseLine(line);
        if (!parsed.problem.empty()) {
            updated.append("# not understood: ").append(line);
        } else if (parsed.index && ChangedByPlayer(*parsed.index)) {
            updated.append(KeyOf(*parsed.index)).append(" = ").append(FileTextOf(*parsed.index));
            const size_t comment = line.find('#');
            if (comment != std::string_view::npos) updated.append("  ").append(line.substr(comment));
        } else {
            updated.append(line);
        }
        updated.append("\n");
        if (parsed.index) present[*parsed.index] = true;
    });
    for (size_t i = 0; i < EntryCount(); ++i)
        if (!present[i] && (text.empty() || ChangedByPlayer(i))) AppendEntry(updated, i);
    return updated;
}

bool SettingsChanged() {
    bool changed = false;
    for (size_t i = 0; i < EntryCount(); ++i)
        changed = changed || ChangedByPlayer(i);
    return changed;
}

size_t AddTextSetting(TextSetting setting) {
    const auto same = [&](const TextEntry& entry) { return entry.setting.key == setting.key; };
    auto place = std::find_if(texts.begin(), texts.end(), same);
    if (place == texts.end()) place = texts.insert(place, TextEntry{});
    *place = {setting, setting.start};
    return static_cast<size_t>(place - texts.begin());
}

const std::string& TextSettingValue(size_t number) {
    return texts[number].text;
}

void ChangeTextSetting(size_t number, std::string_view text) {
    if (texts[number].text == text) return;
    texts[number].text = text;
    texts[number].changed = true;
}
