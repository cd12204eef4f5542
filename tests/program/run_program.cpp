#include "run_program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace fs = std::filesystem;

ProgramRun::ProgramRun() : folder_(testing::TempDir()) {
    fs::create_directory(folder_ / "empty");
}

ProgramResult ProgramRun::Run(const std::string& arguments, const std::string& program) const {
    return Await(CommandLine(arguments, program));
}

// A shell has its background commands ignore SIGINT; `env` undoes that.
ProgramResult ProgramRun::Interrupt(const std::string& arguments, const std::string& signal,
                                    const std::string& file) const {
    fs::remove(folder_ / file);
    return Await(CommandLine(arguments, "tarnwick") + " & until [ -s " + file + " ]; do sleep 0.1; done; kill -" +
                 signal + " $!; wait $!");
}

std::string ProgramRun::CommandLine(const std::string& arguments, const std::string& program) const {
    return "cd '" + folder_.string() + "' || exit; timeout 1800 env --default-signal=INT '" BUILD_FOLDER "/" + program +
           "' --headless " + arguments + " >stdout.txt 2>stderr.txt";
}

ProgramResult ProgramRun::Await(const std::string& command) const {
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), Read("stdout.txt"), Read("stderr.txt")};
}

void ProgramRun::Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
}

std::string ProgramRun::Read(const std::string& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}
