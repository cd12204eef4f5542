#include "machine/text_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr size_t MIB = size_t{1} << 20;

// Devices and folders can be opened, but some give bytes without end and others none.
bool IsFileOrPipe(fs::file_type type) {
    return type == fs::file_type::regular || type == fs::file_type::fifo;
}

// Returns what went wrong; empty: nothing.
std::string Read(const std::string& file, size_t most, std::string& text) {
    std::error_code ignored;
    const fs::file_status status = fs::status(file, ignored);
    if (fs::exists(status) && !IsFileOrPipe(status.type())) return "it is neither a file nor a pipe";
    std::FILE* stream = std::fopen(file.c_str(), "rb");
    if (!stream) return std::strerror(errno);
    char block[1 << 16];
    text.clear();
    while (text.size() <= most * MIB) {
        const size_t bytes = std::fread(block, 1, sizeof block, stream);
        if (bytes == 0) break;
        text.append(block, bytes);
    }
    const bool failed = std::ferror(stream) != 0;
    std::fclose(stream);
    if (failed) return "reading it failed";
    if (text.size() > most * MIB) return "it is longer than " + std::to_string(most) + " MiB";
    if (text.empty()) return "it is empty";
    return {};
}

}  // namespace

bool ReadTextFile(const std::string& file, size_t most, std::string& text, std::string& error) {
    const std::string problem = Read(file, most, text);
    if (!problem.empty()) error = file + ": cannot be read: " + problem;
    return problem.empty();
}
