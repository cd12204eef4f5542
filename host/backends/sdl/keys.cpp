#include "backends/sdl/keys.h"

#include "input/keys.h"
#include "machine/overlay.h"

#include <array>

namespace {

struct KeyPair {
    SDL_Scancode key;
    uint8_t scanCode;
};

constexpr KeyPair KEYBOARD[] = {
    {SDL_SCANCODE_ESCAPE, KeyCode("ESCAPE")},
    {SDL_SCANCODE_1, KeyCode("1")},
    {SDL_SCANCODE_2, KeyCode("2")},
    {SDL_SCANCODE_3, KeyCode("3")},
    {SDL_SCANCODE_4, KeyCode("4")},
    {SDL_SCANCODE_5, KeyCode("5")},
    {SDL_SCANCODE_6, KeyCode("6")},
    {SDL_SCANCODE_7, KeyCode("7")},
    {SDL_SCANCODE_8, KeyCode("8")},
    {SDL_SCANCODE_9, KeyCode("9")},
    {SDL_SCANCODE_0, KeyCode("0")},
    {SDL_SCANCODE_MINUS, KeyCode("MINUS")},
    {SDL_SCANCODE_EQUALS, KeyCode("EQUALS")},
    {SDL_SCANCODE_BACKSPACE, KeyCode("BACK")},
    {SDL_SCANCODE_TAB, KeyCode("TAB")},
    {SDL_SCANCODE_Q, KeyCode("Q")},
    {SDL_SCANCODE_W, KeyCode("W")},
    {SDL_SCANCODE_E, KeyCode("E")},
    {SDL_SCANCODE_R, KeyCode("R")},
    {SDL_SCANCODE_T, KeyCode("T")},
    {SDL_SCANCODE_Y, KeyCode("Y")},
    {SDL_SCANCODE_U, KeyCode("U")},
    {SDL_SCANCODE_I, KeyCode("I")},
    {SDL_SCANCODE_O, KeyCode("O")},
    {SDL_SCANCODE_P, KeyCode("P")},
    {SDL_SCANCODE_LEFTBRACKET, KeyCode("LBRACKET")},
    {SDL_SCANCODE_RIGHTBRACKET, KeyCode("RBRACKET")},
    {SDL_SCANCODE_RETURN, KeyCode("RETURN")},
    {SDL_SCANCODE_LCTRL, KeyCode("LCONTROL")},
    {SDL_SCANCODE_A, KeyCode("A")},
    {SDL_SCANCODE_S, KeyCode("S")},
    {SDL_SCANCODE_D, KeyCode("D")},
    {SDL_SCANCODE_F, KeyCode("F")},
    {SDL_SCANCODE_G, KeyCode("G")},
    {SDL_SCANCODE_H, KeyCode("H")},
    {SDL_SCANCODE_J, KeyCode("J")},
    {SDL_SCANCODE_K, KeyCode("K")},
    {SDL_SCANCODE_L, KeyCode("L")},
    {SDL_SCANCODE_SEMICOLON, KeyCode("SEMICOLON")},
    {SDL_SCANCODE_APOSTROPHE, KeyCode("APOSTROPHE")},
    {SDL_SCANCODE_GRAVE, KeyCode("GRAVE")},
    {SDL_SCANCODE_LSHIFT, KeyCode("LSHIFT")},
    {SDL_SCANCODE_BACKSLASH, KeyCode("BACKSLASH")},
    {SDL_SCANCODE_NONUSHASH, KeyCode("BACKSLASH")},
    {SDL_SCANCODE_Z, KeyCode("Z")},
    {SDL_SCANCODE_X, KeyCode("X")},
    {SDL_SCANCODE_C, KeyCode("C")},
    {SDL_SCANCODE_V, KeyCode("V")},
    {SDL_SCANCODE_B, KeyCode("B")},
    {SDL_SCANCODE_N, KeyCode("N")},
    {SDL_SCANCODE_M, KeyCode("M")},
    {SDL_SCANCODE_COMMA, KeyCode("COMMA")},
    {SDL_SCANCODE_PERIOD, KeyCode("PERIOD")},
    {SDL_SCANCODE_SLASH, KeyCode("SLASH")},
    {SDL_SCANCODE_RSHIFT, KeyCode("RSHIFT")},
    {SDL_SCANCODE_KP_MULTIPLY, KeyCode("MULTIPLY")},
    {SDL_SCANCODE_LALT, KeyCode("LMENU")},
    {SDL_SCANCODE_SPACE, KeyCode("SPACE")},
    {SDL_SCANCODE_CAPSLOCK, KeyCode("CAPITAL")},
    {SDL_SCANCODE_F1, KeyCode("F1")},
    {SDL_SCANCODE_F2, KeyCode("F2")},
    {SDL_SCANCODE_F3, KeyCode("F3")},
    {SDL_SCANCODE_F4, KeyCode("F4")},
    {SDL_SCANCODE_F5, KeyCode("F5")},
    {SDL_SCANCODE_F6, KeyCode("F6")},
    {SDL_SCANCODE_F7, KeyCode("F7")},
    {SDL_SCANCODE_F8, KeyCode("F8")},
    {SDL_SCANCODE_F9, KeyCode("F9")},
    {SDL_SCANCODE_F10, KeyCode("F10")},
    {SDL_SCANCODE_NUMLOCKCLEAR, KeyCode("NUMLOCK")},
    {SDL_SCANCODE_SCROLLLOCK, KeyCode("SCROLL")},
    {SDL_SCANCODE_KP_7, KeyCode("NUMPAD7")},
    {SDL_SCANCODE_KP_8, KeyCode("NUMPAD8")},
    {SDL_SCANCODE_KP_9, KeyCode("NUMPAD9")},
    {SDL_SCANCODE_KP_MINUS, KeyCode("SUBTRACT")},
    {SDL_SCANCODE_KP_4, KeyCode("NUMPAD4")},
    {SDL_SCANCODE_KP_5, KeyCode("NUMPAD5")},
    {SDL_SCANCODE_KP_6, KeyCode("NUMPAD6")},
    {SDL_SCANCODE_KP_PLUS, KeyCode("ADD")},
    {SDL_SCANCODE_KP_1, KeyCode("NUMPAD1")},
    {SDL_SCANCODE_KP_2, KeyCode("NUMPAD2")},
    {SDL_SCANCODE_KP_3, KeyCode("NUMPAD3")},
    {SDL_SCANCODE_KP_0, KeyCode("NUMPAD0")},
    {SDL_SCANCODE_KP_PERIOD, KeyCode("DECIMAL")},
    {SDL_SCANCODE_NONUSBACKSLASH, KeyCode("OEM_102")},
    {SDL_SCANCODE_F11, KeyCode("F11")},
    {SDL_SCANCODE_F12, KeyCode("F12")},
    {SDL_SCANCODE_F13, KeyCode("F13")},
    {SDL_SCANCODE_F14, KeyCode("F14")},
    {SDL_SCANCODE_F15, KeyCode("F15")},
    {SDL_SCANCODE_INTERNATIONAL2, KeyCode("KANA")},
    {SDL_SCANCODE_INTERNATIONAL1, KeyCode("ABNT_C1")},
    {SDL_SCANCODE_INTERNATIONAL4, KeyCode("CONVERT")},
    {SDL_SCANCODE_INTERNATIONAL5, KeyCode("NOCONVERT")},
    {SDL_SCANCODE_INTERNATIONAL3, KeyCode("YEN")},
    {SDL_SCANCODE_KP_COMMA, KeyCode("ABNT_C2")},
    {SDL_SCANCODE_KP_EQUALS, KeyCode("NUMPADEQUALS")},
    {SDL_SCANCODE_AUDIOPREV, KeyCode("PREVTRACK")},
    {SDL_SCANCODE_LANG5, KeyCode("KANJI")},
    {SDL_SCANCODE_AUDIONEXT, KeyCode("NEXTTRACK")},
    {SDL_SCANCODE_KP_ENTER, KeyCode("NUMPADENTER")},
    {SDL_SCANCODE_RCTRL, KeyCode("RCONTROL")},
    {SDL_SCANCODE_MUTE, KeyCode("MUTE")},
    {SDL_SCANCODE_AUDIOMUTE, KeyCode("MUTE")},
    {SDL_SCANCODE_CALCULATOR, KeyCode("CALCULATOR")},
    {SDL_SCANCODE_AUDIOPLAY, KeyCode("PLAYPAUSE")},
    {SDL_SCANCODE_AUDIOSTOP, KeyCode("MEDIASTOP")},
    {SDL_SCANCODE_VOLUMEDOWN, KeyCode("VOLUMEDOWN")},
    {SDL_SCANCODE_VOLUMEUP, KeyCode("VOLUMEUP")},
    {SDL_SCANCODE_AC_HOME, KeyCode("WEBHOME")},
    {SDL_SCANCODE_KP_DIVIDE, KeyCode("DIVIDE")},
    {SDL_SCANCODE_PRINTSCREEN, KeyCode("SYSRQ")},
    {SDL_SCANCODE_RALT, KeyCode("RMENU")},
    {SDL_SCANCODE_PAUSE, KeyCode("PAUSE")},
    {SDL_SCANCODE_HOME, KeyCode("HOME")},
    {SDL_SCANCODE_UP, KeyCode("UP")},
    {SDL_SCANCODE_PAGEUP, KeyCode("PRIOR")},
    {SDL_SCANCODE_LEFT, KeyCode("LEFT")},
    {SDL_SCANCODE_RIGHT, KeyCode("RIGHT")},
    {SDL_SCANCODE_END, KeyCode("END")},
    {SDL_SCANCODE_DOWN, KeyCode("DOWN")},
    {SDL_SCANCODE_PAGEDOWN, KeyCode("NEXT")},
    {SDL_SCANCODE_INSERT, KeyCode("INSERT")},
    {SDL_SCANCODE_DELETE, KeyCode("DELETE")},
    {SDL_SCANCODE_LGUI, KeyCode("LWIN")},
    {SDL_SCANCODE_RGUI, KeyCode("RWIN")},
    {SDL_SCANCODE_APPLICATION, KeyCode("APPS")},
    {SDL_SCANCODE_MENU, KeyCode("APPS")},
    {SDL_SCANCODE_POWER, KeyCode("POWER")},
    {SDL_SCANCODE_SLEEP, KeyCode("SLEEP")},
    {SDL_SCANCODE_AC_SEARCH, KeyCode("WEBSEARCH")},
    {SDL_SCANCODE_AC_BOOKMARKS, KeyCode("WEBFAVORITES")},
    {SDL_SCANCODE_AC_REFRESH, KeyCode("WEBREFRESH")},
    {SDL_SCANCODE_AC_STOP, KeyCode("WEBSTOP")},
    {SDL_SCANCODE_AC_FORWARD, KeyCode("WEBFORWARD")},
    {SDL_SCANCODE_AC_BACK, KeyCode("WEBBACK")},
    {SDL_SCANCODE_COMPUTER, KeyCode("MYCOMPUTER")},
    {SDL_SCANCODE_MAIL, KeyCode("MAIL")},
    {SDL_SCANCODE_MEDIASELECT, KeyCode("MEDIASELECT")},
};

constexpr std::array<uint8_t, SDL_NUM_SCANCODES> BuildTable() {
    std::array<uint8_t, SDL_NUM_SCANCODES> table{};
    for (const KeyPair& pair : KEYBOARD)
        table[pair.key] = pair.scanCode;
    return table;
}

constexpr auto SCAN_CODES = BuildTable();

}  // namespace

// Of the keys with one scan code the first in the table gives it its name. A key whose letter cannot be written, and a
// dead one, which has none, is called by its place.
std::string KeyLabel(uint8_t scanCode) {
    for (const KeyPair& pair : KEYBOARD) {
        if (pair.scanCode != scanCode) continue;
        const std::string ofLayout = SDL_GetKeyName(SDL_GetKeyFromScancode(pair.key));
        if (!ofLayout.empty() && CanWrite(ofLayout)) return ofLayout;
        return std::string("US ").append(SDL_GetScancodeName(pair.key));
    }
    return {};
}

uint8_t ScanCodeOf(SDL_Scancode key) {
    return key < SDL_NUM_SCANCODES ? SCAN_CODES[key] : uint8_t{0};
}
