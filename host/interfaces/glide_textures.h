// The textures that the game has loaded.
#pragma once

void ForgetTextures();
