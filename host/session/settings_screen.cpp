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
#include <string>
#include <vector>

namespace {

constexpr uint8_t SCREEN_KEY = KeyCode("F10");
constexpr int LEFT = 40, RIGHT = 280, ROW_HEIGHT = 10;
constexpr int MARGIN = 19;  // above and below the rows
constexpr int GAP = 4;      // between the settings and what else there is
constexpr uint32_t MARKED_ROW = 0xFF4A3A18;

// The settings, then these.
enum Row { ROW_KEYS = static_cast<int>(SETTING_COUNT), ROW_ORIGINAL, ROW_COMFORT, ROW_PHOTO, ROW_LEAVE, ROW_COUNT };

std::bitset<KEY_COUNT> muted;  // held when the screen was closed: up for the game until they are let go

struct Action {
    const char* name;
    const char* hint;  // null: none
};

// The rows below the settings, from ROW_KEYS on.
constexpr Action ACTIONS[] = {{"Keys", nullptr},
                              {"Preset: original", "all as at first; accelerator at 640x480"},
                              {"Preset: comfort", "smooth, steady, sharp; mute in background"},
                              {"Photo mode", nullptr},
                              {"Leave the program", nullptr}};
static_assert(std::size(ACTIONS) == ROW_COUNT - ROW_KEYS);

bool IsAction(int row) {
    return row >= ROW_KEYS;
}

const Action& ActionOf(int row) {
    return ACTIONS[row - ROW_KEYS];
}

std::string RowName(int row) {
    return IsAction(row) ? ActionOf(row).name : std::string(SettingLabel(static_cast<Setting>(row)));
}

std::string HintOf(int row) {
    const std::string back = "   " + WithPadName("Escape", DIK_ESCAPE) + ": back";
    if (row == ROW_PHOTO && !CanTakePhotos()) return "in a level only";
    if (IsAction(row))
        return ActionOf(row).hint ? ActionOf(row).hint : WithPadName("Enter", KeyCode("RETURN")) + ": go" + back;
    const std::string_view hint = SettingHint(static_cast<Setting>(row));
    return hint.empty() ? "left, right: change" + back : std::string(hint);
}

int DisplayCount() {
    return CurrentMachine->displays ? CurrentMachine->displays() : 1;
}

// Which display is asked only where there are several.
std::vector<int> RowsNow() {
    std::vector<int> rows;
    for (int row = 0; row < ROW_COUNT; ++row)
        if (row != static_cast<int>(Setting::Display) || DisplayCount() > 1) rows.push_back(row);
    return rows;
}

void DrawRow(Overlay& overlay, int y, int row, bool isMarked) {
    if (isMarked) overlay.Fill(LEFT - 4, y - 2, RIGHT - LEFT + 8, ROW_HEIGHT, MARKED_ROW);
    const bool isPossible = row != ROW_PHOTO || CanTakePhotos();
    overlay.Write(LEFT, y, RowName(row), isPossible ? OVERLAY_TEXT : OVERLAY_QUIET_TEXT);
    if (IsAction(row)) return;
    const std::string value = "< " + SettingText(static_cast<Setting>(row)) + " >";
    overlay.Write(RIGHT - TextWidth(value), y, value, isMarked ? OVERLAY_TEXT : OVERLAY_QUIET_TEXT);
}

void Draw(const std::vector<int>& rows, int marked) {
    const int height = static_cast<int>(rows.size()) * ROW_HEIGHT + GAP + 2 * MARGIN;
    int y = (OVERLAY_HEIGHT - height) / 2;
    Overlay overlay;
    overlay.Fill(LEFT - 12, y, RIGHT - LEFT + 24, height, OVERLAY_PANEL);
    overlay.WriteCentred(y + 5, "Settings", OVERLAY_TEXT);
    overlay.WriteCentred(y + height - 12, HintOf(marked), OVERLAY_QUIET_TEXT);
    y += MARGIN;
    for (const int row : rows) {
        if (row == ROW_KEYS) y += GAP;
        DrawRow(overlay, y, row, row == marked);
        y += ROW_HEIGHT;
    }
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
        const auto setting = static_cast<Setting>(row);
        do
            StepSetting(setting, steps == 0 ? 1 : steps);
        while (setting == Setting::Display && SettingValue(setting) > DisplayCount());
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
    const std::vector<int> rows = RowsNow();
    const size_t count = rows.size();
    size_t at = 0;
    Draw(rows, rows[at]);
    while (!CloseRequested()) {
        hits.Wait();
        if (hits.None()) continue;
        if (hits.Any(DIK_ESCAPE) || hits.Any(SCREEN_KEY)) break;
        if (hits.Any(DIK_UP)) at = (at + count - 1) % count;
        if (hits.Any(DIK_DOWN)) at = (at + 1) % count;
        const int marked = rows[at];
        if (hits.Any(DIK_LEFT)) Change(hits, marked, -1);
        if (hits.Any(DIK_RIGHT)) Change(hits, marked, 1);
        if (hits.Any(KeyCode("RETURN")) && marked == ROW_PHOTO && CanTakePhotos()) {
            leaving = Leaving::Photo;
            break;
        }
        if (hits.Any(KeyCode("RETURN"))) Change(hits, marked, 0);
        Draw(rows, marked);
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
        TakeKeys(keys);
        muted.set();
    }
    for (size_t code = 0; code < KEY_COUNT; ++code) {
        muted[code] = muted[code] && keys[code] != 0;
        if (muted[code]) keys[code] = 0;
    }
}
