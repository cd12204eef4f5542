#include "machine/window_place.h"

#include "machine/settings.h"

#include <charconv>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view UNKNOWN = "unknown";
constexpr int SIDE_MIN = 240, SIDE_MAX = 16384, WAY_MAX = 65536;

std::optional<size_t> number;

// Takes a number within its range and what follows it off the text.
bool TakePart(std::string_view& text, std::string_view behind, int least, int most, int& part) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), part);
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    if (error != std::errc{} || part < least || part > most || !text.starts_with(behind)) return false;
    text.remove_prefix(behind.size());
    return true;
}

std::optional<WindowPlace> Parse(std::string_view text) {
    WindowPlace place{};
    if (!TakePart(text, ",", -WAY_MAX, WAY_MAX, place.x) || !TakePart(text, " ", -WAY_MAX, WAY_MAX, place.y) ||
        !TakePart(text, "x", SIDE_MIN, SIDE_MAX, place.width) ||
        !TakePart(text, "", SIDE_MIN, SIDE_MAX, place.height) || !text.empty())
        return {};
    return place;
}

}  // namespace

void StartWindowPlace() {
    number = AddTextSetting({"window_place", "where the window was, and how large", std::string(UNKNOWN),
                             [](std::string_view text) { return text == UNKNOWN || Parse(text); },
                             "unknown, or as 100,50 960x720"});
}

std::optional<WindowPlace> RememberedPlace() {
    return number ? Parse(TextSettingValue(*number)) : std::nullopt;
}

void RememberPlace(const WindowPlace& place) {
    if (!number) return;
    std::string text = std::to_string(place.x) + "," + std::to_string(place.y);
    text.append(" ").append(std::to_string(place.width)).append("x").append(std::to_string(place.height));
    if (Parse(text)) ChangeTextSetting(*number, text);
}
