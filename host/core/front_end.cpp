#include "core/front_end.h"

#include "core/display.h"
#include "core/input_state.h"
#include "core/run.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint32_t FRONT_END_BITS = 16;

// The attract pictures take messages between two polls. The choice screens take none, and each of them begins with
// two flips after the last poll of the screen before.
enum Screen { SCREEN_NONE, SCREEN_ATTRACT, SCREEN_LEVEL, SCREEN_RENDERER, SCREEN_COUNT };
constexpr uint32_t FLIPS_OF_A_NEW_SCREEN = 2;

Screen screen = SCREEN_NONE;
uint32_t flipsSeen = 0;
uint32_t readsOnScreen = 0;
uint8_t keyToPress[SCREEN_COUNT] = {};  // 0: none, or pressed already

Screen ScreenNow(uint32_t newFlips) {
    if (!InFrontEnd()) return SCREEN_NONE;
    if (PollsSincePeek() == 1) return SCREEN_ATTRACT;
    if (newFlips < FLIPS_OF_A_NEW_SCREEN) return screen;
    return screen == SCREEN_ATTRACT ? SCREEN_LEVEL : SCREEN_RENDERER;
}

}  // namespace

bool InFrontEnd() {
    return CurrentScreenMode().bits == FRONT_END_BITS;
}

void StartFrontEndKeys(const Options& options) {
    constexpr uint8_t LEVEL_KEYS[] = {DIK_F1, DIK_F2, DIK_F3, DIK_F4, DIK_F5, DIK_F6, DIK_F7, DIK_F12};
    screen = SCREEN_NONE;
    flipsSeen = readsOnScreen = 0;
    std::fill(std::begin(keyToPress), std::end(keyToPress), uint8_t{0});
    if (options.level) {
        keyToPress[SCREEN_ATTRACT] = DIK_SPACE;
        keyToPress[SCREEN_LEVEL] = LEVEL_KEYS[options.level - 1];
    }
    if (options.renderer == RendererChoice::Software) keyToPress[SCREEN_RENDERER] = DIK_F11;
    if (options.renderer == RendererChoice::Accelerator) keyToPress[SCREEN_RENDERER] = DIK_F12;
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
