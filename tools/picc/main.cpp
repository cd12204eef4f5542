// picc: paints a front-end picture from its description.
#include "formats/files.h"
#include "picc/blend.h"
#include "picc/picture.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char** argv) {
    std::string description, output, preview;
    int shrink = 1;
    PictureSources sources;
    CLI::App app{"Paints a front-end picture, 640 x 480, from its description."};
    app.add_option("description", description, "The description (.toml)")->required();
    app.add_option("-o,--output", output, "The bitmap to write (.bmp)")->required();
    app.add_option("--materials", sources.materials, "Folder of the painted materials")->required();
    app.add_option("--fonts", sources.fonts, "Folder of the fonts (.ttf)")->required();
    app.add_option("--pictures", sources.pictures, "Folder of pictures taken in the game");
    app.add_option("--preview", preview, "The same picture as PNG to write");
    app.add_option("--shrink", shrink, "Write the picture that many times smaller")->check(CLI::Range(1, 16));
    CLI11_PARSE(app, argc, argv);
    try {
        const Image image = Shrink(PaintPicture(description, sources), shrink);
        if (!preview.empty()) WritePng(preview, image);
        WriteWholeFile(output, EncodeBitmap(image));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "picc: " << error.what() << "\n";
        return 1;
    }
}
