#include "memory/fatal.h"

#include "host/files.h"
#include "memory/shutdown.h"

#include <cstdlib>

void FatalError(int exitCode, const char* message, const char* path) {
    SystemShutdown();
    HostReportFatal(message, path);
    std::exit(exitCode);
}
