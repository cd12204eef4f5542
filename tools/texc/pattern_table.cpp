#include "texc/pattern_table.h"

#include "texc/pattern_kinds.h"

namespace {

template <typename Kind>
std::unique_ptr<Pattern> Make(const TomlTable& settings, PictureSource& pictures) {
    if constexpr (std::is_constructible_v<Kind, const TomlTable&, PictureSource&>) {
        return std::make_unique<Kind>(settings, pictures);
    } else {
        return std::make_unique<Kind>(settings);
    }
}

struct Entry {
    const char* name;
    std::unique_ptr<Pattern> (*make)(const TomlTable&, PictureSource&);
};

constexpr Entry PATTERNS[] = {
    {"fill", Make<FillPattern>},         {"noise", Make<NoisePattern>},     {"gradient", Make<GradientPattern>},
    {"bricks", Make<BricksPattern>},     {"stones", Make<StonesPattern>},   {"scatter", Make<ScatterPattern>},
    {"box", Make<BoxPattern>},           {"band", Make<BandPattern>},       {"discs", Make<DiscsPattern>},
    {"polygon", Make<PolygonPattern>},   {"stripes", Make<StripesPattern>}, {"edges", Make<EdgesPattern>},
    {"crevices", Make<CrevicesPattern>}, {"picture", Make<PicturePattern>}, {"material", Make<MaterialPattern>},
};

}  // namespace

std::unique_ptr<Pattern> MakePattern(const TomlTable& settings, PictureSource& pictures) {
    std::vector<std::string> names;
    for (const Entry& entry : PATTERNS)
        names.emplace_back(entry.name);
    return PATTERNS[settings.Choice("pattern", "", names)].make(settings, pictures);
}
