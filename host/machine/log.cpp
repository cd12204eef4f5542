#include "machine/log.h"

#include "machine/output.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

std::FILE* logStream = nullptr;
std::string outputName = "standard output";

}  // namespace

bool StartLog(const Options& options) {
    if (options.verbose) {
        logStream = stderr;
        return true;
    }
    if (options.log.empty()) return true;
    if (!std::freopen(options.log.c_str(), "w", stdout)) {
        PrintError("cannot write the log %s: %s", options.log.c_str(), std::strerror(errno));
        return false;
    }
    logStream = stdout;
    outputName = "the log " + options.log;
    return true;
}

bool FinishLog() {
    return FlushOutput(stdout, outputName);
}

void HostLog(const char* format, ...) {
    if (!logStream) return;
    std::va_list arguments;
    va_start(arguments, format);
    std::fputs("host: ", logStream);
    std::vfprintf(logStream, format, arguments);
    std::fputc('\n', logStream);
    va_end(arguments);
}
