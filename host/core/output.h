// Files that the program writes as it runs.
#pragma once

#include <cstdio>
#include <string>

// Writes what is still buffered. False: something could not be written, now or before; one line on standard error has
// said so. `name` is as that line calls it ("the trace t.jsonl").
bool FlushOutput(std::FILE* stream, const std::string& name);
