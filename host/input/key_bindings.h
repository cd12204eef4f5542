// Which key of the keyboard does what in a level. Every action, of the game (host/host.h) and of the machine itself,
// has its usual keys, or the one that the player has chosen instead. Kept in the settings file as `key_<name>`: the
// name of a key (input/keys.h), `usual` or `none`. Before a level and on the settings screen the usual keys hold.
//
// A key does one thing: one that is chosen for an action is lost to the action whose usual key it is, and of two
// actions with the same key the lower one has it.
#pragma once

#include "host/host.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

constexpr uint8_t KEY_CODE_FREE_POINTER = 0x43;  // F9

// Makes them settings. Called once the game is known, before the settings are read.
void StartKeyBindings();

std::vector<HostKey> KeyActions();

// What each key of the keyboard is to the game in a level, by its scan code; 0: nothing.
std::array<uint8_t, 256> KeyMeanings();

// Scan codes of the keys that do the action in a level. Empty: none does.
std::vector<uint8_t> KeysOf(size_t action);

void BindKey(size_t action, uint8_t scanCode);  // as the player does; the key leaves the action that it was chosen for
void ResetKeyBindings();
