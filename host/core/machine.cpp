#include "core/machine.h"

#include "backends/headless/headless.h"
#include "backends/sdl/sdl_machine.h"
#include "core/log.h"

namespace {

const Machine* const Machines[] = {
    &SdlMachine,
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
