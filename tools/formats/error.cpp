#include "formats/error.h"

#include <fmt/format.h>

void Refuse(const std::string& file, int line, const std::string& problem, const std::string& remedy) {
    const std::string place = line > 0 ? fmt::format("{}:{}", file, line) : file;
    throw ContentError(fmt::format("{}: {}: {}", place, problem, remedy));
}
