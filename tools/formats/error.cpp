#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr size_t PATH_SHOWN_MAX = 400;

}  // namespace

void Refuse(const std::string& file, int line, const std::string& problem, const std::string& remedy) {
    const std::string name = Shown(file, PATH_SHOWN_MAX);
    const std::string place = line > 0 ? fmt::format("{}:{}", name, line) : name;
    throw ContentError(fmt::format("{}: {}: {}", place, problem, remedy));
}

std::string Shown(std::string_view text, size_t mostBytes) {
    std::string shown(text.substr(0, mostBytes));
    if (text.size() > mostBytes) {
        while (!shown.empty() && (static_cast<unsigned char>(text[shown.size()]) & 0xC0) == 0x80)
            shown.pop_back();  // no half of a character
        shown += "...";
    }
    std::replace_if(
        shown.begin(), shown.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return shown;
}
