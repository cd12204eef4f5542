#include "host/host_process.h"

#include "core/testing.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void BeHost(std::vector<std::string> words, GameMain game) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    if (!std::freopen("out", "w", stdout) || !std::freopen("err", "w", stderr)) std::_Exit(99);
    UseTestMachine();  // forgets the windows of tests before
    alarm(60);
    const int status = HostMain(static_cast<int>(arguments.size()), arguments.data(), game);
    std::fflush(nullptr);
    std::_Exit(status);
}

}  // namespace

HostFolder::HostFolder() {
    std::string name = (fs::temp_directory_path() / "host_test_XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    folder_ = name;
    fs::create_directory(folder_ / "data");
}

HostFolder::~HostFolder() {
    fs::remove_all(folder_);
}

HostOutcome HostFolder::Run(const std::vector<std::string>& options, GameMain game) const {
    std::vector<std::string> words = {"tarnwick", "--headless", "--data", "data"};
    words.insert(words.end(), options.begin(), options.end());
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        fs::current_path(folder_);
        BeHost(words, game);
    }
    int wait = 0;
    waitpid(child, &wait, 0);
    return {WIFEXITED(wait) ? WEXITSTATUS(wait) : 128 + WTERMSIG(wait), Read("out"), Read("err")};
}

void HostFolder::Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
}

std::string HostFolder::Read(const std::string& name) const {
    std::ifstream stream(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
