// The rules asked of a level before it is written, so that the map compiler refuses what this checker would.
#pragma once

#include "mapc/compile.h"

// ContentError with a line for each broken rule; places are those of the map.
void CheckCompiled(const CompiledLevel& compiled, const CompileFiles& files, const MaterialList& list);
