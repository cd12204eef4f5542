// All that the camera sees.
#pragma once

// Draws the sky, if the level has one, the world and the character in it, in the order the renderer wants.
void DrawView();
