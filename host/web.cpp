// A page in a browser: the parts of the machine that this build has (desktop.cpp is its counterpart).
#include "backends/headless/headless.h"
#include "backends/web/web_machine.h"
#include "boards/cpu/cpu_board.h"
#include "boards/gpu/gpu_board.h"
#include "host/host.h"
#include "session/program.h"

namespace {

const Machine* const MACHINES[] = {&WebMachine, &HeadlessMachine};
const Board* const BOARDS[] = {&GpuBoard, &CpuBoard};

}  // namespace

int HostMain(int argumentCount, char** arguments, const HostGame& game, GameMain gameMain) {
    return RunProgram(argumentCount, arguments, {MACHINES, BOARDS}, game, gameMain);
}
