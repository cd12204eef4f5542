// musicc: renders a score as a sound file.
#include "musicc/render.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv) {
    std::string score, output;
    CLI::App app{"Renders a score as a sound file that can be played over and over without a seam."};
    app.add_option("score", score, "The score (.toml)")->required();
    app.add_option("-o,--output", output, "The sound to write (.flac, .ogg or .wav)")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        WriteSound(output, RenderScore(LoadScore(score)));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "musicc: " << error.what() << "\n";
        return 1;
    }
}
