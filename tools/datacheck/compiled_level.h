// The rules asked of a level before it is written, so that the map compiler refuses what this checker would.
#pragma once

#include "mapc/compile.h"

// Notes on what is worth a look. ContentError with a line for each broken rule. Places are those of the map.
std::vector<std::string> CheckCompiled(const CompiledLevel& compiled, const CompileFiles& files,
                                       const MaterialList& list);
