// A model (.glb) as a character and as a layer of a sky. The input is the JSON up to its first byte 0, then the buffer;
// the headers around them are made here. An input that begins with "glTF" is a whole file.
#include "charc/compile.h"
#include "formats/error.h"
#include "skyc/compile.h"
#include "skyc/layers.h"
#include "support/memory_file.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using Bytes = std::vector<uint8_t>;

void AddNumber(Bytes& bytes, size_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<uint8_t>(number >> shift));
}

void AddChunk(Bytes& bytes, const char* kind, const uint8_t* from, const uint8_t* to) {
    const auto size = static_cast<size_t>(to - from);
    AddNumber(bytes, (size + 3) / 4 * 4);
    bytes.insert(bytes.end(), kind, kind + 4);
    bytes.insert(bytes.end(), from, to);
    bytes.insert(bytes.end(), (4 - size % 4) % 4, ' ');
}

Bytes FileOf(const uint8_t* data, size_t size) {
    if (size >= 4 && std::memcmp(data, "glTF", 4) == 0) return {data, data + size};
    const uint8_t* const end = data + size;
    const uint8_t* const split = std::find(data, end, 0);
    Bytes chunks;
    AddChunk(chunks, "JSON", data, split);
    if (split != end) AddChunk(chunks, "BIN\0", split + 1, end);
    Bytes file = {'g', 'l', 'T', 'F', 2, 0, 0, 0};
    AddNumber(file, 12 + chunks.size());
    file.insert(file.end(), chunks.begin(), chunks.end());
    return file;
}

CharacterRecipe RecipeFor(const char* model) {
    CharacterRecipe recipe;
    recipe.file = "input.toml";
    recipe.model = model;
    recipe.joints = std::vector<std::string>(CHARACTER_BONES);
    recipe.joints[0] = "hip";
    recipe.joints[1] = "arm";
    recipe.folded = {"tail"};
    recipe.materials = {"skin"};
    ClipRecipe run;
    run.file = "zerorun.anm";
    run.clip = "run";
    run.loop = true;
    run.times = {10, 110, 210};
    recipe.clips = {run};
    return recipe;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const Bytes file = FileOf(data, size);
    BeginMemoryFiles();
    const std::string model = AddMemoryFile(file.data(), file.size());
    try {
        for (const OutputFile& output : CompileCharacter(RecipeFor(model.c_str())).files) {
            if (output.path.extension() == ".anm") DecodeAnimation(output.content, "made.anm");
            if (output.path.extension() == ".msh") DecodeMesh(output.content, "made.msh");
            if (output.path.extension() == ".wei") DecodeWeights(output.content, "made.wei");
        }
    } catch (const ContentError& error) {
        if (std::strstr(error.what(), "made.") == error.what()) std::abort();
    }
    try {
        SkyShape shape;
        AddModel(TomlTable::Parse("file = '" + model + "'", "input.toml"), shape);
        CompileSky(shape, {{3, "skin", 128, 64}}, "sky.toml");
    } catch (const ContentError&) {
    }
    return 0;
}
