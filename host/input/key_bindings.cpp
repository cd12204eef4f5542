#include "input/key_bindings.h"

#include "input/keys.h"
#include "machine/game.h"
#include "machine/settings.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

constexpr HostKey OWN_KEYS[] = {
    {"screenshot", "Screenshot", KeyCode("P"), {}},
    {"photo", "Photo mode", KeyCode("C"), {}},
    {"smooth", "Smooth pictures", KeyCode("S"), {}},
    {"settings", "Settings", KeyCode("F10"), {}},
    {"free_pointer", "Let go of the mouse", KEY_CODE_FREE_POINTER, {}},
};
constexpr std::string_view USUAL = "usual", NONE = "none";

std::vector<size_t> numbers;  // of each action's setting

const std::string& Chosen(size_t action) {
    static const std::string usual(USUAL);
    return action < numbers.size() ? TextSettingValue(numbers[action]) : usual;
}

std::string_view NameOf(uint8_t scanCode) {
    for (const Key& key : KEYBOARD_KEYS)
        if (key.scanCode == scanCode) return key.name;
    return NONE;
}

uint8_t CodeOf(std::string_view name) {
    uint8_t code = 0;
    FindKey(name, code);
    return code;
}

// Escape leads out of a level whatever happens.
bool Understands(std::string_view text) {
    return text == USUAL || text == NONE || (CodeOf(text) != 0 && CodeOf(text) != DIK_ESCAPE);
}

std::vector<uint8_t> UsualKeys(const HostKey& action) {
    std::vector<uint8_t> keys{action.key};
    std::copy_if(std::begin(action.others), std::end(action.others), std::back_inserter(keys),
                 [](uint8_t key) { return key != 0; });
    return keys;
}

}  // namespace

void StartKeyBindings() {
    numbers.clear();
    for (const HostKey& action : KeyActions()) {
        std::string comment;
        if (numbers.empty()) comment = "the keys of a level; they are called as on a keyboard of the United States";
        numbers.push_back(AddTextSetting({std::string("key_").append(action.name), comment, std::string(USUAL),
                                          Understands, "usual, none, A, F5, LSHIFT, NUMPAD4 and so on"}));
    }
}

std::vector<HostKey> KeyActions() {
    std::vector<HostKey> actions(CurrentGame->keys.begin(), CurrentGame->keys.end());
    actions.insert(actions.end(), std::begin(OWN_KEYS), std::end(OWN_KEYS));
    actions.insert(actions.end(), CurrentGame->moreKeys.begin(), CurrentGame->moreKeys.end());
    return actions;
}

std::array<uint8_t, 256> KeyMeanings() {
    std::array<uint8_t, 256> meanings;
    for (size_t code = 0; code < meanings.size(); ++code)
        meanings[code] = static_cast<uint8_t>(code);
    const std::vector<HostKey> actions = KeyActions();
    for (size_t i = 0; i < actions.size(); ++i)
        for (const uint8_t key : UsualKeys(actions[i]))
            meanings[key] = Chosen(i) == USUAL ? actions[i].key : uint8_t{0};
    for (size_t i = 0; i < actions.size(); ++i)
        if (const uint8_t key = CodeOf(Chosen(i))) meanings[key] = actions[i].key;
    return meanings;
}

std::vector<uint8_t> KeysOf(size_t action) {
    const HostKey asked = KeyActions()[action];
    const std::array<uint8_t, 256> meanings = KeyMeanings();
    std::vector<uint8_t> keys = UsualKeys(asked);
    if (const uint8_t chosen = CodeOf(Chosen(action))) keys = {chosen};
    std::erase_if(keys, [&](uint8_t key) { return meanings[key] != asked.key; });
    return keys;
}

void BindKey(size_t action, uint8_t scanCode) {
    const std::string_view name = NameOf(scanCode);
    if (!Understands(name)) return;
    for (const size_t number : numbers)
        if (TextSettingValue(number) == name) ChangeTextSetting(number, NONE);
    const std::vector<uint8_t> usual = UsualKeys(KeyActions()[action]);
    const bool same = usual.size() == 1 && usual.front() == scanCode;
    ChangeTextSetting(numbers[action], same ? USUAL : name);
}

void ResetKeyBindings() {
    for (const size_t number : numbers)
        ChangeTextSetting(number, USUAL);
}
