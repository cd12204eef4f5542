#include "core/output.h"

#include "core/log.h"

#include <cerrno>
#include <cstring>

bool FlushOutput(std::FILE* stream, const std::string& name) {
    errno = 0;
    if (std::fflush(stream) == 0 && !std::ferror(stream)) return true;
    PrintError("%s is not complete: %s", name.c_str(), errno != 0 ? std::strerror(errno) : "an earlier write failed");
    return false;
}
