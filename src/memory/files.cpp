#include "memory/files.h"

#include "host/files.h"
#include "memory/pool.h"

#include <limits>

std::FILE* ReadStream;

namespace {

// Kept as it is: EOF (-1) is added like any byte, so that what is read past the end is defined, though useless.
uint32_t NextByte() {
    return static_cast<uint32_t>(ReadStream ? std::getc(ReadStream) : EOF);
}

int64_t LengthOf(std::FILE* file) {
    if (std::fseek(file, 0, SEEK_END) != 0) return -1;
    return std::ftell(file);
}

bool ReadWholeFile(const char* path, void* destination, uint32_t bytes) {
    std::FILE* file = OpenGameFile(path, "rb");
    if (!file) return false;
    const bool complete = std::fread(destination, 1, bytes, file) == bytes;
    std::fclose(file);
    return complete;
}

}  // namespace

std::FILE* OpenGameFile(const char* path, const char* mode) {
    return HostOpenFile(path, mode);
}

void CloseReadStream() {
    std::fclose(ReadStream);
    ReadStream = nullptr;
}

int32_t FileSize(const char* path) {
    std::FILE* file = OpenGameFile(path, "rb");
    if (!file) return -1;
    const int64_t length = LengthOf(file);
    std::fclose(file);
    return length <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(length) : -1;
}

void* LoadMalloc(const char* path) {
    const int32_t size = FileSize(path);
    if (size < 0) return nullptr;
    void* block = PoolMalloc(static_cast<uint32_t>(size));
    if (block && !ReadWholeFile(path, block, static_cast<uint32_t>(size))) {
        PoolFree(block);
        return nullptr;
    }
    return block;
}

uint16_t ReadWord() {
    const uint32_t high = NextByte();
    return static_cast<uint16_t>(high * 256 + NextByte());
}

uint32_t ReadLong() {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value * 256 + NextByte();
    return value;
}

bool ReadBlock(void* destination, uint32_t bytes) {
    return ReadStream && std::fread(destination, 1, bytes, ReadStream) == bytes;
}

uint32_t BytesLeft() {
    if (!ReadStream) return 0;
    const long here = std::ftell(ReadStream);
    const int64_t length = LengthOf(ReadStream);
    if (here < 0 || length < here || std::fseek(ReadStream, here, SEEK_SET) != 0) return 0;
    return static_cast<uint32_t>(length - here);
}
