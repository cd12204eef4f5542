#include "input/keys.h"

bool FindKey(std::string_view name, uint8_t& scanCode) {
    for (const Key& key : KEYBOARD_KEYS) {
        if (name != key.name) continue;
        scanCode = key.scanCode;
        return true;
    }
    return false;
}
