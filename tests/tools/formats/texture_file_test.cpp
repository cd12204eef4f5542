#include "formats/texture_file.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

namespace {

TextureFile TwoTextures() {
    TextureFile file;
    file.slots = {{0, 16, 32, 64, 8}, {1, 128, 128, 128, 128}};
    file.pages.assign(2, std::vector<uint8_t>(TEXTURE_PAGE_SIZE, 0));
    return file;
}

}  // namespace

TEST(TextureFileLayout, RefusesWhatTheGameCouldNotUse) {
    const std::vector<uint8_t> whole = EncodeTextureFile(TwoTextures());
    const struct {
        size_t offset;
        uint8_t byte;
        const char* text;
    } rows[] = {
        {0, 0, "0 textures"},
        {2, 64, "above 63"},                  // a palette level
        {770 + 7, 2, "outside the pages"},    // a page beyond the end
        {770 + 8, 200, "outside the pages"},  // leaves its page sideways
        {770 + 9, 250, "outside the pages"},  // and downwards
        {770 + 10, 48, "48 x 8"},             // no power of two
        {782 + 11, 0, "128 x 0"},             // a height of 256
    };
    for (const auto& row : rows) {
        std::vector<uint8_t> bytes = whole;
        bytes[row.offset] = row.byte;
        ExpectRefusal(row.text, [&] { DecodeTextureFile(bytes, "texture.bin"); });
    }
}
