#include "charc/compile.h"
#include "motion/report.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>

int main(int argc, char** argv) {
    CLI::App app("Converts a rigged model with its animations into the game's character.");
    std::string recipe, output;
    bool quiet = false, motion = false, list = false;
    app.add_option("recipe", recipe, "the recipe (.toml): which joint is which bone, which clip fills which file")
        ->required();
    CLI::Option* const listOption =
        app.add_flag("--list", list, "print the joints, clips and materials of a model (.glb), given for the recipe");
    app.add_option("-o,--output", output, "the folder to write to")->excludes(listOption);
    app.add_flag("--quiet", quiet, "print no report about the model");
    app.add_flag("--report", motion, "print how evenly the game will move it, in every state and between states");
    CLI11_PARSE(app, argc, argv);
    if (!list && output.empty()) return app.exit(CLI::RequiredError("--output"));
    try {
        if (list) {
            fmt::print("{}", ListModel(recipe));
            return 0;
        }
        const std::string report = CompileToFolder(recipe, output);
        if (!quiet) fmt::print("{}", report);
        if (motion) fmt::print("{}", MotionReport(output));
    } catch (const std::exception& error) {
        fmt::print(stderr, "charc: {}\n", error.what());
        return 1;
    }
    return 0;
}
