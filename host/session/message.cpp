#include "session/message.h"

#include "machine/clock.h"
#include "machine/overlay.h"
#include "session/front_end.h"

namespace {

constexpr uint32_t MESSAGE_MS = 2500;
constexpr int MESSAGE_HEIGHT = 14;
constexpr size_t CHARACTERS_MAX = OVERLAY_WIDTH / OVERLAY_CHARACTER_WIDTH - 2;

bool messageShown = false;
uint32_t messageSince = 0;  // ms of the host's clock

}  // namespace

void ShowMessage(const std::string& what, std::string more) {
    const size_t room = CHARACTERS_MAX - what.size();
    if (more.size() > room) more = "..." + more.substr(more.size() - room + 3);
    Overlay overlay;
    overlay.Fill(0, OVERLAY_HEIGHT - MESSAGE_HEIGHT, OVERLAY_WIDTH, MESSAGE_HEIGHT, OVERLAY_PANEL);
    overlay.WriteCentred(OVERLAY_HEIGHT - MESSAGE_HEIGHT + 4, what + more, OVERLAY_TEXT);
    ShowOverlay(overlay);
    messageShown = true;
    messageSince = ClockNow();
}

void HideOldMessage() {
    if (!messageShown || (!InFrontEnd() && ClockNow() - messageSince < MESSAGE_MS)) return;
    HideOverlay();
    messageShown = false;
}
