// A score: reads it, and works out the notes that it plays.
#include "formats/error.h"
#include "musicc/arrangement.h"
#include "support/memory_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BeginMemoryFiles();
    try {
        Arrange(LoadScore(AddMemoryFile(data, size)));
    } catch (const ContentError&) {
    }
    return 0;
}
