// What a player has set: kept in a text file, changed by the settings screen, read by whatever part it concerns. Each
// setting is a number: one of a range, or the place of one of its choices.
//
// The file has one `key = value` a line; `#` begins a comment. A line that is not understood is told with its place;
// its setting keeps its default, and the line stays in the file as a comment when the program next writes it.
#pragma once

#include "machine/options.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

enum class Setting {
    FullScreen,  // 0, 1
    WindowSize,  // place in WINDOW_SIZES
    Display,     // 0: the one where the window was, else the one with the pointer; 1 and up: that one, if it is there
    Scaling,     // a ScalingChoice
    SmoothPictures,   // 0, 1
    SteadyLamps,      // 0, 1
    SoftwareSize,     // place in SOFTWARE_SIZES
    Board,            // place in BOARD_CHOICES
    AcceleratorSize,  // 0: as the window's size asks; 1..8
    Brightness,       // brightness of the shown picture, per cent
    MouseSpeed,       // per cent
    MouseInverted,    // 0, 1: moving it away turns the view down
    Volume,           // per cent
    MusicStops,       // 0, 1: while the window does not have the focus
    Count
};
constexpr size_t SETTING_COUNT = static_cast<size_t>(Setting::Count);

enum class ScalingChoice { Original, Integer, Sharp, Smooth };  // Original: sharp below 640 pixels across, else smooth

struct WindowSizeChoice {
    int width, height;
};
constexpr WindowSizeChoice WINDOW_SIZES[] = {{640, 480}, {800, 600}, {960, 720}, {1280, 960}, {1600, 1200}};
constexpr BoardChoice BOARD_CHOICES[] = {BoardChoice::Auto, BoardChoice::Gpu, BoardChoice::Cpu};

int SettingValue(Setting setting);
void SetSetting(Setting setting, int value);   // as the command line does: the file stays as it is
void StepSetting(Setting setting, int steps);  // as the player does: within its range, round through its choices
void ResetSettings();                          // all as without a file

std::string_view SettingLabel(Setting setting);
std::string SettingText(Setting setting);       // its value for people
std::string_view SettingHint(Setting setting);  // what to know before changing it; empty: nothing

struct SettingsPreset {
    std::string_view name;
    void (*apply)();  // as the player does
};
extern const SettingsPreset ORIGINAL_PRESET, COMFORT_PRESET;

// A setting that is text, such as a key's name: it belongs to another part of the machine, which knows what it may be.
// Kept in the file with the others, among which it stands last.
struct TextSetting {
    std::string key;
    std::string comment;  // empty: it goes on with those before it
    std::string start;    // the text without a file
    std::function<bool(std::string_view)> understands;
    std::string expected;  // what it understands, for people
};
size_t AddTextSetting(TextSetting setting);  // returns its number; one of the same key is replaced
const std::string& TextSettingValue(size_t number);
void ChangeTextSetting(size_t number, std::string_view text);  // as the player does

// Takes the settings in `text` and returns what is wrong with it: one "name:line: ..." for each bad line.
std::vector<std::string> ReadSettings(std::string_view text, const std::string& name);
// `text`, the file as it is, with what the player has changed since the last ReadSettings; from an empty text the whole
// commented file. Comments and all other lines stay.
std::string UpdateSettings(std::string_view text);
bool SettingsChanged();  // by the player, since the last ReadSettings
