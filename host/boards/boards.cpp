#include "boards/boards.h"

#include "machine/log.h"
#include "machine/output.h"

#include <cstring>
#include <optional>

const Board* CurrentBoard = nullptr;
uint32_t BoardScale = 1;

namespace {

std::span<const Board* const> available;
std::optional<BoardChoice> changed;
std::span<const Board* const> candidates;  // the boards that the choice `auto` may still take; empty once it is settled

const Board* BoardOf(BoardChoice choice, std::span<const Board* const> boards) {
    if (choice == BoardChoice::None) return nullptr;
    for (const Board* board : boards)
        if (choice == BoardChoice::Gpu && std::strcmp(board->name, "gpu") == 0) return board;
    return boards.back();
}

bool OpenSuitable(const Board& board, std::string& error) {
    if (board.suits && !board.suits(error)) return false;
    return board.open(error);
}

bool OpenAutomatically(std::string& error) {
    for (const Board* board : candidates.first(candidates.size() - 1)) {
        CurrentBoard = board;
        if (OpenSuitable(*board, error)) return true;
        HostLog("not the %s board: %s", board->name, error.c_str());
    }
    CurrentBoard = candidates.back();
    return CurrentBoard->open(error);
}

}  // namespace

void ChooseBoard(const Options& options, bool hasWindow, std::span<const Board* const> boards) {
    available = hasWindow ? boards : std::span<const Board* const>();
    changed.reset();
    candidates = {};
    if (options.board == BoardChoice::Auto && hasWindow) candidates = boards;
    CurrentBoard = BoardOf(options.board, boards);
    BoardScale = options.boardScale;
}

void ChangeBoard(BoardChoice choice, uint32_t scale) {
    if (!CurrentBoard || available.empty()) return;
    changed = choice;
    BoardScale = scale;
}

bool OpenBoard() {
    if (changed) {
        candidates = *changed == BoardChoice::Auto ? available : std::span<const Board* const>();
        CurrentBoard = BoardOf(*changed, available);
        changed.reset();
    }
    std::string error;
    if (!(candidates.empty() ? CurrentBoard->open(error) : OpenAutomatically(error))) {
        PrintError("the %s board cannot be used: %s; with --board cpu the processor draws", CurrentBoard->name,
                   error.c_str());
        return false;
    }
    HostLog("board: %s", CurrentBoard->name);
    if (BoardScale != 0 && CurrentBoard->scale() != BoardScale)
        PrintError("the %s board draws 640 x 480 only, whatever --board-scale", CurrentBoard->name);
    return true;
}
