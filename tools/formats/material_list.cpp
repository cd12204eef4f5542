#include "formats/material_list.h"

#include "formats/error.h"
#include "formats/files.h"
#include "records/table_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>

namespace {

constexpr int SLOT_END = TEXTURES_MAX;
constexpr int TEXELS_MIN = 8;
constexpr int TEXELS_MAX = 128;
constexpr int LIGHT_MAX = 1000;
constexpr int CHANNEL_MAX = 63;
constexpr std::array<std::pair<const char*, unsigned>, 4> FLAG_NAMES{
    {{"clip", MATERIAL_CLIP}, {"sky", MATERIAL_SKY}, {"liquid", MATERIAL_LIQUID}, {"cutout", MATERIAL_CUTOUT}}};

struct Place {
    std::string file;
    int line;
};

int ParseNumber(const std::string& word, const char* what, const Place& place) {
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size()) {
        Refuse(place.file, place.line, fmt::format("the {} \"{}\" is not a number", what, Shown(word)),
               "write: slot name width height [flags]");
    }
    return value;
}

Rgba ParseColour(const std::string& word, const Place& place) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value, 16);
    if (error != std::errc() || end != word.data() + word.size() || word.size() != 6) {
        Refuse(place.file, place.line, fmt::format("\"{}\" is not a colour", Shown(word)), "write colour=rrggbb");
    }
    return {static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value), 255};
}

void ParseWord(const std::string& word, const Place& place, Material& material) {
    for (const auto& [name, flag] : FLAG_NAMES) {
        if (word != name) continue;
        material.flags |= flag;
        return;
    }
    const size_t equals = std::min(word.find('='), word.size() - 1);
    const std::string key = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    if (key == "colour") {
        material.colour = ParseColour(value, place);
    } else if (key == "cover") {
        material.cover = ParseNumber(value, "cover", place);
    } else if (key == "light") {
        material.light = ParseNumber(value, "light", place);
    } else {
        Refuse(place.file, place.line, fmt::format("unknown flag \"{}\"", Shown(word)),
               "flags are clip, sky, liquid and cutout; colour=, cover= and light= take values");
    }
}

void CheckMaterial(const Material& material, const Place& place) {
    const auto isSize = [](int n) { return n >= TEXELS_MIN && n <= TEXELS_MAX && (n & (n - 1)) == 0; };
    if (material.slot < 0 || material.slot >= SLOT_END) {
        Refuse(place.file, place.line, fmt::format("slot {} of {} does not exist", material.slot, Shown(material.name)),
               fmt::format("slots are 0..{}", SLOT_END - 1));
    }
    if (!isSize(material.width) || !isSize(material.height)) {
        Refuse(place.file, place.line,
               fmt::format("{} is {} x {} texels", Shown(material.name), material.width, material.height),
               fmt::format("sizes are powers of two from {} to {}", TEXELS_MIN, TEXELS_MAX));
    }
    if (material.cover < 0 || material.cover > 100 || material.light < 0 || material.light > LIGHT_MAX) {
        Refuse(place.file, place.line,
               fmt::format("{} has a cover of {} and a light of {}", material.name, material.cover, material.light),
               fmt::format("use 0..100 and 0..{}", LIGHT_MAX));
    }
    const bool isWord = !material.name.empty() && material.name.find_first_of(" \t\r\n#\"") == std::string::npos;
    if (!isWord) {
        Refuse(place.file, place.line, fmt::format("\"{}\" cannot be a material name", Shown(material.name)),
               "use letters, digits and / _ - + . only");
    }
}

Material ParseMaterial(const std::vector<std::string>& words, const Place& place) {
    if (words.size() < 4) {
        Refuse(place.file, place.line, "the line is too short", "write: slot name width height [flags]");
    }
    Material material;
    material.slot = ParseNumber(words[0], "slot", place);
    material.name = words[1];
    material.width = ParseNumber(words[2], "width", place);
    material.height = ParseNumber(words[3], "height", place);
    for (size_t i = 4; i < words.size(); ++i)
        ParseWord(words[i], place, material);
    CheckMaterial(material, place);
    return material;
}

std::array<int, 3> ParseDark(const std::vector<std::string>& words, const Place& place) {
    const char* remedy = "write: dark red green blue, each 0 to 63";
    if (words.size() != 4) Refuse(place.file, place.line, "the dark colour needs three numbers", remedy);
    std::array<int, 3> dark{};
    for (size_t i = 0; i < dark.size(); ++i) {
        dark[i] = ParseNumber(words[i + 1], "channel", place);
        if (dark[i] >= 0 && dark[i] <= CHANNEL_MAX) continue;
        Refuse(place.file, place.line, fmt::format("the dark colour has a channel of {}", dark[i]), remedy);
    }
    return dark;
}

std::vector<std::string> WordsOf(const std::string& line) {
    std::istringstream stream(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

void RefuseTwice(const Material& material, const Place& place) {
    Refuse(place.file, place.line, fmt::format("the material {} is listed twice", Shown(material.name)),
           "give each material its own name");
}

std::string LineOf(const Material& material) {
    std::string line = fmt::format("{} {} {} {}", material.slot, material.name, material.width, material.height);
    line += fmt::format(" colour={:02x}{:02x}{:02x}", material.colour.r, material.colour.g, material.colour.b);
    if (material.cover != 100) line += fmt::format(" cover={}", material.cover);
    if (material.light != 0) line += fmt::format(" light={}", material.light);
    for (const auto& [name, flag] : FLAG_NAMES) {
        if (material.flags & flag) line += fmt::format(" {}", name);
    }
    return line + '\n';
}

}  // namespace

MaterialList ReadMaterialList(const std::filesystem::path& path) {
    const std::vector<uint8_t> content = ReadWholeFile(path, TEXT_BYTES_MAX);
    std::istringstream stream(std::string(content.begin(), content.end()));
    MaterialList list;
    std::set<std::string> names;
    Place place{path.string(), 0};
    for (std::string line; std::getline(stream, line);) {
        ++place.line;
        const std::vector<std::string> words = WordsOf(line);
        if (words.empty()) continue;
        if (words[0] == "dark") {
            list.dark = ParseDark(words, place);
            continue;
        }
        list.materials.push_back(ParseMaterial(words, place));
        if (!names.insert(list.materials.back().name).second) RefuseTwice(list.materials.back(), place);
    }
    return list;
}

void WriteMaterialList(const std::filesystem::path& path, const MaterialList& list) {
    std::vector<Material> sorted = list.materials;
    std::sort(sorted.begin(), sorted.end(),
              [](const Material& a, const Material& b) { return std::tie(a.slot, a.name) < std::tie(b.slot, b.name); });
    const Place place{path.string(), 0};
    std::set<std::string> names;
    std::string text = "# slot name width height, how light takes it, flags\n";
    if (list.dark) text += fmt::format("dark {} {} {}\n", (*list.dark)[0], (*list.dark)[1], (*list.dark)[2]);
    for (const Material& material : sorted) {
        CheckMaterial(material, place);
        if (!names.insert(material.name).second) RefuseTwice(material, place);
        text += LineOf(material);
    }
    WriteWholeFile(path, {text.begin(), text.end()});
}
