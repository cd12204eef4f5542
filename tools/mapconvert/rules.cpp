#include "mapconvert/rules.h"

#include "formats/toml_table.h"

#include <algorithm>
#include <cctype>

namespace {

TomlTable OnlyTable(const TomlTable& text, const std::string& key) {
    const std::vector<TomlTable> tables = text.Tables(key);
    if (tables.size() != 1) text.RefuseKey(key, "is missing or no single table", "write one [" + key + "]");
    return tables[0];
}

}  // namespace

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool Matches(const NamePatterns& patterns, const std::string& name) {
    const std::string lower = LowerCase(name);
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& written) {
        const std::string pattern = LowerCase(written);
        if (!pattern.ends_with('*')) return lower == pattern;
        return lower.starts_with(pattern.substr(0, pattern.size() - 1));
    });
}

ForeignRules ReadForeignRules(const std::filesystem::path& path) {
    const TomlTable text = TomlTable::Load(path);
    ForeignRules rules;
    const auto number = [](const TomlTable& table, const char* key, double& value, float least, float most) {
        value = static_cast<double>(table.Number(key, static_cast<float>(value), least, most));
    };
    const std::filesystem::path home = path.parent_path();
    number(text, "door", rules.door, 1, 10000);
    for (const std::string& place : text.Texts("pictures"))
        rules.pictures.push_back(home / place);
    if (const std::string palette = text.Text("palette", ""); !palette.empty()) rules.palette = home / palette;
    rules.starts = text.Texts("starts");

    const TomlTable classes = OnlyTable(text, "classes");
    rules.world = classes.Texts("world");
    rules.leftOut = classes.Texts("left_out");
    classes.Finish();

    const TomlTable faces = OnlyTable(text, "faces");
    rules.sky = faces.Texts("sky");
    rules.clip = faces.Texts("clip");
    rules.unseen = faces.Texts("unseen");
    rules.leftOutFaces = faces.Texts("left_out");
    rules.liquid = faces.Texts("liquid");
    faces.Finish();

    const TomlTable light = OnlyTable(text, "light");
    rules.lamps = light.Texts("lamps");
    rules.suns = light.Texts("suns");
    number(light, "weight", rules.lampWeight, 0, 10);
    number(light, "reach", rules.lampReach, 0.01F, 100);
    number(light, "sun", rules.sun, 0, 1000);
    number(light, "sky_light", rules.skyLight, 0, 1000);
    number(light, "ambient", rules.ambient, 0, 127);
    light.Finish();
    text.Finish();
    return rules;
}
