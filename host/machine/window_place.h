// Where the window was when the player last left it: the setting `window_place`, by desktops that tell it.
#pragma once

#include <optional>

struct WindowPlace {
    int x, y;           // of the upper left corner, with the desktop's edges, over all displays
    int width, height;  // without the edges
};

void StartWindowPlace();  // makes it a setting; before the settings are read
std::optional<WindowPlace> RememberedPlace();
void RememberPlace(const WindowPlace& place);
