#include "machine/machine.h"

#include "machine/log.h"

const Machine* CurrentMachine = nullptr;

bool HasSettings() {
    return CurrentMachine->showOverlay && CurrentMachine->applySettings;
}

void StartMachine(const Options& options, std::span<const Machine* const> machines) {
    for (const Machine* machine : machines) {
        if (options.headless && machine != machines.back()) continue;
        if (machine->start(options)) {
            CurrentMachine = machine;
            HostLog("machine: %s", machine->name);
            return;
        }
        HostLog("machine %s is not available", machine->name);
    }
}
