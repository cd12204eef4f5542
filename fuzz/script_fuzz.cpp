#include "session/script.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t bytes) {
    Script script;
    std::string error;
    const std::string_view text(reinterpret_cast<const char*>(data), bytes);
    if (ParseScript(text, "fuzz", script, error) != error.empty()) std::abort();
    return 0;
}
