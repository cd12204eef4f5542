// What the program writes besides the log: lines on standard error, and the files of a run.
#pragma once

#include <cstdio>
#include <string>

// A line on standard error, after the program's name.
[[gnu::format(printf, 1, 2)]] void PrintError(const char* format, ...);

// Writes what is still buffered. False: something could not be written, now or before; one line on standard error has
// said so. `name` is as that line calls it ("the trace t.jsonl").
bool FlushOutput(std::FILE* stream, const std::string& name);
