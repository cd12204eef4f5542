// Animation files and their playback.
#pragma once

#include "records/character_records.h"

void LoadAnimations(AnimFileEntry* table);  // every entry up to the one without a path
