// Bytes of the game's files, in either byte order. A reader never leaves its buffer: reading past the end throws a
// ContentError that names the file and the offset.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

class ByteWriter {
public:
    std::vector<uint8_t> bytes;

    void U8(uint32_t value) { bytes.push_back(static_cast<uint8_t>(value)); }
    void U16(uint32_t value) { Little(value, 2); }
    void U32(uint32_t value) { Little(value, 4); }
    void I16(int32_t value) { Little(static_cast<uint32_t>(value), 2); }
    void I32(int32_t value) { Little(static_cast<uint32_t>(value), 4); }
    void F32(float value) { U32(std::bit_cast<uint32_t>(value)); }
    void F64(double value);
    void BigU16(uint32_t value) { Big(value, 2); }
    void BigU32(uint32_t value) { Big(value, 4); }
    void Zeros(size_t count) { bytes.insert(bytes.end(), count, 0); }
    void Append(const void* data, size_t count);

private:
    void Little(uint32_t value, int count);
    void Big(uint32_t value, int count);
};

class ByteReader {
public:
    ByteReader(std::vector<uint8_t> content, std::string fileName);

    size_t Left() const { return content_.size() - offset_; }
    const std::string& File() const { return file_; }

    uint8_t U8() { return Take(1)[0]; }
    uint16_t U16();
    uint32_t U32();
    int16_t I16() { return static_cast<int16_t>(U16()); }
    int32_t I32() { return static_cast<int32_t>(U32()); }
    float F32() { return std::bit_cast<float>(U32()); }
    double F64();
    uint16_t BigU16();
    uint32_t BigU32();
    const uint8_t* Take(size_t count);  // the next bytes

private:
    std::vector<uint8_t> content_;
    std::string file_;
    size_t offset_ = 0;
};
