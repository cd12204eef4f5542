// A command line: each line of the input is an argument.
#include "machine/options.h"

#include "machine/game.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::FILE* const nowhere = std::fopen("/dev/null", "w");
    static constexpr uint8_t LEVEL_KEYS[8] = {};
    static HostGame game = *CurrentGame;
    game.levelKeys = LEVEL_KEYS;
    CurrentGame = &game;
    std::vector<std::string> arguments{"tarnwick"};
    if (size > 0) arguments.emplace_back();
    for (size_t i = 0; i < size && data[i] != 0; ++i) {
        if (data[i] == '\n')
            arguments.emplace_back();
        else
            arguments.back().push_back(static_cast<char>(data[i]));
    }
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    Options options;
    std::FILE* const output = stdout;
    std::FILE* const errors = stderr;
    stdout = stderr = nowhere;  // hides the messages about wrong options
    const OptionsResult result = ParseOptions(static_cast<int>(pointers.size()), pointers.data(), options);
    stdout = output;
    stderr = errors;
    if (result == OptionsResult::Run && (options.level < 0 || options.level > std::ssize(LEVEL_KEYS))) std::abort();
    return 0;
}
