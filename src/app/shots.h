// The player's shots.
#pragma once

void ClearShots();   // every slot free, and the first frame may fire
void FireShot();     // called by DebugKeys in every frame in which right Ctrl is held
void UpdateShots();  // moves and ends them; once a frame
