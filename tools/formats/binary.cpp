#include "formats/binary.h"

#include "formats/error.h"

#include <fmt/format.h>

void ByteWriter::Little(uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        U8((value >> (8 * i)) & 0xFF);
}

void ByteWriter::Big(uint32_t value, int count) {
    for (int i = count - 1; i >= 0; --i)
        U8((value >> (8 * i)) & 0xFF);
}

void ByteWriter::F64(double value) {
    const uint64_t bits = std::bit_cast<uint64_t>(value);
    U32(static_cast<uint32_t>(bits));
    U32(static_cast<uint32_t>(bits >> 32));
}

void ByteWriter::Append(const void* data, size_t count) {
    const auto* first = static_cast<const uint8_t*>(data);
    bytes.insert(bytes.end(), first, first + count);
}

ByteReader::ByteReader(std::vector<uint8_t> content, std::string fileName)
    : content_(std::move(content)), file_(std::move(fileName)) {}

const uint8_t* ByteReader::Take(size_t count) {
    if (count > Left()) {
        Refuse(
            file_, 0,
            fmt::format("ends at byte {}, but {} more bytes are needed at offset {}", content_.size(), count, offset_),
            "the file is damaged or was cut short; build it again");
    }
    const uint8_t* first = content_.data() + offset_;
    offset_ += count;
    return first;
}

uint16_t ByteReader::U16() {
    const uint8_t* b = Take(2);
    return static_cast<uint16_t>(b[0] | (b[1] << 8));
}

uint32_t ByteReader::U32() {
    const uint32_t low = U16();
    return low | (static_cast<uint32_t>(U16()) << 16);
}

double ByteReader::F64() {
    const uint64_t low = U32();
    return std::bit_cast<double>(low | (static_cast<uint64_t>(U32()) << 32));
}

uint16_t ByteReader::BigU16() {
    const uint8_t* b = Take(2);
    return static_cast<uint16_t>((b[0] << 8) | b[1]);
}

uint32_t ByteReader::BigU32() {
    const uint32_t high = BigU16();
    return (high << 16) | BigU16();
}
