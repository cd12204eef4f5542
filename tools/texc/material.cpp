#include "texc/material.h"

#include "formats/texture_file.h"
#include "texc/layer.h"
#include "texc/noise.h"

#include <algorithm>

namespace {

constexpr int MAX_DEPTH = 4;  // of recipes that paint others

struct Recipe {
    int width = 128, height = 128, pictures = 1;
    Finish finish;
    std::vector<Layer> layers;
    std::vector<std::filesystem::path> sources;
};

int ReadSide(const Settings& text, size_t index) {
    const float side = text.Numbers("size", 2, {128, 128})[index];
    const int whole = static_cast<int>(side);
    if (static_cast<float>(whole) != side || !IsTextureSide(whole)) {
        text.RefuseKey("size", "is not a size a texture can have", "use 8, 16, 32, 64 or 128 for each side");
    }
    return whole;
}

void ReadHead(const Settings& text, Recipe& recipe) {
    if (text.Has("size")) {
        recipe.width = ReadSide(text, 0);
        recipe.height = ReadSide(text, 1);
    }
    if (text.Flag("moving", recipe.pictures > 1)) recipe.pictures = ANIMATION_PICTURES;
    Finish& finish = recipe.finish;
    finish.relief = text.Number("relief", finish.relief, 0, 8);
    finish.hollows = text.Number("hollows", finish.hollows, 0, 4);
    finish.contrast = text.Number("contrast", finish.contrast, 0, 4);
    finish.brightness = text.Number("brightness", finish.brightness, 0, 4);
}

Recipe ReadRecipe(const std::filesystem::path& path, int depth);

// The recipe that a key names; one without layers when there is no such key.
Recipe ReadNamed(const Settings& text, const std::string& key, int depth) {
    const std::string name = text.Text(key, "");
    if (name.empty()) return {};
    if (depth == MAX_DEPTH) text.RefuseKey(key, "goes round in a circle or too deep", "paint it from layers");
    return ReadRecipe(MaterialRecipe(text.File(), name), depth + 1);
}

Recipe ReadRecipe(const std::filesystem::path& path, int depth) {
    const Settings text = Settings::Load(path);
    Recipe recipe = ReadNamed(text, "base", depth);
    recipe.sources.push_back(path);
    ReadHead(text, recipe);
    const auto seed = static_cast<uint32_t>(text.Int("seed", 1, 0, 1'000'000));
    uint32_t index = 0;
    for (const Settings& layer : text.Tables("layer")) {
        const Recipe shown = ReadNamed(layer, "material", depth);  // first, for it refuses circles
        recipe.sources.insert(recipe.sources.end(), shown.sources.begin(), shown.sources.end());
        recipe.layers.emplace_back(layer, Hash(seed, index++));
        const std::string picture = layer.Text("file", "");
        if (!picture.empty()) recipe.sources.push_back(path.parent_path() / picture);
    }
    if (recipe.layers.empty()) text.RefuseTable("has no layers", "add a [[layer]]");
    text.Finish();
    return recipe;
}

}  // namespace

std::filesystem::path MaterialRecipe(const std::filesystem::path& beside, const std::string& name) {
    return beside.parent_path() / (name + ".toml");
}

PaintedMaterial PaintMaterial(const std::filesystem::path& path) {
    Recipe recipe = ReadRecipe(path, 0);
    PaintedMaterial material{Image(recipe.width, recipe.height * recipe.pictures), recipe.sources};
    for (int i = 0; i < recipe.pictures; ++i) {
        Canvas canvas(recipe.width, recipe.height);
        const Moment moment{static_cast<float>(i) / static_cast<float>(ANIMATION_PICTURES)};
        for (Layer& layer : recipe.layers)
            layer.Paint(canvas, moment);
        const Image picture = Develop(canvas, recipe.finish);
        std::copy(picture.pixels.begin(), picture.pixels.end(),
                  material.picture.pixels.begin() +
                      static_cast<std::ptrdiff_t>(material.picture.Index(0, i * recipe.height)));
    }
    return material;
}
