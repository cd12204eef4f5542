#include "boards/boards.h"

#include "boards/cpu/cpu_board.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gpu_board.h"
#include "core/log.h"

#include <cstdio>

const Board* CurrentBoard = nullptr;

namespace {

bool isAutomatic = false;

const Board* BoardOf(BoardChoice choice) {
    switch (choice) {
    case BoardChoice::None: return nullptr;
    case BoardChoice::Gpu: return &GpuBoard;
    default: return &CpuBoard;
    }
}

// A processor that draws OpenGL's way is slower than one that draws the cpu board's.
bool OpenOnGraphicsCard(std::string& error) {
    if (!EnterGl(error)) return false;
    if (!GlIsSoftware()) return GpuBoard.open(error);
    error = "there is no graphics card behind OpenGL";
    return false;
}

bool OpenAutomatically(std::string& error) {
    CurrentBoard = &GpuBoard;
    if (OpenOnGraphicsCard(error)) return true;
    HostLog("not the gpu board: %s", error.c_str());
    CurrentBoard = &CpuBoard;
    return CpuBoard.open(error);
}

}  // namespace

void ChooseBoard(const Options& options, bool hasWindow) {
    isAutomatic = options.board == BoardChoice::Auto && hasWindow;
    CurrentBoard = BoardOf(options.board);
    GpuBoardScale = options.boardScale;
}

bool OpenBoard() {
    std::string error;
    if (!(isAutomatic ? OpenAutomatically(error) : CurrentBoard->open(error))) {
        PrintError("the %s board cannot be used: %s; with --board cpu the processor draws", CurrentBoard->name,
                   error.c_str());
        return false;
    }
    HostLog("board: %s", CurrentBoard->name);
    if (CurrentBoard->scale() != GpuBoardScale)
        PrintError("the %s board draws 640 x 480 only, whatever --board-scale", CurrentBoard->name);
    return true;
}
