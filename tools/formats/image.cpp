#include "formats/image.h"

#include "formats/binary.h"
#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>
#include <png.h>

namespace {

constexpr int PNG_SIDE_MAX = 4096;
constexpr uint32_t BITMAP_HEADER_SIZE = 54;  // 14 bytes of file header, 40 of picture header

size_t BitmapRowSize(int width) {
    return (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
}

}  // namespace

Image ReadPng(const std::filesystem::path& path) {
    const std::vector<uint8_t> content = ReadWholeFile(path);
    png_image reader{};
    reader.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&reader, content.data(), content.size())) {
        Refuse(path.string(), 0, reader.message, "save the picture as PNG again");
    }
    if (reader.width > PNG_SIDE_MAX || reader.height > PNG_SIDE_MAX) {
        png_image_free(&reader);
        Refuse(path.string(), 0, fmt::format("is {} x {} pixels", reader.width, reader.height),
               fmt::format("make it at most {} a side", PNG_SIDE_MAX));
    }
    reader.format = PNG_FORMAT_RGBA;
    Image image(static_cast<int>(reader.width), static_cast<int>(reader.height));
    static_assert(sizeof(Rgba) == 4);
    if (!png_image_finish_read(&reader, nullptr, image.pixels.data(), 0, nullptr)) {
        Refuse(path.string(), 0, reader.message, "save the picture as PNG again");
    }
    return image;
}

void WritePng(const std::filesystem::path& path, const Image& image) {
    png_image writer{};
    writer.version = PNG_IMAGE_VERSION;
    writer.width = static_cast<uint32_t>(image.width);
    writer.height = static_cast<uint32_t>(image.height);
    writer.format = PNG_FORMAT_RGBA;
    std::vector<uint8_t> content(PNG_IMAGE_PNG_SIZE_MAX(writer));
    size_t size = content.size();
    if (!png_image_write_to_memory(&writer, content.data(), &size, 0, image.pixels.data(), 0, nullptr)) {
        Refuse(path.string(), 0, writer.message, "report this as a fault of the tool");
    }
    content.resize(size);
    WriteWholeFile(path, content);
}

std::vector<uint8_t> EncodeBitmap(const Image& image) {
    const size_t rowSize = BitmapRowSize(image.width);
    const size_t dataSize = rowSize * static_cast<size_t>(image.height);
    ByteWriter out;
    out.U8('B');
    out.U8('M');
    out.U32(static_cast<uint32_t>(BITMAP_HEADER_SIZE + dataSize));
    out.U32(0);
    out.U32(BITMAP_HEADER_SIZE);
    out.U32(40);
    out.I32(image.width);
    out.I32(image.height);
    out.U16(1);
    out.U16(24);
    out.U32(0);
    out.U32(static_cast<uint32_t>(dataSize));
    out.I32(2835);  // pixels a metre: 72 dpi
    out.I32(2835);
    out.Zeros(8);
    for (int y = image.height - 1; y >= 0; --y) {
        for (int x = 0; x < image.width; ++x) {
            const Rgba& p = image.At(x, y);
            out.U8(p.b);
            out.U8(p.g);
            out.U8(p.r);
        }
        out.Zeros(rowSize - static_cast<size_t>(image.width) * 3);
    }
    return out.bytes;
}

Image DecodeBitmap(std::vector<uint8_t> content, const std::string& fileName) {
    const char* const remedy = "save it as an uncompressed 24-bit bitmap";
    ByteReader in(std::move(content), fileName);
    if (in.U8() != 'B' || in.U8() != 'M') Refuse(fileName, 0, "is not a bitmap", remedy);
    in.Take(8);
    if (in.U32() != BITMAP_HEADER_SIZE || in.U32() != 40) Refuse(fileName, 0, "has an unusual header", remedy);
    const int width = in.I32();
    const int height = in.I32();
    if (width < 1 || height < 1 || width > PNG_SIDE_MAX || height > PNG_SIDE_MAX) {
        Refuse(fileName, 0, fmt::format("says it is {} x {} pixels", width, height), remedy);
    }
    if (in.U16() != 1 || in.U16() != 24 || in.U32() != 0) Refuse(fileName, 0, "is not plain 24-bit colour", remedy);
    in.Take(20);
    Image image(width, height);
    for (int y = height - 1; y >= 0; --y) {
        const uint8_t* row = in.Take(BitmapRowSize(width));
        for (int x = 0; x < width; ++x)
            image.At(x, y) = {row[3 * x + 2], row[3 * x + 1], row[3 * x], 255};
    }
    return image;
}
