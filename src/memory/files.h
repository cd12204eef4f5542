// Whole files into the pool, and readers of big-endian integers from the current read stream. Paths are the game's
// own ("game\data\...", any case of letters), below the data folder. Nothing here prints or ends the program.
#pragma once

#include <cstdint>
#include <cstdio>

extern std::FILE* ReadStream;  // set by the loader that opens a file
void CloseReadStream();        // there must be one; null afterwards

std::FILE* OpenGameFile(const char* path, const char* mode);  // null: no such file, or a folder
int32_t FileSize(const char* path);                           // bytes; -1: cannot be opened, or 2 GiB and more
void* LoadMalloc(const char* path);                           // a pool block, or null and the pool unchanged

// From ReadStream. Past the end, and without a stream, every byte counts as -1 and is added in: a whole word gives
// 0xFEFF, a whole long 0xFEFEFEFF.
uint16_t ReadWord();
uint32_t ReadLong();

bool ReadBlock(void* destination, uint32_t bytes);  // false: fewer arrived; the rest keeps its contents
uint32_t BytesLeft();                               // bytes from the read position to the end of ReadStream
