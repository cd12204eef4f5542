#include "backends/headless/headless.h"

#include "host/win32.h"

#include <cstdio>

namespace {

uint32_t clockReads = 0;

int ShowOnStandardError(const char* text, const char* caption) {
    std::fprintf(stderr, "%s: %s\n", caption, text);
    return IDOK;
}

void DesktopSize(int* width, int* height) {
    *width = 1024;
    *height = 768;
}

}  // namespace

const Machine HeadlessMachine = {
    .name = "headless",
    .start = [](const Options&) { return true; },
    .stop = [] {},
    .milliseconds = [] { return ++clockReads; },
    .sleep = nullptr,
    .beforeKeyboardPoll = [] {},
    .pump = [] {},
    .wait = [] {},
    .createWindow = [](const char*) { return true; },
    .desktopSize = DesktopSize,
    .present = nullptr,
    .presentTexture = nullptr,
    .showOverlay = nullptr,
    .applySettings = nullptr,
    .keyLabel = nullptr,
    .setMouseCaptured = [](bool) {},
    .bringFile = nullptr,
    .keepFile = nullptr,
    .messageBox = ShowOnStandardError,
    .hasWindow = [] { return false; },
    .refreshRate = nullptr,
    .windowSize = nullptr,
    .displays = nullptr,
    .openSound = nullptr,
    .playSound = nullptr,
    .closeSound = nullptr,
};
