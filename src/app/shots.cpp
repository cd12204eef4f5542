#include "app/shots.h"

// Shots come later: until then nothing is fired.
void ClearShots() {}
void FireShot() {}
void UpdateShots() {}
