#include "skyc/compile.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>

int main(int argc, char** argv) {
    CLI::App app("Makes a level's sky from its description.");
    std::string description, materials, output;
    app.add_option("description", description, "the .toml that lists the layers of the sky")->required();
    app.add_option("--materials", materials, "the level's list of materials")->required();
    app.add_option("-o,--output", output, "the .sob to write")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        fmt::print("{}", CompileSkyToFile(description, materials, output));
    } catch (const std::exception& error) {
        fmt::print(stderr, "skyc: {}\n", error.what());
        return 1;
    }
    return 0;
}
