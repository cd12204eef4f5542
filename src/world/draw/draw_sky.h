// The sky, drawn before the world.
#pragma once

// Draws SkyObject turned with the camera but never moved with it, its polygons in their order and all at one light;
// the world covers it. Polygons with less than 3 or more than 12 corners are left out. Nothing while FogSwitch is 0.
void DrawSky();
