#include "character/skin.h"

// Comes with the character's files.
void* LoadWeights(const char*) {
    return nullptr;
}
