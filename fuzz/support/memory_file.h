// Inputs as files: regular ones, which lie in memory and have a path like any other.
#pragma once

#include <cstddef>
#include <cstdint>

void BeginMemoryFiles();  // those that were added before may be used again
// The path of a file that holds the bytes until the next BeginMemoryFiles.
const char* AddMemoryFile(const uint8_t* data, size_t size);
