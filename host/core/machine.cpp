#include "core/machine.h"

#include "backends/headless/headless.h"
#include "core/log.h"

#if __has_include("backends/sdl/sdl_machine.h")
#include "backends/sdl/sdl_machine.h"
#define TARNWICK_SDL
#endif

namespace {

const Machine* const Machines[] = {
#ifdef TARNWICK_SDL
    &SdlMachine,
#endif
    &HeadlessMachine,
};

}  // namespace

const Machine* CurrentMachine = &HeadlessMachine;

void StartMachine(const Options& options) {
    for (const Machine* machine : Machines) {
        if (options.headless && machine != &HeadlessMachine) continue;
        if (machine->start(options)) {
            CurrentMachine = machine;
            HostLog("machine: %s", machine->name);
            return;
        }
        HostLog("machine %s is not available", machine->name);
    }
}
