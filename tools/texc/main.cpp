// texc: paints material recipes, and compiles a level's materials into texture.bin.
#include "formats/depfile.h"
#include "formats/error.h"
#include "formats/files.h"
#include "texc/contact_sheet.h"
#include "texc/level_textures.h"
#include "texc/material.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <iostream>

namespace {

struct Options {
    std::string recipe, picture, still, dependencies;
    std::string level, pictures, texture, list, sheet, accelerator;
    std::vector<std::string> sheetPictures;
};

void Paint(const Options& options) {
    const PaintedMaterial material = PaintMaterial(options.recipe);
    WritePng(options.picture, material.picture);
    if (!options.still.empty()) WritePng(options.still, FirstPicture(material));
    if (options.dependencies.empty()) return;
    const std::string line = DepfileLine(options.picture, material.sources);
    WriteWholeFile(options.dependencies, {line.begin(), line.end()});
}

void CompileLevel(const Options& options) {
    const CompiledTextures compiled = CompileTextures(ReadLevelTextures(options.level), options.pictures);
    if (!options.sheet.empty()) {
        std::vector<Image> shown;
        for (const TextureSlot& slot : compiled.textures.slots) {
            if (slot != compiled.textures.slots[SLOT_CLIP])
                shown.push_back(ShowLit(compiled.textures, slot, compiled.dark));
        }
        WritePng(options.sheet, ContactSheet(shown));
    }
    WriteMaterialList(options.list, {compiled.list, compiled.dark});
    WriteWholeFile(options.texture, EncodeTextureFile(compiled.textures));
    if (!options.accelerator.empty()) WriteGlideTextures(options.accelerator, compiled);
}

void WriteSheet(const Options& options) {
    std::vector<Image> shown;
    for (const std::string& path : options.sheetPictures)
        shown.push_back(ReadPng(path));
    WritePng(options.sheet, ContactSheet(shown));
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app{"Paints material recipes and compiles the textures of a level."};
    app.require_subcommand(1);
    CLI::App* paint = app.add_subcommand("paint", "Paint one recipe as a true-colour PNG");
    paint->add_option("recipe", options.recipe, "The recipe (.toml)")->required();
    paint->add_option("-o,--output", options.picture, "The picture (.png)")->required();
    paint->add_option("--still", options.still, "Write the first picture of a moving material alone, for map editors");
    paint->add_option("--depfile", options.dependencies, "Write the files the picture depends on, for the build");
    CLI::App* level = app.add_subcommand("level", "Compile the materials that a level lists");
    level->add_option("list", options.level, "The level's textures.toml")->required();
    level->add_option("--pictures", options.pictures, "Folder of the painted materials")->required();
    level->add_option("--texture", options.texture, "texture.bin to write")->required();
    level->add_option("--accelerator", options.accelerator, "Folder for the accelerator's textures to write");
    level->add_option("--materials", options.list, "Material list for mapc to write")->required();
    level->add_option("--sheet", options.sheet,
                      "Contact sheet in the level's palette, at five levels of light, to write (.png)");
    CLI::App* sheet = app.add_subcommand("sheet", "Put painted materials side by side");
    sheet->add_option("pictures", options.sheetPictures, "The pictures (.png)")->required();
    sheet->add_option("-o,--output", options.sheet, "The contact sheet (.png)")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        if (*paint) Paint(options);
        if (*level) CompileLevel(options);
        if (*sheet) WriteSheet(options);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "texc: " << error.what() << "\n";
        return 1;
    }
}
