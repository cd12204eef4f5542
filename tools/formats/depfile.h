// What an output depends on, as make writes it, for the build tool.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// One line; blanks, hashes and dollars in names are escaped.
std::string DepfileLine(const std::string& output, const std::vector<std::filesystem::path>& sources);
