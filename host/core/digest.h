// FNV-1a, 64 bits: tells two states or pictures apart, in any process on any machine of the same byte order.
#pragma once

#include <cstddef>
#include <cstdint>

class Digest {
public:
    void Add(const void* data, size_t bytes) {
        const auto* byte = static_cast<const uint8_t*>(data);
        for (size_t i = 0; i < bytes; ++i)
            value_ = (value_ ^ byte[i]) * 0x100000001B3;
    }

    uint64_t Value() const { return value_; }

private:
    uint64_t value_ = 0xCBF29CE484222325;
};
