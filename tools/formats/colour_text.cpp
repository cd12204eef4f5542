#include "formats/colour_text.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <charconv>

std::vector<Rgba> ReadColours(const TomlTable& settings, const std::string& key) {
    std::vector<Rgba> colours;
    for (const std::string& text : settings.Texts(key)) {
        uint32_t value = 0;
        const char* const end = text.data() + text.size();
        const bool shaped = text.size() == 7 && text[0] == '#';
        if (!shaped || std::from_chars(text.data() + 1, end, value, 16).ptr != end) {
            settings.RefuseKey(key, fmt::format("has no colour in '{}'", Shown(text)), "write it as \"#rrggbb\"");
        }
        colours.push_back(
            {static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value), 255});
    }
    return colours;
}

Rgba ReadColour(const TomlTable& settings, const std::string& key) {
    const std::vector<Rgba> colours = ReadColours(settings, key);
    if (colours.size() != 1)
        settings.RefuseKey(key, fmt::format("has {} colours", colours.size()), "write one, as \"#rrggbb\"");
    return colours[0];
}

Rgba ReadColour(const TomlTable& settings, const std::string& key, Rgba fallback) {
    return settings.Has(key) ? ReadColour(settings, key) : fallback;
}
