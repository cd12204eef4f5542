// A map as an editor writes it.
#include "formats/error.h"
#include "mapc/map_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        ParseMap(std::string(reinterpret_cast<const char*>(data), size), "input.map");
    } catch (const ContentError&) {
    }
    return 0;
}
