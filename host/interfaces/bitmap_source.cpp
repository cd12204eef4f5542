#include "interfaces/bitmap_source.h"

#include "interfaces/global_memory.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace {

constexpr DWORD COMPRESSION_NONE = 0;
constexpr DWORD COMPRESSION_RLE8 = 1;
constexpr DWORD COMPRESSION_RLE4 = 2;
constexpr DWORD COMPRESSION_MASKS = 3;

constexpr int64_t SIDE_MAX = 32767;
constexpr int64_t UNPACKED_PIXELS_MAX = 16 << 20;

uint32_t ReadLong(const uint8_t* bytes) {
    uint32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

constexpr uint16_t Pack565(uint32_t red, uint32_t green, uint32_t blue) {
    return static_cast<uint16_t>(red >> 3 << 11 | green >> 2 << 5 | blue >> 3);
}

ChannelMask MakeMask(uint32_t mask) {
    if (mask == 0) return {};
    const int shift = std::countr_zero(mask);
    return {mask, shift, static_cast<int>(std::bit_width(mask >> shift))};
}

// Reads the pairs of a run-length coded bitmap. Whatever leaves the picture is dropped, and the data may end anywhere.
class RunLengthReader {
public:
    RunLengthReader(const uint8_t* data, size_t bytes, bool nibbles, BitmapSource& bitmap)
        : next_(data), end_(data + bytes), nibbles_(nibbles), bitmap_(bitmap) {}

    void Read() {
        uint8_t count = 0;
        uint8_t value = 0;
        while (TakeByte(count) && TakeByte(value)) {
            if (count > 0)
                Run(count, value);
            else if (!Escape(value))
                return;
        }
    }

private:
    bool TakeByte(uint8_t& byte) {
        if (next_ == end_) return false;
        byte = *next_++;
        return true;
    }

    void Put(int index) {
        if (x_ < bitmap_.width && y_ < bitmap_.height)
            bitmap_.unpacked[static_cast<size_t>(y_ * bitmap_.width + x_)] = static_cast<uint8_t>(index);
        ++x_;
    }

    // The i-th pixel of a byte repeated.
    int IndexIn(uint8_t value, int i) const { return !nibbles_ ? value : i % 2 == 0 ? value >> 4 : value & 0xF; }

    void Run(int count, uint8_t value) {
        for (int i = 0; i < count; ++i)
            Put(IndexIn(value, i));
    }

    void Literal(int count) {
        const int bytes = nibbles_ ? (count + 1) / 2 : count;
        uint8_t value = 0;
        for (int i = 0; i < bytes && TakeByte(value); ++i)
            Run(nibbles_ ? std::min(2, count - 2 * i) : 1, value);
        if (bytes % 2 != 0) TakeByte(value);
    }

    // False: the end of the bitmap.
    bool Escape(uint8_t code) {
        uint8_t right = 0;
        uint8_t up = 0;
        switch (code) {
        case 0:
            x_ = 0;
            ++y_;
            return true;
        case 1: return false;
        case 2:
            if (!TakeByte(right) || !TakeByte(up)) return false;
            x_ += right;
            y_ += up;
            return true;
        default: Literal(code); return true;
        }
    }

    const uint8_t* next_;
    const uint8_t* end_;
    bool nibbles_;
    BitmapSource& bitmap_;
    int64_t x_ = 0;
    int64_t y_ = 0;
};

void ReadColours(const uint8_t* info, size_t infoBytes, const BITMAPINFOHEADER& header, BitmapSource& bitmap) {
    bitmap.colours.fill(0);
    const size_t most = size_t{1} << header.biBitCount;
    const size_t count = header.biClrUsed ? std::min<size_t>(header.biClrUsed, most) : most;
    for (size_t i = 0; i < count && header.biSize + 4 * (i + 1) <= infoBytes; ++i) {
        const uint8_t* entry = info + header.biSize + 4 * i;
        bitmap.colours[i] = Pack565(entry[2], entry[1], entry[0]);
    }
}

bool ReadMasks(const uint8_t* info, size_t infoBytes, const BITMAPINFOHEADER& header, BitmapSource& bitmap) {
    uint32_t masks[3] = {0xFF0000, 0xFF00, 0xFF};
    if (header.biCompression == COMPRESSION_MASKS) {
        if (infoBytes < sizeof header + sizeof masks) return false;
        std::memcpy(masks, info + sizeof header, sizeof masks);
    } else if (header.biBitCount == 16) {
        masks[0] = 0x7C00;
        masks[1] = 0x03E0;
        masks[2] = 0x001F;
    }
    bitmap.red = MakeMask(masks[0]);
    bitmap.green = MakeMask(masks[1]);
    bitmap.blue = MakeMask(masks[2]);
    return true;
}

bool KnownFormat(const BITMAPINFOHEADER& header) {
    switch (header.biCompression) {
    case COMPRESSION_NONE: break;
    case COMPRESSION_RLE8: return header.biBitCount == 8 && header.biHeight > 0;
    case COMPRESSION_RLE4: return header.biBitCount == 4 && header.biHeight > 0;
    case COMPRESSION_MASKS: return header.biBitCount == 16 || header.biBitCount == 32;
    default: return false;
    }
    constexpr WORD DEPTHS[] = {1, 4, 8, 16, 24, 32};
    return std::find(std::begin(DEPTHS), std::end(DEPTHS), header.biBitCount) != std::end(DEPTHS);
}

bool ReadRows(const uint8_t* data, size_t bytes, DWORD compression, BitmapSource& bitmap) {
    if (compression == COMPRESSION_NONE || compression == COMPRESSION_MASKS) {
        bitmap.rows = data;
        bitmap.stride = static_cast<size_t>((bitmap.width * bitmap.bits + 31) / 32 * 4);
        return bitmap.stride * static_cast<size_t>(bitmap.height) <= bytes;
    }
    if (bitmap.width * bitmap.height > UNPACKED_PIXELS_MAX) return false;
    bitmap.unpacked.assign(static_cast<size_t>(bitmap.width * bitmap.height), 0);
    RunLengthReader(data, bytes, compression == COMPRESSION_RLE4, bitmap).Read();
    bitmap.bits = 8;
    bitmap.rows = bitmap.unpacked.data();
    bitmap.stride = static_cast<size_t>(bitmap.width);
    return true;
}

}  // namespace

