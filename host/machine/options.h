// The command line. One table (options.cpp) gives the names, the arguments and the --help text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ShotRequest {
    uint32_t frame;    // game frame, counted from 1
    std::string file;  // PNG
};

struct MotionRequest {
    float point[3];    // point of the world, world units
    std::string file;  // text
};

enum class RendererChoice { Unset, Software, Accelerator };
enum class BoardChoice { Auto, Gpu, Cpu, None };

// Pixels that the software renderer can draw, in the order of the game's table of modes.
constexpr std::string_view SOFTWARE_SIZES[] = {"320x240", "512x384", "640x480"};

// Paths are as given: relative to the folder the program was called from.
struct Options {
    std::string data;     // folder that holds game/ and FrontEnd/; empty: where FindDataFolder finds it
    std::string disc;     // folder of the music; empty: `disc` in the data folder
    std::string log;      // file for the game's standard output and the host's log lines
    int windowWidth = 0;  // 0: full screen
    int windowHeight = 0;
    bool fullscreen = false;   // whatever the window's size
    bool windowGiven = false;  // by the command line, so that the window's place is neither used nor remembered
    int level = 0;             // 1 to the number of levels; 0: chosen by hand
    RendererChoice renderer = RendererChoice::Unset;
    BoardChoice board = BoardChoice::Auto;
    uint32_t boardScale = 0;  // sides of the gpu board's picture, in times of 640 x 480; 0: as the window's size asks
    bool headless = false;
    std::string script;
    std::string record;
    std::string replay;  // also --benchmark's file
    bool benchmark = false;
    uint32_t from = 1;    // the first frame that is drawn
    uint32_t frames = 0;  // 0: no limit
    std::string trace;
    std::optional<bool> smooth;       // unset: as the settings say
    std::optional<int> softwareSize;  // place in SOFTWARE_SIZES; unset: the same
    std::optional<MotionRequest> motion;
    std::vector<ShotRequest> shots;
    std::string settings;   // file of the player's settings; empty: session/settings_file.h says which
    bool portable = false;  // it lies beside the program
    std::string watch;      // file that says which level was compiled anew (session/watch.h)
    bool verbose = false;
};

// What the command line asks for besides playing.
enum class OptionsResult { Run, Done, Wrong };

// Done: --help or --version was printed. Wrong: one line on standard error says which option and why.
OptionsResult ParseOptions(int argumentCount, char** arguments, Options& options);
