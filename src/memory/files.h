// Whole files into the pool, and readers of big-endian integers from the current read stream.
#pragma once

#include <cstdint>
#include <cstdio>

extern std::FILE* ReadStream;  // the loader that opens a file sets it and closes it

std::FILE* OpenGameFile(const char* path, const char* mode);  // backslashes and any case of letters; null: none
int32_t FileSize(const char* path);                           // -1: no such file, not a file, or too large
void* LoadMalloc(const char* path);                           // a pool block, or null and the pool unchanged
uint16_t ReadWord();                                          // at the end of the file each byte counts as -1
uint32_t ReadLong();
bool ReadBlock(void* destination, uint32_t bytes);            // false: fewer arrived; nothing is cleared
uint32_t BytesLeft();                                         // in ReadStream, from here to its end
