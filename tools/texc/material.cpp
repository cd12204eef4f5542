#include "texc/material.h"

#include "formats/texture_file.h"
#include "texc/layer.h"
#include "texc/noise.h"

#include <fmt/format.h>

#include <algorithm>

struct Studio::Recipe {
    int width = 128, height = 128, pictures = 1;
    Finish finish;
    std::vector<Layer> layers;
};

namespace {

constexpr size_t DEPTH_MAX = 4;     // how deep recipes may show others
constexpr size_t LAYERS_MAX = 256;  // layers of a recipe and its bases together

int ReadSide(const TomlTable& text, size_t index) {
    const float side = text.Numbers("size", 2, {128, 128})[index];
    const int whole = static_cast<int>(side);
    if (static_cast<float>(whole) != side || !IsTextureSide(whole)) {
        text.RefuseKey("size", "is not a size a texture can have", "use 8, 16, 32, 64 or 128 for each side");
    }
    return whole;
}

template <class Recipe>
void ReadHead(const TomlTable& text, Recipe& recipe) {
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

}  // namespace

std::filesystem::path Studio::PathOf(const TomlTable& from, const std::string& key) const {
    const std::filesystem::path path =
        std::filesystem::path(from.File()).parent_path() / (from.NeedText(key) + ".toml");
    if (open_.size() > DEPTH_MAX || std::find(open_.begin(), open_.end(), path) != open_.end())
        from.RefuseKey(key, "goes round in a circle or too deep", "paint it from layers");
    return path;
}

const Image& Studio::Picture(const TomlTable& from, const std::string& key) {
    const std::filesystem::path path = std::filesystem::path(from.File()).parent_path() / from.NeedText(key);
    const auto [entry, isNew] = pictures_.try_emplace(path);
    if (isNew) {
        entry->second = ReadPng(path);
        sources_.push_back(path);
    }
    return entry->second;
}

const Image& Studio::Material(const TomlTable& from, const std::string& key) {
    const std::filesystem::path path = PathOf(from, key);
    const auto known = materials_.find(path);
    if (known != materials_.end()) return known->second;
    Recipe recipe = Read(path);
    return materials_.emplace(path, Draw(recipe)).first->second;
}

Studio::Recipe Studio::ReadBase(const TomlTable& text) {
    if (text.Text("base", "").empty()) return {};
    return Read(PathOf(text, "base"));
}

Studio::Recipe Studio::Read(const std::filesystem::path& path) {
    open_.push_back(path);
    const TomlTable text = TomlTable::Load(path);
    Recipe recipe = ReadBase(text);
    sources_.push_back(path);
    ReadHead(text, recipe);
    const auto seed = static_cast<uint32_t>(text.Int("seed", 1, 0, 1'000'000));
    uint32_t index = 0;
    for (const TomlTable& layer : text.Tables("layer"))
        recipe.layers.emplace_back(layer, Hash(seed, index++), *this);
    if (recipe.layers.empty()) text.RefuseTable("has no layers", "add a [[layer]]");
    if (recipe.layers.size() > LAYERS_MAX) {
        text.RefuseTable(fmt::format("has {} layers with those of its base", recipe.layers.size()),
                         fmt::format("{} are the most", LAYERS_MAX));
    }
    text.Finish();
    open_.pop_back();
    return recipe;
}

Image Studio::Draw(Recipe& recipe) const {
    Image strip(recipe.width, recipe.height * recipe.pictures);
    for (int i = 0; i < recipe.pictures; ++i) {
        Canvas canvas(recipe.width, recipe.height);
        const Moment moment{static_cast<float>(i) / static_cast<float>(ANIMATION_PICTURES)};
        for (Layer& layer : recipe.layers)
            layer.Paint(canvas, moment);
        const Image picture = Develop(canvas, recipe.finish);
        std::copy(picture.pixels.begin(), picture.pixels.end(),
                  strip.pixels.begin() + static_cast<std::ptrdiff_t>(strip.Index(0, i * recipe.height)));
    }
    return strip;
}

PaintedMaterial Studio::Paint(const std::filesystem::path& path) {
    Recipe recipe = Read(path);
    return {Draw(recipe), sources_, recipe.pictures};
}

PaintedMaterial PaintMaterial(const std::filesystem::path& path) {
    return Studio().Paint(path);
}

Image FirstPicture(const PaintedMaterial& material) {
    Image first = material.picture;
    first.height /= material.pictures;
    first.pixels.resize(first.pixels.size() / static_cast<size_t>(material.pictures));
    return first;
}
