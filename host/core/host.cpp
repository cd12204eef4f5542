#include "host/host.h"

#include "backends/headless/headless.h"
#include "boards/boards.h"
#include "core/cd_drive.h"
#include "core/data_folder.h"
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

bool FindData(const std::string& folder) {
    std::error_code error;
    if (std::filesystem::is_directory(folder, error)) {
        SetDataFolder(folder);
        return true;
    }
    const std::string text = "There is no data folder " + folder +
                             ".\nBuild the target `content`, or name the folder that holds game/ and FrontEnd/ "
                             "with --data.";
    HostReportFatal(text.c_str(), nullptr);
    return false;
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
    if (!options.headless) std::fprintf(stderr, "tarnwick: no window can be opened; running without one\n");
    options.headless = true;
    if (options.level && options.renderer == RendererChoice::Unset) options.renderer = RendererChoice::Software;
}

}  // namespace

int HostMain(int argumentCount, char** arguments, GameMain gameMain) {
    OpenStandardStreams();
    Options options;
    const OptionsResult asked = ParseOptions(argumentCount, arguments, options);
    if (asked != OptionsResult::Run) return asked == OptionsResult::Done ? EXIT_SUCCESS : STATUS_WRONG_INPUT;
    Script script;
    if (!LoadOptionScript(options, script) || !LoadReplay(options) || !StartLog(options)) return STATUS_WRONG_INPUT;
    OpenMachine(options);
    SetDiscFolder(options.disc);
    if (!FindData(options.data) || !StartRun(options, std::move(script))) {
        CurrentMachine->stop();
        return STATUS_WRONG_INPUT;
    }
    std::atexit([] { FinishRun(); });
    WatchSignals();
    char commandLine[] = "";
    EndRun(gameMain(INSTANCE, nullptr, commandLine, SW_SHOW));
}
