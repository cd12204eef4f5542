// A map as an editor writes it. It is compiled as far as it can be.
#include "mapc/map_builder.h"
#include "records/levels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        CompileMap(ParseMap(text, "input.map"), {TestMaterials()}, static_cast<int>(size % (LEVEL_COUNT + 1)));
    } catch (const ContentError&) {
    }
    return 0;
}
