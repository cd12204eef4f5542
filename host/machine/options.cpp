#include "machine/options.h"

#include "machine/game.h"
#include "machine/output.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>

namespace {

bool TakeNumber(std::string_view text, uint32_t least, uint32_t most, uint32_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size() && number >= least && number <= most;
}

bool TakeText(std::string_view value, std::string& text) {
    text = value;
    return !value.empty();
}

bool TakeWindow(std::string_view value, Options& options) {
    const size_t cross = value.find('x');
    uint32_t width = 0;
    uint32_t height = 0;
    if (cross == std::string_view::npos || !TakeNumber(value.substr(0, cross), 320, 16384, width) ||
        !TakeNumber(value.substr(cross + 1), 240, 16384, height))
        return false;
    options.windowWidth = static_cast<int>(width);
    options.windowHeight = static_cast<int>(height);
    return true;
}

bool TakeLevel(std::string_view value, Options& options) {
    uint32_t level = 0;
    if (!TakeNumber(value, 1, static_cast<uint32_t>(CurrentGame->levelKeys.size()), level)) return false;
    options.level = static_cast<int>(level);
    return true;
}

bool TakeRenderer(std::string_view value, Options& options) {
    if (value == "software")
        options.renderer = RendererChoice::Software;
    else if (value == "accelerator")
        options.renderer = RendererChoice::Accelerator;
    else
        return false;
    return true;
}

bool TakeBoard(std::string_view value, Options& options) {
    if (value == "auto")
        options.board = BoardChoice::Auto;
    else if (value == "gpu")
        options.board = BoardChoice::Gpu;
    else if (value == "cpu")
        options.board = BoardChoice::Cpu;
    else if (value == "none")
        options.board = BoardChoice::None;
    else
        return false;
    return true;
}

bool TakeShot(std::string_view value, Options& options) {
    const size_t colon = value.find(':');
    ShotRequest shot{};
    if (colon == std::string_view::npos || !TakeNumber(value.substr(0, colon), 1, UINT32_MAX, shot.frame) ||
        !TakeText(value.substr(colon + 1), shot.file))
        return false;
    options.shots.push_back(shot);
    return true;
}

bool TakeSmooth(std::string_view value, Options& options) {
    options.smooth = value == "on";
    return value == "on" || value == "off";
}

bool TakeSoftwareSize(std::string_view value, Options& options) {
    const auto found = std::find(std::begin(SOFTWARE_SIZES), std::end(SOFTWARE_SIZES), value);
    options.softwareSize = static_cast<int>(found - std::begin(SOFTWARE_SIZES));
    return found != std::end(SOFTWARE_SIZES);
}

bool TakeMotion(std::string_view value, Options& options) {
    MotionRequest motion{};
    const std::string text(value);
    int used = 0;
    const int numbers =
        std::sscanf(text.c_str(), "%f,%f,%f:%n", &motion.point[0], &motion.point[1], &motion.point[2], &used);
    if (numbers != 3 || used == 0 || !TakeText(value.substr(static_cast<size_t>(used)), motion.file)) return false;
    options.motion = motion;
    return true;
}

struct OptionEntry {
    const char* name;
    const char* argument;  // null: none; LEVELS in it: the number of levels
    const char* help;
    bool (*take)(std::string_view value, Options& options);  // false: a bad value; null: handled by ParseOptions
};

const OptionEntry OPTIONS[] = {
    {"--data", "DIR", "folder that holds game/ and FrontEnd/",
     [](std::string_view value, Options& options) { return TakeText(value, options.data); }},
    {"--disc", "DIR", "folder of the music, track02 and so on (by default disc in the data folder)",
     [](std::string_view value, Options& options) { return TakeText(value, options.disc); }},
    {"--log", "FILE", "write the game's standard output and the host's log lines to FILE",
     [](std::string_view value, Options& options) { return TakeText(value, options.log); }},
    {"--window", "WxH, 320x240 and up", "play in a window of this size", TakeWindow},
    {"--fullscreen", nullptr, "play on the whole screen (the default)",
     [](std::string_view, Options& options) { return options.fullscreen = true; }},
    {"--level", "1..LEVELS", "choose this level at the start", TakeLevel},
    {"--renderer", "software|accelerator", "choose this renderer at the start (software with --headless and --level)",
     TakeRenderer},
    {"--board", "auto|gpu|cpu|none",
     "the accelerator's board: gpu draws with OpenGL, cpu with the processor; auto takes gpu where there is a graphics "
     "card and a window; none: the game draws by itself, whatever the renderer",
     TakeBoard},
    {"--board-scale", "1..8",
     "how many times 640x480 the gpu board's picture is (as many as the window is large, where there is a graphics "
     "card)",
     [](std::string_view value, Options& options) { return TakeNumber(value, 1, 8, options.boardScale); }},
    {"--smooth", "on|off",
     "fill the display's rate with pictures between the game's: all is shown one game frame later, and drawing takes "
     "up "
     "to four times as long (off, or as the settings say)",
     TakeSmooth},
    {"--software-size", "320x240|512x384|640x480",
     "the pixels that the software renderer draws (320x240, or as the settings say)", TakeSoftwareSize},
    {"--settings", "FILE", "read and keep the settings in FILE (settings.txt in the user's configuration folder)",
     [](std::string_view value, Options& options) { return TakeText(value, options.settings); }},
    {"--portable", nullptr, "keep the settings in settings.txt beside the program",
     [](std::string_view, Options& options) { return options.portable = true; }},
    {"--headless", nullptr, "no window, no sound, a clock that moves only when it is read",
     [](std::string_view, Options& options) { return options.headless = true; }},
    {"--script", "FILE", "play the input written in FILE",
     [](std::string_view value, Options& options) { return TakeText(value, options.script); }},
    {"--record", "FILE", "write what enters the game, and the numbers of each frame, to FILE",
     [](std::string_view value, Options& options) { return TakeText(value, options.record); }},
    {"--replay", "FILE", "play a recording, and end with status 1 at the first frame that differs",
     [](std::string_view value, Options& options) { return TakeText(value, options.replay); }},
    {"--from", "N", "draw nothing before game frame N",
     [](std::string_view value, Options& options) { return TakeNumber(value, 1, UINT32_MAX, options.from); }},
    {"--benchmark", "FILE", "play a recording as fast as possible, and print how long the parts of a frame take",
     [](std::string_view value, Options& options) {
         options.benchmark = true;
         return TakeText(value, options.replay);
     }},
    {"--frames", "N", "end after game frame N, counted from 1",
     [](std::string_view value, Options& options) { return TakeNumber(value, 1, UINT32_MAX, options.frames); }},
    {"--trace", "FILE", "write one JSON object a game frame to FILE",
     [](std::string_view value, Options& options) { return TakeText(value, options.trace); }},
    {"--shot", "FRAME:FILE.png", "write the picture of a game frame; may be given several times", TakeShot},
    {"--motion", "X,Y,Z:FILE", "write where this point of the world is in each picture that is shown", TakeMotion},
    {"--watch", "FILE", "load a level again whenever FILE says that it was compiled anew; ./play --map writes FILE",
     [](std::string_view value, Options& options) { return TakeText(value, options.watch); }},
    {"--verbose", nullptr, "log lines to standard error, standard output left where it is",
     [](std::string_view, Options& options) { return options.verbose = true; }},
    {"--version", nullptr, "print the version and end", nullptr},
    {"--help", nullptr, "print this and end", nullptr},
};

const OptionEntry* FindOption(std::string_view name) {
    for (const OptionEntry& entry : OPTIONS)
        if (name == entry.name) return &entry;
    return nullptr;
}

std::string ArgumentOf(const OptionEntry& entry) {
    constexpr std::string_view LEVELS = "LEVELS";
    std::string text = entry.argument;
    const size_t at = text.find(LEVELS);
    if (at != std::string::npos) text.replace(at, LEVELS.size(), std::to_string(CurrentGame->levelKeys.size()));
    return text;
}

void PrintHelp() {
    std::printf("usage: %s [option]...\n\n", CurrentGame->program);
    for (const OptionEntry& entry : OPTIONS) {
        std::string left = entry.name;
        if (entry.argument) left.append(" ").append(ArgumentOf(entry));
        std::printf("  %-32s %s\n", left.c_str(), entry.help);
    }
}

}  // namespace

OptionsResult ParseOptions(int argumentCount, char** arguments, Options& options) {
    for (int i = 1; i < argumentCount; ++i) {
        const OptionEntry* entry = FindOption(arguments[i]);
        if (!entry) {
            PrintError("unknown option \"%s\"; --help lists them", arguments[i]);
            return OptionsResult::Wrong;
        }
        if (std::strcmp(entry->name, "--help") == 0) {
            PrintHelp();
            return OptionsResult::Done;
        }
        if (std::strcmp(entry->name, "--version") == 0) {
            std::printf("%s %s\n", CurrentGame->program, TARNWICK_VERSION);
            return OptionsResult::Done;
        }
        const char* value = "";
        if (entry->argument) {
            if (++i == argumentCount) {
                PrintError("%s wants %s", entry->name, ArgumentOf(*entry).c_str());
                return OptionsResult::Wrong;
            }
            value = arguments[i];
        }
        if (!entry->take(value, options)) {
            PrintError("%s wants %s, not \"%s\"", entry->name, ArgumentOf(*entry).c_str(), value);
            return OptionsResult::Wrong;
        }
    }
    return OptionsResult::Run;
}
