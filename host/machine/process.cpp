#include "machine/process.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int ENDING_SIGNALS[] = {SIGHUP, SIGINT, SIGTERM};
constexpr int64_t REPEAT_MS = 1000;  // a request may come as several signals at once, as from timeout(1)

std::atomic<int> arrived = 0;
std::atomic<int64_t> arrivedAt = 0;  // ms

int64_t Now() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

void EndBy(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Calls only what a handler may call.
void OnSignal(int signal) {
    if (arrived == 0) {
        arrivedAt = Now();
        arrived = signal;
    } else if (Now() - arrivedAt >= REPEAT_MS) {
        EndBy(signal);
    }
}

}  // namespace

void OpenStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            static_cast<void>(open("/dev/null", O_RDWR));  // takes the lowest free number: this one
}

void WatchSignals() {
    for (const int signal : ENDING_SIGNALS) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN) continue;
        action.sa_handler = OnSignal;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

int EndingSignal() {
    return arrived;
}

void EndBySignal() {
    if (arrived == 0) return;
    std::fflush(nullptr);
    EndBy(arrived);
}
