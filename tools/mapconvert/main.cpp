#include "formats/error.h"
#include "mapconvert/convert.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>

int main(int argc, char** argv) {
    CLI::App app("Makes a map from elsewhere one that mapc takes, with its pictures and its textures.toml.");
    ConvertOptions options;
    std::filesystem::path output;
    app.add_option("map", options.map, "the .map file")->required();
    app.add_option("--rules", options.rules, "the table of classes and textures, such as content/foreign.toml")
        ->required();
    app.add_option("--pictures", options.pictures,
                   "folders of PNG and WAD files, or single files; those beside the map and in its folder textures are "
                   "found without");
    double scale = 0;
    app.add_option("--scale", scale, "engine units for each unit of the map; by the table's door when it is left out")
        ->check(CLI::Range(0.01, 100.0));
    app.add_option("-o,--output", output, "the folder to write to")->required();
    CLI11_PARSE(app, argc, argv);
    if (scale > 0) options.scale = scale;
    try {
        const ConvertedMap converted = ConvertMap(options);
        WriteConverted(converted, options.map, output);
        for (const std::string& note : converted.notes)
            fmt::print("note: {}\n", note);
    } catch (const std::exception& error) {
        fmt::print(stderr, "mapconvert: {}\n", error.what());
        return 1;
    }
    return 0;
}
