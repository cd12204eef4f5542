#include "datacheck/rules.h"

#include "records/table_facts.h"

#include <fmt/format.h>

namespace {

constexpr size_t COUNT_MIN = CHAR_TEXTURE_BASE + CHAR_TEXTURE_COUNT;
constexpr size_t ANIMATED_FIRST = TEXTURE_CYCLE_FIRST;  // shown until the first cycle
constexpr size_t ANIMATED_LAST = TEXTURE_CYCLE_FIRST + TEXTURE_CYCLE_LENGTH - 1;

bool SamePicture(const TextureFile& file, const TextureSlot& a, const TextureSlot& b) {
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x) {
            if (file.Texel(a, x, y) != file.Texel(b, x, y)) return false;
        }
    }
    return true;
}

void CheckAnimatedSlots(const LevelData& level, Report& report) {
    const TextureFile& file = *level.textures;
    const TextureSlot& first = file.slots[ANIMATED_FIRST];
    for (size_t i = ANIMATED_FIRST + 1; i <= ANIMATED_LAST; ++i) {
        if (file.slots[i].width == first.width && file.slots[i].height == first.height) continue;
        report.Problem(level.TexturePath(), fmt::format("texture {}", i), "differs in size from texture 10",
                       "make the five animated textures equal in size");
        return;
    }
    if (!SamePicture(file, first, file.slots[ANIMATED_LAST])) {
        report.Problem(level.TexturePath(), "texture 10", "differs from texture 14, whose place in the cycle it takes",
                       "use the same picture for both");
    }
}

void CheckUse(const LevelData& level, Report& report) {
    for (size_t i = 0; i < level.world->polygons.size(); ++i) {
        const uint8_t texture = level.world->polygons[i].texture;
        if (texture < CHAR_TEXTURE_BASE && texture < level.textures->slots.size()) continue;
        report.Problem(level.WorldPath(), fmt::format("polygon {}", i),
                       fmt::format("uses texture {}, the world's end at {}", texture, CHAR_TEXTURE_BASE - 1),
                       "use a material of a lower slot");
    }
}

// The game scales the coordinates of both renderers by the sizes in texture.bin.
void CheckGlideTextures(const LevelData& level, Report& report) {
    for (const auto& [number, picture] : level.glideTextures) {
        if (number >= level.textures->slots.size()) continue;
        const TextureSlot& slot = level.textures->slots[number];
        if (picture.width != slot.width || picture.height != slot.height) {
            report.Problem(level.GlideTexturePath(number), "",
                           fmt::format("is {} x {} texels, in texture.bin {} x {}", picture.width, picture.height,
                                       slot.width, slot.height),
                           "build the textures again");
        }
        if (picture.smallest != 1) {
            report.Problem(level.GlideTexturePath(number), "",
                           fmt::format("ends with a level of {} texels", picture.smallest),
                           "add smaller ones, down to one texel");
        }
    }
}

}  // namespace

void CheckTextures(const LevelData& level, Report& report) {
    const size_t count = level.textures->slots.size();
    if (count < COUNT_MIN) {
        report.Problem(level.TexturePath(), "", fmt::format("has {} textures, {} are needed", count, COUNT_MIN),
                       "fill the unused slots with a small picture");
    }
    if (count > ANIMATED_LAST) CheckAnimatedSlots(level, report);
    CheckGlideTextures(level, report);
    if (level.world) CheckUse(level, report);
}
