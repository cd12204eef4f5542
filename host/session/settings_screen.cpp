#include "session/settings_screen.h"

#include "boards/boards.h"
#include "input/devices.h"
#include "input/keys.h"
#include "input/pads.h"
#include "interfaces/presentation.h"
#include "machine/clock.h"
#include "machine/machine.h"
#include "machine/overlay.h"
#include "machine/settings.h"
#include "session/closing.h"
#include "session/key_hits.h"
#include "session/keys_screen.h"
#include "session/photo.h"
#include "session/settings_file.h"

#include <algorithm>
#include <bitset>

namespace {

constexpr uint8_t SCREEN_KEY = KeyCode("F10");
constexpr int LEFT = 40, RIGHT = 280, TOP = 24, ROW_HEIGHT = 11;
constexpr uint32_t MARKED_ROW = 0xFF4A3A18;

enum Row { ROW_KEYS = static_cast<int>(SETTING_COUNT), ROW_ORIGINAL, ROW_COMFORT, ROW_PHOTO, ROW_LEAVE, ROW_COUNT };

std::bitset<KEY_COUNT> muted;  // held since the screen was open: up for the game until they are let go

std::string RowName(int row) {
    switch (row) {
    case ROW_KEYS: return "Keys";
    case ROW_ORIGINAL: return "Set all as the original";
    case ROW_COMFORT: return "Set for comfort";
    case ROW_PHOTO: return "Photo mode";
    case ROW_LEAVE: return "Leave the program";
    default: return std::string(SettingLabel(static_cast<Setting>(row)));
    }
}

void Draw(int marked) {
    Overlay overlay;
    overlay.Fill(LEFT - 12, TOP - 16, RIGHT - LEFT + 24, ROW_HEIGHT * (ROW_COUNT + 3) + 4, OVERLAY_PANEL);
    overlay.WriteCentred(TOP - 9, "Settings", OVERLAY_TEXT);
    for (int row = 0; row < ROW_COUNT; ++row) {
        const int y = TOP + 6 + row * ROW_HEIGHT;
        if (row == marked) overlay.Fill(LEFT - 4, y - 3, RIGHT - LEFT + 8, ROW_HEIGHT, MARKED_ROW);
        overlay.Write(LEFT, y, RowName(row), OVERLAY_TEXT);
        if (row >= ROW_KEYS) continue;
        const std::string value = "< " + SettingText(static_cast<Setting>(row)) + " >";
        overlay.Write(RIGHT - static_cast<int>(value.size()) * OVERLAY_CHARACTER_WIDTH, y, value,
                      row == marked ? OVERLAY_TEXT : OVERLAY_QUIET_TEXT);
    }
    std::string hint = "arrows: change  " + WithPadName("Escape", DIK_ESCAPE) + ": back";
    if (marked < ROW_KEYS && !SettingHint(static_cast<Setting>(marked)).empty())
        hint = SettingHint(static_cast<Setting>(marked));
    overlay.WriteCentred(TOP + 10 + ROW_COUNT * ROW_HEIGHT, hint, OVERLAY_QUIET_TEXT);
    ShowOverlay(overlay);
}

void Apply() {
    CurrentMachine->applySettings();
    ChangeBoard(BOARD_CHOICES[SettingValue(Setting::Board)],
                static_cast<uint32_t>(SettingValue(Setting::AcceleratorSize)));
}

// What the player leaves the screen for.
enum class Leaving { Game, Photo };

// `steps`: -1 or 1 by the arrows, 0 by Enter.
void Change(KeyHits& hits, int row, int steps) {
    if (row < ROW_KEYS) {
        StepSetting(static_cast<Setting>(row), steps == 0 ? 1 : steps);
    } else if (steps == 0 && row == ROW_LEAVE) {
        RequestClose();
        return;
    } else if (steps == 0 && row == ROW_KEYS) {
        RunKeysScreen(hits);
        return;
    } else if (steps == 0) {
        (row == ROW_ORIGINAL ? ORIGINAL_PRESET : COMFORT_PRESET).apply();
    }
    Apply();
}

Leaving RunScreen() {
    Leaving leaving = Leaving::Game;
    KeyHits hits;
    int marked = 0;
    Draw(marked);
    while (!CloseRequested()) {
        hits.Wait();
        if (hits.None()) continue;
        if (hits.Any(DIK_ESCAPE) || hits.Any(SCREEN_KEY)) break;
        if (hits.Any(DIK_UP)) marked = (marked + ROW_COUNT - 1) % ROW_COUNT;
        if (hits.Any(DIK_DOWN)) marked = (marked + 1) % ROW_COUNT;
        if (hits.Any(DIK_LEFT)) Change(hits, marked, -1);
        if (hits.Any(DIK_RIGHT)) Change(hits, marked, 1);
        if (hits.Any(KeyCode("RETURN")) && marked == ROW_PHOTO && CanTakePhotos()) {
            leaving = Leaving::Photo;
            break;
        }
        if (hits.Any(KeyCode("RETURN"))) Change(hits, marked, 0);
        Draw(marked);
    }
    HideOverlay();
    SaveSettings();
    return leaving;
}

}  // namespace

void OfferSettings(uint8_t* keys) {
    if (!HasSettings()) return;
    const bool settings = keys[SCREEN_KEY] != 0 && !muted[SCREEN_KEY];
    const bool photo = keys[PHOTO_KEY] != 0 && !muted[PHOTO_KEY] && CanTakePhotos();
    if (settings || photo) {
        const uint32_t paused = ClockNow();
        const MouseUse mouse = DeviceMouseUse();
        SetMouseUse(MouseUse::None);
        const bool deferred = DeferFront(false);  // photos are shown at once
        if (!settings || RunScreen() == Leaving::Photo) RunPhotoMode();
        DeferFront(deferred);
        SetMouseUse(mouse);
        ReadClock();
        SetClock(paused);
        muted.set();
        std::fill(keys, keys + KEY_COUNT, uint8_t{0});
        return;
    }
    for (size_t code = 0; code < KEY_COUNT; ++code) {
        muted[code] = muted[code] && keys[code] != 0;
        if (muted[code]) keys[code] = 0;
    }
}
