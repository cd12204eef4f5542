#include "boards/texture_file.h"

#include "boards/texture_format.h"

#include <bit>
#include <cctype>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr size_t LINE_LENGTH_MAX = 1024;

struct FormatName {
    const char* name;
    GrTextureFormat_t format;
};
constexpr FormatName FORMAT_NAMES[] = {
    {"rgb332", GR_TEXFMT_RGB_332},
    {"yiq422", GR_TEXFMT_YIQ_422},
    {"yiq", GR_TEXFMT_YIQ_422},
    {"a8", GR_TEXFMT_ALPHA_8},
    {"i8", GR_TEXFMT_INTENSITY_8},
    {"ai44", GR_TEXFMT_ALPHA_INTENSITY_44},
    {"p8", GR_TEXFMT_P_8},
    {"argb8332", GR_TEXFMT_ARGB_8332},
    {"ayiq8422", GR_TEXFMT_AYIQ_8422},
    {"ayiq", GR_TEXFMT_AYIQ_8422},
    {"rgb565", GR_TEXFMT_RGB_565},
    {"argb1555", GR_TEXFMT_ARGB_1555},
    {"argb4444", GR_TEXFMT_ARGB_4444},
    {"ai88", GR_TEXFMT_ALPHA_INTENSITY_88},
    {"ap88", GR_TEXFMT_AP_88},
};

// Reads a line in lower case, without its end and the spaces around it. False: no line end within LINE_LENGTH_MAX
// characters.
bool ReadLine(std::FILE* file, std::string& line) {
    line.clear();
    for (int c = std::fgetc(file); c != '\n'; c = std::fgetc(file)) {
        if (c == EOF || line.size() == LINE_LENGTH_MAX) return false;
        line += static_cast<char>(std::tolower(c));
    }
    line.erase(line.find_last_not_of(" \t\r") + 1);
    line.erase(0, line.find_first_not_of(" \t"));
    return true;
}

bool ReadFieldLine(std::FILE* file, std::string& line) {
    do {
        if (!ReadLine(file, line)) return false;
    } while (line.starts_with('#'));
    return true;
}

bool TakeFormat(const std::string& line, GrTextureFormat_t& format) {
    for (const FormatName& entry : FORMAT_NAMES) {
        if (line != entry.name) continue;
        format = entry.format;
        return true;
    }
    return false;
}

bool TakePair(const std::string& line, const char* pattern, unsigned& first, unsigned& second) {
    return std::sscanf(line.c_str(), pattern, &first, &second) == 2;
}

bool HasVersion(const std::string& line) {
    int end = 0;  // characters read, with a major and a minor version number, whichever they are
    std::sscanf(line.c_str(), "3df v%*[0-9].%*[0-9]%n", &end);
    return end > 0;
}

bool TakeLod(unsigned side, GrLOD_t& lod) {
    if (side > 256 || !std::has_single_bit(side)) return false;
    lod = static_cast<GrLOD_t>(8 - std::countr_zero(side));
    return true;
}

bool TakeAspect(unsigned width, unsigned height, GrAspectRatio_t& aspect) {
    if (width > 8 || height > 8 || !std::has_single_bit(width) || !std::has_single_bit(height)) return false;
    if (width != 1 && height != 1) return false;
    aspect = static_cast<GrAspectRatio_t>(GR_ASPECT_1x1 + std::countr_zero(height) - std::countr_zero(width));
    return true;
}

bool ReadWords(std::FILE* file, void* words, size_t wordSize, size_t count) {
    auto* bytes = static_cast<uint8_t*>(words);
    if (std::fread(bytes, wordSize, count, file) != count) return false;
    for (size_t i = 0; i < count; ++i, bytes += wordSize) {
        uint32_t value = 0;
        for (size_t k = 0; k < wordSize; ++k)
            value = value << 8 | bytes[k];
        if (wordSize == 4)
            std::memcpy(bytes, &value, 4);
        else if (const auto half = static_cast<uint16_t>(value); wordSize == 2)
            std::memcpy(bytes, &half, 2);
    }
    return true;
}

bool ReadTable(std::FILE* file, const Gu3dfHeader& header, GuTexTable& table) {
    if (UsesNccTable(header.format))
        return ReadWords(file, &table.nccTable, sizeof(int16_t), sizeof(GuNccTable) / sizeof(int16_t));
    if (UsesPalette(header.format)) return ReadWords(file, table.palette.data, sizeof(uint32_t), 256);
    return true;
}

}  // namespace

bool ReadTextureHeader(std::FILE* file, Gu3dfInfo& info) {
    std::string line;
    unsigned first = 0;
    unsigned second = 0;
    Gu3dfHeader header{};
    if (!ReadLine(file, line) || !HasVersion(line)) return false;
    if (!ReadFieldLine(file, line) || !TakeFormat(line, header.format)) return false;
    if (!ReadFieldLine(file, line) || !TakePair(line, "lod range: %4u %4u", first, second)) return false;
    if (!TakeLod(first, header.small_lod) || !TakeLod(second, header.large_lod)) return false;
    if (header.small_lod < header.large_lod) std::swap(header.small_lod, header.large_lod);
    if (!ReadFieldLine(file, line) || !TakePair(line, "aspect ratio: %2u %2u", first, second)) return false;
    if (!TakeAspect(first, second, header.aspect_ratio)) return false;
    const LevelSize largest = SizeOfLevel(header.aspect_ratio, header.large_lod);
    header.width = largest.width;
    header.height = largest.height;
    info.header = header;
    info.mem_required =
        TexelsOfLevels(header.aspect_ratio, header.large_lod, header.small_lod) * TexelBytes(header.format);
    return true;
}

bool ReadTexels(std::FILE* file, Gu3dfInfo& info) {
    const uint32_t size = TexelBytes(info.header.format);
    return ReadTable(file, info.header, info.table) && ReadWords(file, info.data, size, info.mem_required / size);
}
