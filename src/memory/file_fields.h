// Little-endian fields of a file image in memory, at any alignment. The caller has checked the offset.
#pragma once

#include <cstdint>
#include <cstring>

template <typename T>
T FileField(const uint8_t* image, uint32_t offset) {
    T value;
    std::memcpy(&value, image + offset, sizeof value);
    return value;
}
