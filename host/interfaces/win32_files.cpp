#include "host/files.h"
#include "host/win32.h"

#include <cstdio>

// A file's handle is its stream.

HANDLE CreateFileA(const char* path, DWORD access, DWORD, SECURITY_ATTRIBUTES*, DWORD disposition, DWORD, HANDLE) {
    if (access != GENERIC_READ || disposition != OPEN_EXISTING) return INVALID_HANDLE_VALUE;
    std::FILE* stream = HostOpenFile(path, "rb");
    return stream ? stream : INVALID_HANDLE_VALUE;
}

DWORD GetFileSize(HANDLE file, DWORD* high) {
    auto* stream = static_cast<std::FILE*>(file);
    const long place = std::ftell(stream);
    if (place < 0 || std::fseek(stream, 0, SEEK_END) != 0) return INVALID_FILE_SIZE;
    const long size = std::ftell(stream);
    if (size < 0 || std::fseek(stream, place, SEEK_SET) != 0) return INVALID_FILE_SIZE;
    if (high) *high = static_cast<DWORD>(static_cast<uint64_t>(size) >> 32);
    return !high && static_cast<uint64_t>(size) >= INVALID_FILE_SIZE ? INVALID_FILE_SIZE : static_cast<DWORD>(size);
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, void*) {
    auto* stream = static_cast<std::FILE*>(file);
    *bytesRead = static_cast<DWORD>(std::fread(buffer, 1, bytes, stream));
    return std::ferror(stream) ? FALSE : TRUE;
}

BOOL CloseHandle(HANDLE handle) {
    return std::fclose(static_cast<std::FILE*>(handle)) == 0 ? TRUE : FALSE;
}
