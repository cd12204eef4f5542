#include "host/win32.h"
#include "input/session_hooks.h"
#include "machine/output.h"

#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

// Tells where the recording and the log of a run are that ends by a fault.
void TellFailure() {
    const std::string kept = Session.keepFailure();
    if (!kept.empty()) PrintError("the game failed. %s", kept.c_str());
}

}  // namespace

#ifndef TARNWICK_SANITIZED

namespace {

constexpr unsigned RESCUE_MAX = 5;  // seconds until the process is ended anyhow
constexpr size_t STACK_BYTES = 64 * 1024;

struct Fault {
    int signal;
    DWORD code;
};
constexpr Fault FAULTS[] = {{SIGSEGV, EXCEPTION_ACCESS_VIOLATION},
                            {SIGBUS, EXCEPTION_ACCESS_VIOLATION},
                            {SIGFPE, EXCEPTION_INT_DIVIDE_BY_ZERO},
                            {SIGILL, EXCEPTION_ILLEGAL_INSTRUCTION}};

sigjmp_buf resumePoint;
// 1 while this thread runs a guarded step. A fault in a helping thread cannot be resumed: it ends the process.
thread_local volatile std::sig_atomic_t guarded = 0;

// Runs on a stack of its own, since the fault may be that the usual stack is used up.
void OnFault(int signal) {
    if (guarded) siglongjmp(resumePoint, signal);
    std::signal(signal, SIG_DFL);
    alarm(RESCUE_MAX);  // the fault may have left any state behind, in which the rescue hangs
    TellFailure();
    std::raise(signal);
}

void InstallHandlers() {
    static char stackMemory[STACK_BYTES];
    stack_t stack{};
    stack.ss_sp = stackMemory;
    stack.ss_size = sizeof stackMemory;
    sigaltstack(&stack, nullptr);
    for (const Fault& fault : FAULTS) {
        struct sigaction action {};
        action.sa_handler = OnFault;
        action.sa_flags = SA_ONSTACK;
        sigaction(fault.signal, &action, nullptr);
    }
}

DWORD CodeOf(int signal) {
    for (const Fault& fault : FAULTS)
        if (fault.signal == signal) return fault.code;
    return EXCEPTION_UNHANDLED;
}

}  // namespace

#endif

namespace {

DWORD CatchExceptions(void (*step)()) {
    try {
        step();
    } catch (...) {
        TellFailure();
        return EXCEPTION_UNHANDLED;
    }
    return 0;
}

}  // namespace

#ifdef TARNWICK_SANITIZED

// The sanitizers report processor faults themselves.
DWORD HostGuard(void (*step)()) {
    return CatchExceptions(step);
}

#else

DWORD HostGuard(void (*step)()) {
    static const bool installed = (InstallHandlers(), true);
    static_cast<void>(installed);
    if (const int signal = sigsetjmp(resumePoint, 1)) {
        guarded = 0;
        TellFailure();
        return CodeOf(signal);
    }
    guarded = 1;
    const DWORD code = CatchExceptions(step);
    guarded = 0;
    return code;
}

#endif

void ExitProcess(DWORD exitCode) {
    Session.finish();
    std::fflush(nullptr);
    _exit(static_cast<int>(exitCode & 0xFF));
}
