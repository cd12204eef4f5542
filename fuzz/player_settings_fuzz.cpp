// The file of the player's settings: what the program writes back must be read without a fault, and be written the
// same.
#include "machine/settings.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t bytes) {
    const std::string_view text(reinterpret_cast<const char*>(data), bytes);
    ReadSettings(text, "fuzz");
    for (size_t i = 0; i < SETTING_COUNT; ++i) {
        SettingText(static_cast<Setting>(i));
        StepSetting(static_cast<Setting>(i), 1);
    }
    const std::string updated = UpdateSettings(text);
    if (!ReadSettings(updated, "fuzz").empty() || UpdateSettings(updated) != updated) std::abort();
    return 0;
}
