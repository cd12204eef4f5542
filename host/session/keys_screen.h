// The screen of the keys (input/key_bindings.h), which the settings screen leads to: every key of a level with its name
// on the user's keyboard and on the controller at hand, to be changed and reset.
#pragma once

class KeyHits;

void RunKeysScreen(KeyHits& hits);  // returns when the player goes back, or the program is to end
