// Runs the built game as its users do.
#pragma once

#include <filesystem>
#include <string>

struct ProgramResult {
    int status;  // the exit status as a shell sees it
    std::string output;
    std::string errors;
};

// The game without a window; the current folder is the test's temporary one, in which `empty` is an empty folder.
class ProgramRun {
public:
    ProgramRun();

    // Shell words; `program` is of the build folder.
    ProgramResult Run(const std::string& arguments, const std::string& program = "tarnwick") const;
    // The same, with the signal (INT) sent once `file` has something in it, which the program writes.
    ProgramResult Interrupt(const std::string& arguments, const std::string& signal, const std::string& file) const;
    void Write(const std::string& name, const std::string& text) const;
    std::string Read(const std::string& name) const;
    const std::filesystem::path& Folder() const { return folder_; }

private:
    std::string CommandLine(const std::string& arguments, const std::string& program) const;
    ProgramResult Await(const std::string& command) const;

    std::filesystem::path folder_;
};
