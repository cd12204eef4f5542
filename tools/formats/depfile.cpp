#include "formats/depfile.h"

namespace {

std::string Escape(const std::string& path) {
    std::string escaped;
    for (const char c : path) {
        if (c == ' ' || c == '#') escaped += '\\';
        if (c == '$') escaped += '$';
        escaped += c;
    }
    return escaped;
}

}  // namespace

std::string DepfileLine(const std::string& output, const std::vector<std::filesystem::path>& sources) {
    std::string line = Escape(output) + ":";
    for (const auto& source : sources)
        line.append(" ").append(Escape(source.string()));
    return line + "\n";
}
