// The names of the keys, by scan code: those of DirectInput without DIK_.
#pragma once

#include <cstdint>
#include <string_view>

// False: no key of that name.
bool FindKey(std::string_view name, uint8_t& scanCode);
