#include "session/settings_file.h"

#include "machine/game.h"
#include "machine/machine.h"
#include "machine/output.h"
#include "machine/settings.h"
#include "machine/text_file.h"
#include "session/find_data.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

constexpr size_t FILE_MAX = 1;  // MiB

fs::path settingsFile;
bool fileUsable = true;  // false: it could not be read, and must not be written over

fs::path ConfigurationFolder() {
    const char* const folder = std::getenv("XDG_CONFIG_HOME");
    if (folder && *folder == '/') return folder;
    const char* const home = std::getenv("HOME");
    return home && *home ? fs::path(home) / ".config" : fs::path();
}

fs::path ChooseFile(const Options& options) {
    if (!options.settings.empty()) return fs::absolute(options.settings);
    if (options.headless) return {};
    if (options.portable) return ProgramFolder() / "settings.txt";
    const fs::path folder = ConfigurationFolder();
    return folder.empty() ? fs::path() : folder / CurrentGame->program / "settings.txt";
}

bool ReadOld(std::string& text) {
    std::error_code ignored;
    std::string error;
    if (!fs::exists(settingsFile, ignored) || ReadTextFile(settingsFile.string(), FILE_MAX, text, error)) return true;
    PrintError("the settings %s; they stay as without a file", error.c_str());
    return false;
}

void ReadFile() {
    std::string text;
    fileUsable = ReadOld(text);
    if (!fileUsable) return;
    for (const std::string& problem : ReadSettings(text, settingsFile.string()))
        PrintError("%s", problem.c_str());
}

// What the command line says goes before the file, and stays out of it.
void Merge(Options& options) {
    options.windowGiven = options.windowWidth > 0 || options.fullscreen;
    if (options.windowGiven) {
        SetSetting(Setting::FullScreen, options.windowWidth == 0 || options.fullscreen ? 1 : 0);
    } else if (!SettingValue(Setting::FullScreen)) {
        const WindowSizeChoice& size = WINDOW_SIZES[SettingValue(Setting::WindowSize)];
        options.windowWidth = size.width;
        options.windowHeight = size.height;
    }
    if (options.smooth) SetSetting(Setting::SmoothPictures, *options.smooth ? 1 : 0);
    if (options.softwareSize) SetSetting(Setting::SoftwareSize, *options.softwareSize);
    if (options.board == BoardChoice::Auto) options.board = BOARD_CHOICES[SettingValue(Setting::Board)];
    const auto board = std::find(std::begin(BOARD_CHOICES), std::end(BOARD_CHOICES), options.board);
    if (board != std::end(BOARD_CHOICES))
        SetSetting(Setting::Board, static_cast<int>(board - std::begin(BOARD_CHOICES)));
    if (options.boardScale == 0) options.boardScale = static_cast<uint32_t>(SettingValue(Setting::AcceleratorSize));
    SetSetting(Setting::AcceleratorSize, static_cast<int>(options.boardScale));
}

}  // namespace

void LoadSettings(Options& options) {
    ResetSettings();
    settingsFile = ChooseFile(options);
    if (!settingsFile.empty()) ReadFile();
    Merge(options);
}

bool SaveSettings() {
    if (settingsFile.empty() || !fileUsable || !SettingsChanged()) return true;
    std::string old;
    std::error_code error;
    if (!ReadOld(old)) return false;
    fs::create_directories(settingsFile.parent_path(), error);
    const fs::path fresh = settingsFile.string() + ".new";  // so that a full disk does not cost the old file
    std::ofstream file(fresh, std::ios::binary);
    file << UpdateSettings(old);
    file.close();
    if (file) fs::rename(fresh, settingsFile, error);
    if (file && !error) {
        if (CurrentMachine->keepFile) CurrentMachine->keepFile(settingsFile.c_str());
        return true;
    }
    PrintError("the settings cannot be written to %s", settingsFile.c_str());
    return false;
}
