#include "formats/height_image.h"

#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>
#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstring>
#include <string>

namespace {

constexpr size_t HEAD_SIZE = 33;  // signature and the header chunk

uint32_t BigU32(const uint8_t* at) {
    return uint32_t{at[0]} << 24 | uint32_t{at[1]} << 16 | uint32_t{at[2]} << 8 | at[3];
}

struct Source {
    const uint8_t* at;
    size_t left;
};

void TakeBytes(png_structp reader, png_bytep to, size_t count) {
    auto* source = static_cast<Source*>(png_get_io_ptr(reader));
    if (count > source->left) png_error(reader, "it ends too early");
    std::memcpy(to, source->at, count);
    source->at += count;
    source->left -= count;
}

void KeepMessage(png_structp reader, png_const_charp message) {
    std::strncpy(static_cast<char*>(png_get_error_ptr(reader)), message, 99);
    longjmp(png_jmpbuf(reader), 1);
}

void Ignore(png_structp, png_const_charp) {}

// The library leaves by a long jump, so nothing here has a destructor. False: what was wrong is in `message`.
bool ReadRows(Source* source, png_bytep* rows, char* message) {
    png_structp reader = png_create_read_struct(PNG_LIBPNG_VER_STRING, message, KeepMessage, Ignore);
    png_infop info = reader ? png_create_info_struct(reader) : nullptr;
    if (!info) {
        png_destroy_read_struct(&reader, nullptr, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(reader))) {
        png_destroy_read_struct(&reader, &info, nullptr);
        return false;
    }
    png_set_read_fn(reader, source, TakeBytes);
    png_read_info(reader, info);
    if constexpr (std::endian::native == std::endian::little) png_set_swap(reader);
    png_set_interlace_handling(reader);
    png_read_update_info(reader, info);
    png_read_image(reader, rows);
    png_destroy_read_struct(&reader, &info, nullptr);
    return true;
}

}  // namespace

HeightImage ReadHeightImage(const std::filesystem::path& path) {
    const std::string file = path.string();
    const std::vector<uint8_t> content = ReadWholeFile(path);
    const char* const remedy = "save it as a PNG with 16 bits of grey";
    if (content.size() < HEAD_SIZE || png_sig_cmp(content.data(), 0, 8) != 0) Refuse(file, 0, "is no PNG", remedy);
    const uint32_t width = BigU32(&content[16]);
    const uint32_t height = BigU32(&content[20]);
    if (content[24] != 16 || content[25] != PNG_COLOR_TYPE_GRAY) {
        Refuse(file, 0, fmt::format("has {} bits a channel{}", content[24], content[25] == 0 ? "" : ", and colours"),
               remedy);
    }
    if (std::min(width, height) < 2 || std::max(width, height) > HEIGHT_IMAGE_SIDE_MAX) {
        Refuse(file, 0, fmt::format("is {} x {} pixels", width, height),
               fmt::format("make each side 2 to {}: a pixel is a corner of the grid", HEIGHT_IMAGE_SIDE_MAX));
    }
    HeightImage image{static_cast<int>(width), static_cast<int>(height), std::vector<uint16_t>(width * height)};
    std::vector<png_bytep> rows;
    for (uint32_t y = 0; y < height; ++y)
        rows.push_back(reinterpret_cast<png_bytep>(image.values.data() + y * width));
    Source source{content.data(), content.size()};
    char message[100] = "no memory";
    if (!ReadRows(&source, rows.data(), message)) Refuse(file, 0, message, remedy);
    return image;
}
