// Whole files, in and out. A run that fails or is killed leaves every output as it was.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

constexpr size_t FILE_BYTES_MAX = 64 << 20;  // largest size of a picture, a model or a map
constexpr size_t TEXT_BYTES_MAX = 1 << 20;   // largest size of settings and lists, which people write by hand

// ContentError for what cannot be read, is no regular file (a device may have no end) or is larger.
std::vector<uint8_t> ReadWholeFile(const std::filesystem::path& path, size_t mostBytes = FILE_BYTES_MAX);

struct OutputFile {
    std::filesystem::path path;
    std::vector<uint8_t> content;
};

// Writes each file to a temporary one beside it, <path>.part. These take their names only when all are written;
// otherwise they are removed, and a ContentError says why. Folders are made. A file that holds its content already
// is left alone: the build then need not make again what depends on it.
void WriteWholeFiles(const std::vector<OutputFile>& files);
void WriteWholeFile(const std::filesystem::path& path, const std::vector<uint8_t>& content);
