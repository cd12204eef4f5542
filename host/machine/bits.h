// std::bit_cast, which not every C++20 library has.
#pragma once

template <typename To, typename From>
constexpr To BitCast(const From& from) {
    return __builtin_bit_cast(To, from);
}
