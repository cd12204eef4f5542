#include "character/animation.h"

// Comes with the character's files.
void LoadAnimations(AnimFileEntry*) {}
