// A bitmap file drawn as the game draws it: with the width and height that its header states.
#include "interfaces/gdi.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t BITS_OFFSET = 10;
constexpr size_t INFO = 14;
constexpr size_t WIDTH = INFO + 4;
constexpr size_t HEIGHT = INFO + 8;
constexpr size_t HEADERS = 54;

constexpr uint32_t SURFACE_WIDTH = 64;
constexpr uint32_t SURFACE_HEIGHT = 48;

int32_t ReadLong(const uint8_t* bytes) {
    int32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t bytes) {
    if (bytes < HEADERS) return 0;
    const auto bits = static_cast<uint32_t>(ReadLong(data + BITS_OFFSET));
    if (bits >= bytes) return 0;
    static uint16_t pixels[SURFACE_WIDTH * SURFACE_HEIGHT];
    HostDeviceContext context{reinterpret_cast<uint8_t*>(pixels), 2 * SURFACE_WIDTH, SURFACE_WIDTH, SURFACE_HEIGHT, 16};
    auto* file = static_cast<uint8_t*>(GlobalAlloc(GMEM_FIXED, bytes));
    std::copy_n(data, bytes, file);
    StretchDIBits(&context, 0, 0, SURFACE_WIDTH, SURFACE_HEIGHT, 0, 0, ReadLong(data + WIDTH), ReadLong(data + HEIGHT),
                  file + bits, reinterpret_cast<const BITMAPINFOHEADER*>(file + INFO), DIB_RGB_COLORS, SRCCOPY);
    GlobalFree(file);
    return 0;
}
