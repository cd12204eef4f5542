// The tools' own readers, and the rules asked of whatever they accept. The first byte chooses the file.
#include "datacheck/rules.h"
#include "formats/error.h"
#include "formats/image.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::vector<uint8_t> content(data + 1, data + size);
    LevelData level;
    level.number = 3;
    CharacterData character;
    try {
        switch (data[0] % 11) {
        case 0: level.world = DecodeWorld(content, "input.bgm"); break;
        case 1: level.light = DecodeLightMap(content, "lights.lmp"); break;
        case 2: level.slots = DecodeLightSlots(content, "lights.alt"); break;
        case 3: level.textures = DecodeTextureFile(content, "texture.bin"); break;
        case 4: DecodeBitmap(content, "input.bmp"); break;
        case 5: level.glideTextures[0] = DecodeGlideTexture(content, "00.3df"); break;
        case 6: level.sky = DecodeStaticObject(content, "sky.sob"); break;
        case 7: character.mesh = DecodeMesh(content, "zero.msh"); break;
        case 8: character.skins["zero.tuv"] = DecodeSkin(content, "zero.tuv"); break;
        case 9: character.weights = DecodeWeights(content, "zero.wei"); break;
        default: character.clips["a.anm"] = DecodeAnimation(content, "a.anm"); break;
        }
    } catch (const ContentError&) {
        return 0;
    }
    Report report;
    CheckLevel(level, report);
    CheckCharacter(character, report);
    return 0;
}
