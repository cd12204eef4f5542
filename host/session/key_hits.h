// What the screens over the picture hear of the keys.
#pragma once

#include "input/devices.h"

#include <bitset>

class KeyHits {
public:
    // Sleeps until something may have happened. Then each source has the keys that have gone down on it since the last
    // call; those that were held at the first call have not.
    void Wait();
    const std::bitset<KEY_COUNT>& Of(KeySource source) const { return hits_[static_cast<size_t>(source)]; }
    bool Any(uint8_t scanCode) const;  // on any source
    bool None() const;                 // nothing has gone down

private:
    std::bitset<KEY_COUNT> before_[KEY_SOURCES], hits_[KEY_SOURCES];
    bool first_ = true;
};
