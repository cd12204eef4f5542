// The sky, behind the world.
#pragma once

// Draws SkyObject turned with the camera but never moved with it, its polygons all at one light and in their order, or
// the last one first where the renderer wants the nearest first. Polygons with less than 3 or more than 12 corners are
// left out. Nothing while FogSwitch is 0.
void DrawSky();
