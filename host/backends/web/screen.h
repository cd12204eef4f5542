// Where the page shows the game's picture: with WebGL where a graphics card draws it. Elsewhere the browser enlarges
// two plain canvases, of the picture and of what lies over it, which costs a fraction of WebGL that the processor
// draws.
#pragma once

#include "machine/machine.h"

#include <cstdint>
#include <vector>

void OpenScreen();
void TakeRedFirst(const Picture& picture, std::vector<uint32_t>& pixels);  // opaque
void ShowPicture(const Picture& picture);
bool ShowTexture(uint32_t texture, int width, int height);  // false: it cannot be shown from there
void ShowOverlayPicture(const Picture* overlay);            // machine/machine.h, showOverlay
void ShowAgain();                                           // as the settings are now
void ShowAgainAfterResize();
