#include "boards/boards.h"

#include "boards/cpu/cpu_board.h"

const Board* CurrentBoard = nullptr;

void ChooseBoard(BoardChoice choice) {
    CurrentBoard = choice == BoardChoice::None ? nullptr : &CpuBoard;
}
