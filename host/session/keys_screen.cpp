#include "session/keys_screen.h"

#include "input/key_bindings.h"
#include "input/keys.h"
#include "input/pads.h"
#include "machine/machine.h"
#include "machine/overlay.h"
#include "session/closing.h"
#include "session/key_hits.h"

#include <algorithm>
#include <string>

namespace {

constexpr int LEFT = 8, KEYS_LEFT = 158, PAD_RIGHT = 312, TOP = 30, ROW_HEIGHT = 13;
constexpr int ROWS_SHOWN = 13;
constexpr uint32_t MARKED_ROW = 0xFF4A3A18;

// The rows: one for each action, then these.
enum LastRows { ROW_RESET, ROW_BACK, LAST_ROWS };

std::string LabelOf(uint8_t scanCode) {
    std::string label;
    if (CurrentMachine->keyLabel) label = CurrentMachine->keyLabel(scanCode);
    return label.empty() ? std::string("?") : label;
}

// As many as there is room for, in pixels.
std::string KeyLabels(size_t action, int room) {
    const std::string more = ", ...";
    std::string labels;
    for (const uint8_t key : KeysOf(action)) {
        std::string longer = labels;
        longer.append(labels.empty() ? "" : ", ").append(LabelOf(key));
        const bool isLast = key == KeysOf(action).back();
        if (!labels.empty() && TextWidth(longer + (isLast ? "" : more)) > room) return labels + more;
        labels = longer;
    }
    return labels.empty() ? "-" : labels;
}

void DrawRow(Overlay& overlay, int y, int row, bool isMarked) {
    const std::vector<HostKey> actions = KeyActions();
    const auto action = static_cast<size_t>(row);
    if (isMarked) overlay.Fill(LEFT - 4, y - 3, PAD_RIGHT - LEFT + 8, ROW_HEIGHT, MARKED_ROW);
    if (action >= actions.size()) {
        const bool resets = action == actions.size() + ROW_RESET;
        overlay.Write(LEFT, y, resets ? "Usual keys for all" : "Back", OVERLAY_TEXT);
        return;
    }
    const std::string pad = PadNameOf(actions[action].key);
    overlay.Write(LEFT, y, actions[action].label, OVERLAY_TEXT);
    const int room = PAD_RIGHT - TextWidth(pad) - OVERLAY_CHARACTER_WIDTH - KEYS_LEFT;
    overlay.Write(KEYS_LEFT, y, KeyLabels(action, room), OVERLAY_TEXT);
    overlay.Write(PAD_RIGHT - TextWidth(pad), y, pad, OVERLAY_QUIET_TEXT);
}

void Draw(int marked, int rows, const std::string& hint, uint32_t hintColour = OVERLAY_QUIET_TEXT) {
    static int firstShown = 0;
    firstShown = std::clamp(firstShown, std::max(marked - ROWS_SHOWN + 1, 0), marked);
    Overlay overlay;
    overlay.Fill(0, TOP - 22, OVERLAY_WIDTH, ROW_HEIGHT * ROWS_SHOWN + 46, OVERLAY_PANEL);
    overlay.WriteCentred(TOP - 15, "Keys in a level", OVERLAY_TEXT);
    for (int row = firstShown; row < std::min(firstShown + ROWS_SHOWN, rows); ++row)
        DrawRow(overlay, TOP + 3 + (row - firstShown) * ROW_HEIGHT, row, row == marked);
    if (firstShown > 0) overlay.Write(PAD_RIGHT - OVERLAY_CHARACTER_WIDTH, TOP - 15, "^", OVERLAY_QUIET_TEXT);
    const int below = TOP + 6 + ROWS_SHOWN * ROW_HEIGHT;
    if (firstShown + ROWS_SHOWN < rows)
        overlay.Write(PAD_RIGHT - OVERLAY_CHARACTER_WIDTH, below, "v", OVERLAY_QUIET_TEXT);
    overlay.WriteCentred(below, hint, hintColour);
    ShowOverlay(overlay);
}

// The next key of the keyboard is for the action. Escape, and any button of a controller, leaves it as it is.
void ListenForKey(KeyHits& hits, size_t action) {
    while (!CloseRequested()) {
        hits.Wait();
        const auto& keyboard = hits.Of(KeySource::Keyboard);
        if (keyboard[DIK_ESCAPE] || hits.Of(KeySource::Pad).any()) return;
        for (size_t code = 0; code < KEY_COUNT; ++code)
            if (keyboard[code]) return BindKey(action, static_cast<uint8_t>(code));
    }
}

}  // namespace

void RunKeysScreen(KeyHits& hits) {
    const std::vector<HostKey> actions = KeyActions();
    const int rows = static_cast<int>(actions.size()) + LAST_ROWS;
    const std::string enter = WithPadName("Enter", KeyCode("RETURN"));
    const std::string back = WithPadName("Escape", DIK_ESCAPE);
    const auto hintOf = [&](int row) {
        return enter + (row < rows - LAST_ROWS ? ": change   " : ": go   ") + back + ": back";
    };
    int marked = 0;
    Draw(marked, rows, hintOf(marked));
    while (!CloseRequested()) {
        hits.Wait();
        if (hits.None()) continue;
        if (hits.Any(DIK_ESCAPE)) return;
        if (hits.Any(DIK_UP)) marked = (marked + rows - 1) % rows;
        if (hits.Any(DIK_DOWN)) marked = (marked + 1) % rows;
        const auto action = static_cast<size_t>(marked);
        if (hits.Any(KeyCode("RETURN"))) {
            if (action == actions.size() + ROW_BACK) return;
            if (action == actions.size() + ROW_RESET) {
                ResetKeyBindings();
                Draw(marked, rows, "All have their usual keys", OVERLAY_TEXT);
                continue;
            }
            Draw(marked, rows, "Press the new key   " + back + ": no change", OVERLAY_TEXT);
            ListenForKey(hits, action);
        }
        Draw(marked, rows, hintOf(marked));
    }
}
