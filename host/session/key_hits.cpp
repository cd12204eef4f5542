#include "session/key_hits.h"

#include "machine/machine.h"

#include <algorithm>
#include <iterator>

void KeyHits::Wait() {
    CurrentMachine->wait();
    for (size_t source = 0; source < KEY_SOURCES; ++source) {
        const std::bitset<KEY_COUNT> pressed = PressesOf(static_cast<KeySource>(source));
        const std::bitset<KEY_COUNT> down = TakeKeysOf(static_cast<KeySource>(source));
        hits_[source] = first_ ? std::bitset<KEY_COUNT>() : pressed | (down & ~before_[source]);
        before_[source] = down;
    }
    first_ = false;
}

bool KeyHits::Any(uint8_t scanCode) const {
    return std::any_of(std::begin(hits_), std::end(hits_), [&](const auto& hits) { return hits[scanCode]; });
}

bool KeyHits::None() const {
    return std::all_of(std::begin(hits_), std::end(hits_), [](const auto& hits) { return hits.none(); });
}
