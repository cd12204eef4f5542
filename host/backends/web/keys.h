// The browser's names for the places of keys on a keyboard (KeyboardEvent.code), whatever its layout writes on them.
#pragma once

#include <cstdint>
#include <string_view>

uint8_t ScanCodeOfPlace(std::string_view place);     // 0: the game has no use for it
std::string_view PlaceOfScanCode(uint8_t scanCode);  // empty: the browser has no name for it
