#include "interfaces/gdi.h"

#include "interfaces/bitmap_source.h"
#include "interfaces/display.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int PALETTE_SIZE = 256;

constexpr uint32_t FIRST_COLOURS[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080,
                                      0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA6CAF0};
constexpr uint32_t LAST_COLOURS[] = {0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00,
                                     0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

constexpr PALETTEENTRY Entry(uint32_t colour) {
    return {static_cast<BYTE>(colour >> 16), static_cast<BYTE>(colour >> 8), static_cast<BYTE>(colour), 0};
}

constexpr std::array<PALETTEENTRY, PALETTE_SIZE> MakeSystemPalette() {
    std::array<PALETTEENTRY, PALETTE_SIZE> entries{};
    for (size_t i = 0; i < std::size(FIRST_COLOURS); ++i)
        entries[i] = Entry(FIRST_COLOURS[i]);
    for (size_t i = 0; i < std::size(LAST_COLOURS); ++i)
        entries[PALETTE_SIZE - std::size(LAST_COLOURS) + i] = Entry(LAST_COLOURS[i]);
    return entries;
}

constexpr std::array<PALETTEENTRY, PALETTE_SIZE> SYSTEM_PALETTE = MakeSystemPalette();

HostDeviceContext screen{};

struct Area {
    int64_t x, y, width, height;  // y from the top
};

void DrawStretched(const HostDeviceContext& context, const Area& to, const BitmapSource& bitmap, const Area& from) {
    const int64_t left = std::max<int64_t>(to.x, 0);
    const int64_t right = std::min<int64_t>(to.x + to.width, context.width);
    const int64_t bottom = std::min<int64_t>(to.y + to.height, context.height);
    for (int64_t y = std::max<int64_t>(to.y, 0); y < bottom; ++y) {
        const uint8_t* source = bitmap.Row(from.y + (y - to.y) * from.height / to.height);
        uint8_t* row = context.pixels + static_cast<size_t>(y) * context.pitch;
        for (int64_t x = left; x < right; ++x) {
            const uint16_t pixel = bitmap.Pixel(source, from.x + (x - to.x) * from.width / to.width);
            std::memcpy(row + 2 * x, &pixel, sizeof pixel);
        }
    }
}

}  // namespace

const PALETTEENTRY* SystemPalette() {
    return SYSTEM_PALETTE.data();
}

HDC GetDC(HWND) {
    return &screen;
}

int ReleaseDC(HWND, HDC context) {
    return context == &screen ? 1 : 0;
}

UINT GetSystemPaletteEntries(HDC, UINT first, UINT count, PALETTEENTRY* entries) {
    if (CurrentScreenMode().bits != 8 || first >= PALETTE_SIZE) return 0;
    const UINT taken = std::min<UINT>(count, PALETTE_SIZE - first);
    std::copy_n(SYSTEM_PALETTE.begin() + first, taken, entries);
    return taken;
}

int StretchDIBits(HDC context, int xDest, int yDest, int widthDest, int heightDest, int xSource, int ySource,
                  int widthSource, int heightSource, const void* bits, const BITMAPINFOHEADER* info, UINT usage,
                  DWORD operation) {
    if (!context || context->bits != 16 || widthDest <= 0 || heightDest <= 0) return 0;
    if (usage != DIB_RGB_COLORS || operation != SRCCOPY) return 0;
    BitmapSource bitmap;
    if (!ReadBitmap(info, bits, bitmap)) return 0;
    // A caller may pass a top-down bitmap's own negative height; the picture stays upright all the same.
    const int64_t height = std::abs(int64_t{heightSource});
    if (xSource < 0 || ySource < 0 || widthSource < 1 || height < 1 || int64_t{xSource} + widthSource > bitmap.width ||
        ySource + height > bitmap.height)
        return 0;
    // Source rows count from the lower edge of a bottom-up bitmap.
    const int64_t top = bitmap.topDown ? ySource : bitmap.height - height - ySource;
    DrawStretched(*context, {xDest, yDest, widthDest, heightDest}, bitmap, {xSource, top, widthSource, height});
    return static_cast<int>(height);
}
