#include "session/ending.h"

#include "machine/machine.h"
#include "machine/process.h"

#include <cstdlib>

bool (*FinishBeforeEnd)() = [] { return true; };

void EndRun(int status) {
    const bool complete = FinishBeforeEnd();
    CurrentMachine->stop();
    EndBySignal();
    std::exit(complete ? status : EXIT_FAILURE);
}
