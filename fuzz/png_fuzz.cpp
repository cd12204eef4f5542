// A PNG file as a picture and as a terrain's heights. The check sum of every chunk is corrected first: a reader that
// stops at a wrong check sum would hide all faults behind it.
#include "formats/error.h"
#include "formats/height_image.h"
#include "formats/image.h"
#include "support/memory_file.h"

namespace {

constexpr size_t SIGNATURE = 8;

uint32_t CheckSum(const uint8_t* from, size_t size) {
    uint32_t sum = ~0U;
    for (size_t i = 0; i < size; ++i) {
        sum ^= from[i];
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

// A chunk is its length, four letters, as many bytes as the length says, and the sum over letters and bytes.
void MakeSumsGood(std::vector<uint8_t>& file) {
    for (size_t at = SIGNATURE; at + 12 <= file.size();) {
        size_t length = 0;
        for (size_t i = 0; i < 4; ++i)
            length = length << 8 | file[at + i];
        if (length > file.size() - at - 12) return;
        const uint32_t sum = CheckSum(&file[at + 4], length + 4);
        at += 8 + length;
        for (int shift = 24; shift >= 0; shift -= 8)
            file[at++] = static_cast<uint8_t>(sum >> shift);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> file(data, data + size);
    MakeSumsGood(file);
    BeginMemoryFiles();
    const char* const path = AddMemoryFile(file.data(), file.size());
    try {
        ReadPng(path);
    } catch (const ContentError&) {
    }
    try {
        ReadHeightImage(path);
    } catch (const ContentError&) {
    }
    return 0;
}
