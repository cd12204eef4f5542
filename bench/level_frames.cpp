// level_frames [--data DIR] [LEVEL...]: one frame of each level as the accelerator's boards draw it, without the work
// of the game itself. The gpu board draws with whatever OpenGL finds, which may be the processor again.

#include "app/entry.h"
#include "app/host_game.h"
#include "boards/boards.h"
#include "boards/cpu/cpu_board.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gpu_board.h"
#include "records/levels.h"
#include "rounds.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int RECORDED_FRAME = 80;
constexpr int ROUNDS = 15;
constexpr double MILLISECONDS_MAX = 1000.0 / 60;

int Level;
int FrameNumber;
std::vector<BoardFrame> Parts;  // parts of the frame, which is handed over before each change of a texture
std::vector<std::pair<uint32_t, TextureImage>> Images;
std::FILE* Output;  // for the results; what the game prints goes nowhere

struct Load {
    double triangles, pixels;
};

double Area(const BoardVertex* corners) {
    const BoardVertex &a = corners[0], &b = corners[1], &c = corners[2];
    return std::abs((double{b.x} - a.x) * (double{c.y} - a.y) - (double{c.x} - a.x) * (double{b.y} - a.y)) / 2;
}

Load LoadOf(const std::vector<BoardFrame>& frames) {
    Load load{};
    for (const BoardFrame& frame : frames)
        for (const BoardRun& run : frame.runs) {
            if (run.action != BoardAction::Triangles) continue;
            for (uint32_t i = run.first; i < run.first + run.count; i += 3) {
                load.triangles += 1;
                load.pixels += Area(&frame.vertices[i]);
            }
        }
    return load;
}

void Print(const char* name, const Rounds& rounds, size_t work) {
    const Load load = LoadOf(Parts);
    const double milliseconds = rounds.Median(work) * 1e-6;
    std::fprintf(Output, "  %-22s %7.3f ms  spread %4.1f %%  %6.2f million triangles/s  %7.1f million pixels/s%s\n",
                 name, milliseconds, 100 * rounds.Spread(work), load.triangles / milliseconds * 1e-3,
                 load.pixels / milliseconds * 1e-3, milliseconds <= MILLISECONDS_MAX ? "" : "  MISSED");
}

void Measure(const char* name, const Board& board, Rounds::Clock clock) {
    Rounds rounds(clock);
    const size_t work = rounds.Add(name, 1, [&board] {
        for (const BoardFrame& part : Parts)
            board.draw(part);
        board.finish();
    });
    rounds.Run(ROUNDS);
    Print(name, rounds, work);
}

bool Reopen(const Board& board, std::string& error) {
    if (!board.open(error)) return false;
    for (const auto& [number, image] : Images)
        board.loadTexture(number, image);
    return true;
}

// The frame with all triangles in the state of the first one, so that they are drawn in one run.
std::vector<BoardFrame> AsOneRun() {
    BoardFrame all;
    for (const BoardFrame& part : Parts) {
        all.states.insert(all.states.end(), part.states.begin(), part.states.end());
        for (const BoardRun& run : part.runs)
            if (run.action == BoardAction::Triangles)
                all.vertices.insert(all.vertices.end(), part.vertices.begin() + run.first,
                                    part.vertices.begin() + run.first + run.count);
    }
    all.runs = {{BoardAction::ClearColour, 0, 0, 0, 0},
                {BoardAction::ClearDepth, 0, 0, 0, 0xFFFF},
                {BoardAction::Triangles, 0, static_cast<uint32_t>(all.vertices.size()), 0, 0}};
    return {all};
}

void MeasureBoards() {
    const Load load = LoadOf(Parts);
    std::fprintf(Output, "Level %d: %.0f triangles, %.2f layers\n", Level, load.triangles,
                 load.pixels / (BOARD_WIDTH * BOARD_HEIGHT));
    std::string error;
    for (const unsigned threads : {1U, 2U}) {
        CpuBoard.close();
        CpuBoardThreads = threads;
        if (!Reopen(CpuBoard, error)) continue;
        if (threads == 1)
            Measure("cpu, 1 thread", CpuBoard, Rounds::Clock::Thread);
        else
            Measure("cpu, 2 threads", CpuBoard, Rounds::Clock::Wall);
    }
    if (EnterGl(error) && Reopen(GpuBoard, error)) {
        Measure(GlIsSoftware() ? "gpu, OpenGL in software" : "gpu", GpuBoard, Rounds::Clock::Wall);
        Parts = AsOneRun();
        Measure("  one draw call", GpuBoard, Rounds::Clock::Wall);
    } else
        std::fprintf(Output, "  not the gpu board: %s\n", error.c_str());
}

Board RecorderOf(Board board) {
    board.loadTexture = [](uint32_t number, TextureImage image) {
        Images.emplace_back(number, image);
        CpuBoard.loadTexture(number, std::move(image));
    };
    board.draw = [](const BoardFrame& frame) {
        Parts.push_back(frame);
        CpuBoard.draw(frame);
    };
    board.swap = [] {
        if (++FrameNumber == RECORDED_FRAME) {
            MeasureBoards();
            std::fflush(Output);
            std::_Exit(EXIT_SUCCESS);
        }
        Parts.clear();
        CpuBoard.swap();
    };
    return board;
}

int RecordGame(HINSTANCE instance, HINSTANCE previousInstance, char* commandLine, int showCommand) {
    static const Board recorder = RecorderOf(CpuBoard);
    CurrentBoard = &recorder;
    return WinMain(instance, previousInstance, commandLine, showCommand);
}

// Measures a level in a process of its own, because a game starts only once in a process.
void RunLevel(std::vector<std::string> arguments) {
    const pid_t child = fork();
    if (child != 0) {
        waitpid(child, nullptr, 0);
        return;
    }
    const std::string asked[] = {"--headless", "--renderer", "accelerator", "--level", std::to_string(Level)};
    arguments.insert(arguments.end(), std::begin(asked), std::end(asked));
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    HostMain(static_cast<int>(pointers.size()), pointers.data(), GameForHost, RecordGame);
    std::fprintf(Output, "Level %d ended before its frame %d\n", Level, RECORDED_FRAME);
    std::fflush(Output);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    Output = fdopen(dup(STDOUT_FILENO), "w");
    if (!Output || !std::freopen("/dev/null", "w", stdout)) return EXIT_FAILURE;
    std::vector<std::string> hostArguments = {arguments[0]};
    std::vector<int> levels;
    for (int i = 1; i < argumentCount; ++i) {
        if (std::strcmp(arguments[i], "--data") == 0 && i + 1 < argumentCount)
            hostArguments.insert(hostArguments.end(), {arguments[i], arguments[i + 1]}), i++;
        else
            levels.push_back(std::atoi(arguments[i]));
    }
    if (levels.empty())
        for (int level = 1; level <= LEVEL_COUNT; ++level)
            levels.push_back(level);
    for (const int level : levels) {
        Level = level;
        RunLevel(hostArguments);
    }
    return 0;
}
