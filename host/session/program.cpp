#include "session/program.h"

#include "boards/boards.h"
#include "host/files.h"
#include "input/key_bindings.h"
#include "interfaces/cd_drive.h"
#include "interfaces/files.h"
#include "machine/game.h"
#include "machine/log.h"
#include "machine/machine.h"
#include "machine/output.h"
#include "machine/process.h"
#include "machine/window_place.h"
#include "session/ending.h"
#include "session/find_data.h"
#include "session/replay.h"
#include "session/run.h"
#include "session/settings_file.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

constexpr int STATUS_WRONG_INPUT = 2;

struct HostInstance* const INSTANCE = reinterpret_cast<HostInstance*>(uintptr_t{0x400000});

// Shows the message in a box as well: no window of the game is open yet, and a user who started it from a desktop sees
// no terminal.
bool RefuseData(const Options& options, const std::string& text) {
    HostReportFatal(text.c_str(), nullptr);
    if (!options.headless) CurrentMachine->messageBox(text.c_str(), CurrentGame->title);
    return false;
}

bool OpenData(Options& options) {
    std::error_code error;
    if (!options.data.empty() && !std::filesystem::is_directory(options.data, error)) {
        return RefuseData(options, "There is no data folder " + options.data +
                                       ".\nName the folder that holds game/ and FrontEnd/ with --data.");
    }
    if (options.data.empty()) {
        const auto folders = DataFolders(ProgramFolder());
        options.data = FindDataFolder(folders).string();
        if (options.data.empty()) {
            std::string text = "The game's data is missing. It was looked for in";
            for (const auto& folder : folders)
                text.append("\n").append(folder.string());
            return RefuseData(options,
                              text + "\nInstall it again, build the target `content`, or name the folder that holds "
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

// A recording is of one set of files.
bool RecordsOrWatches(const Options& options) {
    if (options.record.empty() || options.watch.empty()) return true;
    PrintError("--record does not go with --watch, under which the files change");
    return false;
}

void OpenMachine(Options& options, const HostParts& parts) {
    StartMachine(options, parts.machines);
    const bool isHeadless = CurrentMachine == parts.machines.back();
    ChooseBoard(options, !isHeadless, parts.boards);
    if (!isHeadless) return;
    if (!options.headless) PrintError("no window can be opened; running without one");
    options.headless = true;
    if (options.level && options.renderer == RendererChoice::Unset) options.renderer = RendererChoice::Software;
}

}  // namespace

int RunProgram(int argumentCount, char** arguments, const HostParts& parts, const HostGame& game, GameMain gameMain) {
    CurrentGame = &game;
    OpenStandardStreams();
    Options options;
    const OptionsResult asked = ParseOptions(argumentCount, arguments, options);
    if (asked != OptionsResult::Run) return asked == OptionsResult::Done ? EXIT_SUCCESS : STATUS_WRONG_INPUT;
    Script script;
    if (!RecordsOrWatches(options) || !LoadOptionScript(options, script) || !LoadReplay(options) || !StartLog(options))
        return STATUS_WRONG_INPUT;
    StartWindowPlace();
    StartKeyBindings();
    LoadSettings(options);
    OpenMachine(options, parts);
    if (!OpenData(options) || !StartRun(options, std::move(script))) {
        CurrentMachine->stop();
        return STATUS_WRONG_INPUT;
    }
    std::atexit([] { FinishRun(); });
    WatchSignals();
    char commandLine[] = "";
    EndRun(gameMain(INSTANCE, nullptr, commandLine, SW_SHOW));
}
