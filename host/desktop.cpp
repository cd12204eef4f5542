// The back ends and boards of a build for desktop computers. A build for another kind of computer takes a file like
// this one in its place (host/CMakeLists.txt).
#include "backends/headless/headless.h"
#include "backends/sdl/sdl_machine.h"
#include "boards/cpu/cpu_board.h"
#include "boards/gpu/gpu_board.h"
#include "host/host.h"
#include "session/program.h"

namespace {

const Machine* const MACHINES[] = {&SdlMachine, &HeadlessMachine};
const Board* const BOARDS[] = {&GpuBoard, &CpuBoard};

}  // namespace

int HostMain(int argumentCount, char** arguments, const HostGame& game, GameMain gameMain) {
    return RunProgram(argumentCount, arguments, {MACHINES, BOARDS}, game, gameMain);
}
