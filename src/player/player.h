// The player character: placing it at the level's start and its per-frame step.
#pragma once

void UpdatePlayer();