uint32_t ChannelMask::Widened(uint32_t pixel) const {
    if (bits == 0) return 0;
    const uint32_t value = (pixel & mask) >> shift;
    if (bits >= 8) return value >> (bits - 8);
    uint32_t wide = value << (8 - bits);
    for (int filled = bits; filled < 8; filled *= 2)
        wide |= wide >> filled;
    return wide;
}

uint16_t BitmapSource::Pixel(const uint8_t* row, int64_t x) const {
    const auto column = static_cast<size_t>(x);
    switch (bits) {
    case 1: return colours[row[column / 8] >> (7 - column % 8) & 1];
    case 4: return colours[row[column / 2] >> (column % 2 ? 0 : 4) & 0xF];
    case 8: return colours[row[column]];
    case 24: return Pack565(row[3 * column + 2], row[3 * column + 1], row[3 * column]);
    default: break;
    }
    const uint32_t pixel =
        bits == 16 ? row[2 * column] | uint32_t{row[2 * column + 1]} << 8 : ReadLong(row + 4 * column);
    return Pack565(red.Widened(pixel), green.Widened(pixel), blue.Widened(pixel));
}

bool ReadBitmap(const BITMAPINFOHEADER* info, const void* bits, BitmapSource& bitmap) {
    const auto* infoStart = reinterpret_cast<const uint8_t*>(info);
    const auto* data = static_cast<const uint8_t*>(bits);
    const size_t infoBytes = GlobalBytesFrom(info);
    const size_t dataBytes = GlobalBytesFrom(bits);
    BITMAPINFOHEADER header;
    if (infoBytes < sizeof header || dataBytes == 0 || infoStart + infoBytes != data + dataBytes) return false;
    std::memcpy(&header, infoStart, sizeof header);
    bitmap.width = header.biWidth;
    bitmap.height = std::abs(int64_t{header.biHeight});
    bitmap.bits = header.biBitCount;
    bitmap.topDown = header.biHeight < 0;
    if (header.biSize < sizeof header || bitmap.width < 1 || bitmap.height < 1 || bitmap.width > SIDE_MAX ||
        bitmap.height > SIDE_MAX || !KnownFormat(header))
        return false;
    if (bitmap.bits <= 8)
        ReadColours(infoStart, infoBytes, header, bitmap);
    else if (!ReadMasks(infoStart, infoBytes, header, bitmap))
        return false;
    return ReadRows(data, dataBytes, header.biCompression, bitmap);
}
