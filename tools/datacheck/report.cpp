#include "datacheck/report.h"

#include <fmt/format.h>

namespace {

constexpr int SHOWN_REPEATS = 5;

std::string LineOf(const std::string& file, const std::string& place, const std::string& wrong,
                   const std::string& remedy) {
    if (place.empty()) return fmt::format("{}: {}: {}", file, wrong, remedy);
    return fmt::format("{}: {}: {}: {}", file, place, wrong, remedy);
}

}  // namespace

void Report::Add(const std::string& file, const std::string& wrong, const std::string& line) {
    std::string group = file + ": ";
    for (const char letter : wrong) {
        if (letter < '0' || letter > '9') {
            group += letter;
        } else if (group.back() != '#') {
            group += '#';
        }
    }
    if (++repeats_[group] <= SHOWN_REPEATS) lines_.push_back(line);
}

void Report::Problem(const std::string& file, const std::string& place, const std::string& wrong,
                     const std::string& remedy) {
    ++problems_;
    Add(file, wrong, LineOf(file, place, wrong, remedy));
}

void Report::Note(const std::string& file, const std::string& place, const std::string& wrong,
                  const std::string& remedy) {
    Add(file, wrong, "note: " + LineOf(file, place, wrong, remedy));
}

void Report::Problem(const std::string& line) {
    ++problems_;
    lines_.push_back(line);
}

std::vector<std::string> Report::Lines() const {
    std::vector<std::string> lines = lines_;
    for (const auto& [group, count] : repeats_) {
        if (count > SHOWN_REPEATS) lines.push_back(fmt::format("{} ({} more)", group, count - SHOWN_REPEATS));
    }
    return lines;
}
