// The player's shots.
#pragma once

void ClearShots();
void FireShot();
void UpdateShots();
