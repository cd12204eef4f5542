// The tools' own readers, and the rules asked of whatever they accept. The first byte chooses the file.
#include "datacheck/rules.h"
#include "formats/error.h"
#include "formats/image.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::vector<uint8_t> content(data + 1, data + size);
    LevelData level;
    level.number = 3;
    try {
        switch (data[0] % 5) {
        case 0: level.world = DecodeWorld(content, "input.bgm"); break;
        case 1: level.light = DecodeLightMap(content, "lights.lmp"); break;
        case 2: level.slots = DecodeLightSlots(content, "lights.alt"); break;
        case 3: level.textures = DecodeTextureFile(content, "texture.bin"); break;
        default: DecodeBitmap(content, "input.bmp"); break;
        }
    } catch (const ContentError&) {
        return 0;
    }
    Report report;
    CheckLevel(level, report);
    return 0;
}
