// The file lights.alt of a small world. What is loaded runs for some frames, and lights the character.
#include "character/actor.h"
#include "lights/light_slots.h"
#include "platform/timer.h"
#include "support/game_file.h"
#include "support/small_world.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    PublishSmallWorld();
    try {
        LoadLightSlots(BeginGameFile(data, size));
    } catch (const FatalThrown&) {
        return 0;
    }
    for (int i = 0; i < 4; ++i) {
        ++FrameCount;
        UpdateLights();
        GatherActorLights(0.0f, 0.0f, 90.0f);
    }
    return 0;
}
