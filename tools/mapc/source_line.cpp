#include "mapc/source_line.h"

#include "formats/error.h"

#include <fmt/format.h>

std::string SourceLine::Text() const {
    if (!file) return "";
    return fmt::format("{}:{}{}{}", *file, number, instance ? ", placed by " : "", instance ? *instance : "");
}

void Refuse(const SourceLine& line, const std::string& problem, const std::string& remedy) {
    const std::string placed = line.instance ? fmt::format(" (placed by {})", *line.instance) : "";
    Refuse(line.file ? *line.file : "", line.number, problem + placed, remedy);
}
