#include "datacheck/folder.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>

int main(int argc, char** argv) {
    CLI::App app("Checks a data folder against the rules that the game's files must keep.");
    std::filesystem::path folder;
    app.add_option("folder", folder, "the folder that holds \"game\" and \"FrontEnd\"")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        Report report;
        CheckDataFolder(folder, report);
        for (const std::string& line : report.Lines())
            fmt::print("{}\n", line);
        return report.HasProblems() ? 1 : 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "datacheck: {}\n", error.what());
        return 1;
    }
}
