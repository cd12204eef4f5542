#include "session/screenshot.h"

#include "input/keys.h"
#include "interfaces/presentation.h"
#include "machine/game.h"
#include "machine/machine.h"
#include "machine/png.h"
#include "machine/text_file.h"
#include "session/front_end.h"
#include "session/message.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

namespace fs = std::filesystem;

bool keyWasDown = false;

fs::path PicturesFolder() {
    const char* const home = std::getenv("HOME");
    if (!home || !*home) return fs::current_path();
    const char* const configuration = std::getenv("XDG_CONFIG_HOME");
    const fs::path settings =
        configuration && *configuration == '/' ? fs::path(configuration) : fs::path(home) / ".config";
    std::string text, error;
    std::error_code ignored;
    if (ReadTextFile((settings / "user-dirs.dirs").string(), 1, text, error)) {
        const fs::path named = PicturesFolderIn(text, home);
        if (fs::is_directory(named, ignored)) return named;
    }
    const fs::path usual = fs::path(home) / "Pictures";
    return fs::is_directory(usual, ignored) ? usual : fs::path(home);
}

// A name that no file has yet: two pictures of one second are told apart by a number.
fs::path FreshFile(const fs::path& folder) {
    char time[32] = "";
    const std::time_t now = std::time(nullptr);
    if (const std::tm* const local = std::localtime(&now)) std::strftime(time, sizeof time, "%Y-%m-%d-%H%M%S", local);
    const std::string stem = std::string(CurrentGame->program) + "-" + time;
    std::error_code ignored;
    for (int number = 1;; ++number) {
        const fs::path file = folder / (stem + (number > 1 ? "-" + std::to_string(number) : std::string()) + ".png");
        if (!fs::exists(file, ignored)) return file;
    }
}

void TakeScreenshot() {
    const Picture* const picture = FrontPicture();
    if (!picture) return;
    const fs::path file = FreshFile(PicturesFolder());
    std::string error;
    if (WritePng(file.string(), *picture, error))
        ShowMessage("Saved ", file.string());
    else
        ShowMessage("Not saved: ", error);
}

}  // namespace

std::filesystem::path PicturesFolderIn(std::string_view userDirs, const fs::path& home) {
    constexpr std::string_view KEY = "XDG_PICTURES_DIR=\"", HOME = "$HOME/";
    for (size_t start = 0; start < userDirs.size();) {
        const size_t end = std::min(userDirs.find('\n', start), userDirs.size());
        std::string_view line = userDirs.substr(start, end - start);
        start = end + 1;
        if (!line.starts_with(KEY)) continue;
        line.remove_prefix(KEY.size());
        line = line.substr(0, line.find('"'));
        if (line.starts_with(HOME)) return home / line.substr(HOME.size());
        if (line.starts_with('/')) return line;
    }
    return {};
}

void OfferScreenshot(const uint8_t* keys) {
    if (!HasSettings()) return;
    const bool pressed = keys[SCREENSHOT_KEY] != 0 && !keyWasDown;
    keyWasDown = keys[SCREENSHOT_KEY] != 0;
    if (pressed && !InFrontEnd()) TakeScreenshot();
}
