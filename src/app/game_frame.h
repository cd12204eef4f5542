// The per-frame driver, the development keys and the animated-texture cycle.
#pragma once

void GameFrame();
void DebugKeys();
void TextureCycle();
