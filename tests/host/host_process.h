// HostMain in a process of its own, in an empty folder of its own.
#pragma once

#include "host/host.h"

#include <filesystem>
#include <string>
#include <vector>

struct HostOutcome {
    int status;  // of the process; 128 + number for a signal
    std::string out, err;
};

class HostFolder {
public:
    HostFolder();
    ~HostFolder();

    // The options --headless and --data are given already, but for a test of them.
    HostOutcome Run(const std::vector<std::string>& options, GameMain game) const;
    void Write(const std::string& name, const std::string& text) const;
    std::string Read(const std::string& name) const;
    std::string Path(const std::string& name) const { return (folder_ / name).string(); }

private:
    std::filesystem::path folder_;
};
