#include "machine/output.h"

#include "machine/game.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>

void PrintError(const char* format, ...) {
    std::fprintf(stderr, "%s: ", CurrentGame->program);
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}

bool FlushOutput(std::FILE* stream, const std::string& name) {
    errno = 0;
    if (std::fflush(stream) == 0 && !std::ferror(stream)) return true;
    PrintError("%s is not complete: %s", name.c_str(), errno != 0 ? std::strerror(errno) : "an earlier write failed");
    return false;
}
