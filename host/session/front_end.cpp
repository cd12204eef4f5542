#include "session/front_end.h"

#include "input/devices.h"
#include "interfaces/display.h"
#include "machine/game.h"
#include "session/progress.h"

#include <algorithm>
#include <iterator>

namespace {

// host/host.h says what tells the screens apart.
enum Screen { SCREEN_NONE, SCREEN_ATTRACT, SCREEN_LEVEL, SCREEN_RENDERER, SCREEN_COUNT };
constexpr uint32_t FLIPS_OF_A_NEW_SCREEN = 2;

Screen screen = SCREEN_NONE;
uint32_t flipsSeen = 0;
uint32_t readsOnScreen = 0;
uint8_t keyToPress[SCREEN_COUNT] = {};  // 0: none, or pressed already

Screen ScreenNow(uint32_t newFlips) {
    if (!InFrontEnd()) return SCREEN_NONE;
    if (Progress.pollsSincePeek == 1) return SCREEN_ATTRACT;
    if (newFlips < FLIPS_OF_A_NEW_SCREEN) return screen;
    return screen == SCREEN_ATTRACT ? SCREEN_LEVEL : SCREEN_RENDERER;
}

}  // namespace

bool InFrontEnd() {
    return CurrentScreenMode().bits == CurrentGame->frontEndBits;
}

void StartFrontEndKeys(const Options& options) {
    screen = SCREEN_NONE;
    flipsSeen = readsOnScreen = 0;
    std::fill(std::begin(keyToPress), std::end(keyToPress), uint8_t{0});
    if (options.level) {
        keyToPress[SCREEN_ATTRACT] = CurrentGame->startKey;
        keyToPress[SCREEN_LEVEL] = CurrentGame->levelKeys[static_cast<size_t>(options.level - 1)];
    }
    if (options.renderer == RendererChoice::Software) keyToPress[SCREEN_RENDERER] = CurrentGame->softwareKey;
    if (options.renderer == RendererChoice::Accelerator) keyToPress[SCREEN_RENDERER] = CurrentGame->acceleratorKey;
}

void WatchFrontEnd() {
    const uint32_t flips = FlipCount();
    const Screen before = screen;
    screen = ScreenNow(flips < flipsSeen ? flips : flips - flipsSeen);
    if (screen != before) readsOnScreen = 0;
    flipsSeen = flips;
}

void PressFrontEndKeys() {
    if (++readsOnScreen < 2 || !keyToPress[screen]) return;
    PulseKey(keyToPress[screen]);
    keyToPress[screen] = 0;
}
