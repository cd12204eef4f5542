#include "mapc/fault_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace {

constexpr size_t SHOWN_MAX = 20;

// The text without its numbers and quoted names.
std::string KindOf(const std::string& text) {
    std::string kind;
    bool quoted = false;
    for (const char letter : text) {
        if (letter == '"') {
            quoted = !quoted;
            if (quoted) kind += "\"...\"";
        } else if (!quoted && (letter < '0' || letter > '9')) {
            kind += letter;
        }
    }
    return kind;
}

}  // namespace

std::string FaultList::Text() const {
    std::vector<Fault> sorted = list_;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Fault& a, const Fault& b) { return a.line < b.line; });
    std::map<std::string, size_t> counts;
    std::string text;
    for (const Fault& fault : sorted) {
        if (++counts[KindOf(fault.text)] <= SHOWN_MAX) text.append(text.empty() ? "" : "\n").append(fault.text);
    }
    for (const auto& [kind, count] : counts) {
        if (count > SHOWN_MAX) text += fmt::format("\nand {} more: {}", count - SHOWN_MAX, kind);
    }
    return text;
}

void FaultList::Throw() const {
    if (Any()) throw ContentError(Text());
}
