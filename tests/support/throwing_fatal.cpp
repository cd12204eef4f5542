#include "support/throwing_fatal.h"

#include "memory/fatal.h"

void FatalError(int exitCode, const char* message, const char* path) {
    throw FatalThrown(exitCode, message, path);
}
