#include "session/front_end.h"

#include "input/devices.h"
#include "input/keys.h"
#include "input/pads.h"
#include "interfaces/display.h"
#include "machine/game.h"
#include "machine/overlay.h"
#include "session/progress.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <string>
#include <vector>

namespace {

// host/host.h says what tells the screens apart.
enum Screen { SCREEN_NONE, SCREEN_ATTRACT, SCREEN_LEVEL, SCREEN_RENDERER, SCREEN_COUNT };
constexpr uint32_t FLIPS_OF_A_NEW_SCREEN = 2;

Screen screen = SCREEN_NONE;
uint32_t flipsSeen = 0;
uint32_t readsOnScreen = 0;
uint8_t keyToPress[SCREEN_COUNT] = {};  // 0: none, or pressed already
std::bitset<KEY_COUNT> keysBefore;      // down at the last poll
size_t chosen[SCREEN_COUNT] = {};
bool choiceShown = false;

constexpr uint8_t DOWN = 0x80;
constexpr uint8_t FIRST_DIGIT = KeyCode("1");  // the other digits follow
constexpr int PANEL_TOP = 205, PANEL_HEIGHT = 30;

Screen ScreenNow(uint32_t newFlips) {
    if (!InFrontEnd()) return SCREEN_NONE;
    if (Progress.pollsSincePeek == 1) return SCREEN_ATTRACT;
    if (newFlips < FLIPS_OF_A_NEW_SCREEN) return screen;
    return screen == SCREEN_ATTRACT ? SCREEN_LEVEL : SCREEN_RENDERER;
}

}  // namespace

namespace {

struct Choice {
    std::string name;
    uint8_t key;
};

std::vector<Choice> ChoicesNow() {
    if (screen == SCREEN_RENDERER)
        return {{"Software renderer", CurrentGame->softwareKey}, {"Accelerator", CurrentGame->acceleratorKey}};
    std::vector<Choice> choices;
    if (screen == SCREEN_LEVEL)
        for (const uint8_t key : CurrentGame->levelKeys)
            choices.push_back({"Level " + std::to_string(choices.size() + 1), key});
    return choices;
}

void HideChoice() {
    if (choiceShown) HideOverlay();
    choiceShown = false;
}

void ShowChoice(const Choice& choice) {
    Overlay overlay;
    overlay.Fill(0, PANEL_TOP, OVERLAY_WIDTH, PANEL_HEIGHT, OVERLAY_PANEL);
    overlay.WriteCentred(PANEL_TOP + 5, "<  " + choice.name + "  >", OVERLAY_TEXT);
    overlay.WriteCentred(PANEL_TOP + 17,
                         WithPadName("Enter", KeyCode("RETURN")) + ": go    " + WithPadName("Escape", DIK_ESCAPE) +
                             ": back",
                         OVERLAY_QUIET_TEXT);
    ShowOverlay(overlay);
    choiceShown = true;
}

// `hits`: the keys that have gone down since the last poll. One held from the screen before chooses nothing.
void Choose(const std::bitset<KEY_COUNT>& hits, uint8_t* keys) {
    const std::vector<Choice> choices = ChoicesNow();
    if (choices.empty()) return;
    for (size_t i = 0; i < choices.size(); ++i)
        if (hits[FIRST_DIGIT + i]) keys[choices[i].key] = DOWN;
    size_t& choice = chosen[screen];
    const bool back = hits[DIK_LEFT] || hits[DIK_UP], forth = hits[DIK_RIGHT] || hits[DIK_DOWN];
    const bool enter = hits[KeyCode("RETURN")];
    if (choiceShown && enter) {
        keys[choices[choice].key] = DOWN;
        HideChoice();
        return;
    }
    if (!back && !forth && !enter) return;
    if (choiceShown) choice = (choice + (back ? choices.size() - 1 : 1)) % choices.size();
    ShowChoice(choices[choice]);
}

}  // namespace

bool InFrontEnd() {
    return CurrentScreenMode().bits == CurrentGame->frontEndBits;
}

void StartFrontEndKeys(const Options& options) {
    screen = SCREEN_NONE;
    flipsSeen = readsOnScreen = 0;
    keysBefore.reset();
    std::fill(std::begin(chosen), std::end(chosen), size_t{0});
    HideChoice();
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
    if (screen != before) {
        readsOnScreen = 0;
        HideChoice();
    }
    flipsSeen = flips;
}

void AddFrontEndKeys(uint8_t* keys) {
    std::bitset<KEY_COUNT> down;
    for (size_t code = 0; code < KEY_COUNT; ++code)
        down[code] = keys[code] != 0;
    const std::bitset<KEY_COUNT> hits = down & ~keysBefore;
    keysBefore = down;
    if (screen == SCREEN_ATTRACT && hits[KeyCode("RETURN")]) keys[CurrentGame->startKey] = DOWN;
    Choose(hits, keys);
    if (++readsOnScreen < 2 || !keyToPress[screen]) return;
    keys[keyToPress[screen]] = DOWN;
    keyToPress[screen] = 0;
}
