#include "datacheck/compiled_level.h"
#include "formats/error.h"
#include "mapc/bake_threads.h"
#include "mapc/compile.h"
#include "records/levels.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace {

void ShowProgress(double part) {
    fmt::print(stderr, "\rlight {:3.0f} %{}", part * 100, part < 1 ? "" : "\r            \r");
    std::fflush(stderr);
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Compiles a map into a level: world, light map and light slots.");
    CompileFiles files;
    app.add_option("map", files.map, "the .map file")->required();
    app.add_option("--materials", files.materials, "the level's list of materials")->required();
    app.add_option("--prefabs", files.prefabs, "folder of prefabs that are not beside the map");
    app.add_option("--depfile", files.depfile, "write the maps that the level depends on, for the build");
    app.add_option("--output", files.output, "the folder to write to")->required();
    app.add_option("--level", files.level, "place the map as this level of the game")
        ->check(CLI::Range(1, LEVEL_COUNT));
    bool fast = false;
    app.add_flag("--fast", fast, "a quick look: coarser light, none that surfaces throw back, and leaks are only told");
    app.add_option("--threads", files.bake.threads, "how many threads work on the light")
        ->default_val(ThreadCount())
        ->check(CLI::Range(1, 256));
    CLI11_PARSE(app, argc, argv);
    files.check = CheckCompiled;
    if (fast) files.bake.quality = LightQuality::Fast;
    files.takeLeaks = fast;
    if (isatty(STDERR_FILENO)) files.bake.progress = ShowProgress;
    const auto begin = std::chrono::steady_clock::now();
    try {
        const std::string report = CompileToFiles(files);
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        fmt::print("{}{:>9.2f} seconds\n", report, seconds.count());
    } catch (const std::exception& error) {
        fmt::print(stderr, "mapc: {}\n", error.what());
        return 1;
    }
    return 0;
}
