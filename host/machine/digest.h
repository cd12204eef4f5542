// A 64-bit digest that tells two states or pictures apart; the same on every machine of the same byte order. Not for
// secrets.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

class Digest {
public:
    // Eight bytes at a time: a whole picture is digested in every traced frame.
    void Add(const void* data, size_t bytes) {
        const auto* next = static_cast<const uint8_t*>(data);
        for (size_t left = bytes; left > 0;) {
            const size_t taken = std::min(left, sizeof(uint64_t));
            uint64_t word = 0;
            std::memcpy(&word, next, taken);
            Mix(word);
            next += taken;
            left -= taken;
        }
    }

    uint64_t Value() const { return value_; }

private:
    // The product carries a difference into higher bits only; the fold brings it down again.
    void Mix(uint64_t word) {
        value_ = (value_ ^ word) * 0x9E3779B97F4A7C15;
        value_ ^= value_ >> 32;
    }

    uint64_t value_ = 0xCBF29CE484222325;
};
