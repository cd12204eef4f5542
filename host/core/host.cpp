#include "host/host.h"

#include "backends/headless/headless.h"
#include "boards/boards.h"
#include "core/cd_drive.h"
#include "core/data_folder.h"
#include "core/find_data.h"
#include "core/game.h"
#include "core/log.h"
#include "core/machine.h"
#include "core/process.h"
#include "core/replay.h"
#include "core/run.h"
#include "host/files.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

constexpr int STATUS_WRONG_INPUT = 2;

struct HostInstance* const INSTANCE = reinterpret_cast<HostInstance*>(uintptr_t{0x400000});

// No window of the game is open yet, and who started it from a desktop sees no terminal.
bool RefuseData(const std::string& text) {
    HostReportFatal(text.c_str(), nullptr);
    if (CurrentMachine != &HeadlessMachine) CurrentMachine->messageBox(text.c_str(), "Tarnwick");
    return false;
}

bool OpenData(Options& options) {
    std::error_code error;
    if (!options.data.empty() && !std::filesystem::is_directory(options.data, error)) {
        return RefuseData("There is no data folder " + options.data +
                          ".\nName the folder that holds game/ and FrontEnd/ with --data.");
    }
    if (options.data.empty()) {
        const auto folders = DataFolders(ProgramFolder());
        options.data = FindDataFolder(folders).string();
        if (options.data.empty()) {
            std::string text = "The game's data is missing. It was looked for in";
            for (const auto& folder : folders)
                text += "\n" + folder.string();
            return RefuseData(text + "\nInstall it again, build the target `content`, or name the folder that holds "
                                     "game/ and FrontEnd/ with --data.");
        }
    }
    if (options.disc.empty()) options.disc = options.data + "/disc";
    SetDataFolder(options.data);
    SetDiscFolder(options.disc);
    return true;
}

bool LoadOptionScript(const Options& options, Script& script) {
    std::string error;
    if (options.script.empty() || LoadScript(options.script, script, error)) return true;
    std::fprintf(stderr, "%s\n", error.c_str());
    return false;
}

void OpenMachine(Options& options) {
    StartMachine(options);
    ChooseBoard(options, CurrentMachine != &HeadlessMachine);
    if (CurrentMachine != &HeadlessMachine) return;
    if (!options.headless) PrintError("no window can be opened; running without one");
    options.headless = true;
    if (options.level && options.renderer == RendererChoice::Unset) options.renderer = RendererChoice::Software;
}

}  // namespace

int HostMain(int argumentCount, char** arguments, const HostGame& game, GameMain gameMain) {
    CurrentGame = &game;
    OpenStandardStreams();
    Options options;
    const OptionsResult asked = ParseOptions(argumentCount, arguments, options);
    if (asked != OptionsResult::Run) return asked == OptionsResult::Done ? EXIT_SUCCESS : STATUS_WRONG_INPUT;
    Script script;
    if (!LoadOptionScript(options, script) || !LoadReplay(options) || !StartLog(options)) return STATUS_WRONG_INPUT;
    OpenMachine(options);
    if (!OpenData(options) || !StartRun(options, std::move(script))) {
        CurrentMachine->stop();
        return STATUS_WRONG_INPUT;
    }
    std::atexit([] { FinishRun(); });
    WatchSignals();
    char commandLine[] = "";
    EndRun(gameMain(INSTANCE, nullptr, commandLine, SW_SHOW));
}
