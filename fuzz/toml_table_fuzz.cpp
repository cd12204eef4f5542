// The texts that the tools read besides maps and scores. The first byte chooses the tool, the rest is the text.
#include "charc/recipe_reader.h"
#include "formats/error.h"
#include "formats/material_list.h"
#include "picc/picture.h"
#include "skyc/compile.h"
#include "support/memory_file.h"
#include "texc/level_textures.h"
#include "texc/material.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const auto addText = [&](const std::string& before) {
        const std::string text = before + std::string(reinterpret_cast<const char*>(data + 1), size - 1);
        return AddMemoryFile(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    };
    BeginMemoryFiles();
    try {
        switch (data[0] % 6) {
        case 0: ReadMaterialList(addText("")); break;
        case 1: PaintMaterial(addText("size = [8, 8]\n")); break;  // the largest would take too long for a fuzzer
        case 2: ReadLevelTextures(addText("")); break;
        case 3: CompileSky(ReadSky(addText("")), {{3, "sky", 128, 64}}, "sky.toml"); break;
        case 4: ReadRecipe(addText("")); break;
        default: PaintPicture(addText(""), {"/nowhere", "/nowhere"}); break;
        }
    } catch (const ContentError&) {
    }
    return 0;
}
