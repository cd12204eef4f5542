#include "platform/bitmap.h"

#include "platform/display.h"

#include <cstring>

namespace {

constexpr DWORD FILE_HEADER_BYTES = 14;
constexpr DWORD INFO_HEADER_BYTES = 40;
constexpr DWORD BITS_OFFSET_FIELD = 10;  // offset in the file header of the field that says where the pixels begin

uint32_t Little32(const uint8_t* bytes) {
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 | static_cast<uint32_t>(bytes[2]) << 16 |
           static_cast<uint32_t>(bytes[3]) << 24;
}

void ReleaseFile(uint8_t* file) {
    const HGLOBAL memory = GlobalHandle(file);
    GlobalUnlock(memory);
    GlobalFree(memory);
}

uint8_t* ReadOpenFile(HANDLE handle, DWORD size) {
    auto* file = static_cast<uint8_t*>(GlobalLock(GlobalAlloc(GMEM_FIXED, size)));
    DWORD bytesRead = 0;
    if (file && (!ReadFile(handle, file, size, &bytesRead, nullptr) || bytesRead < size)) {
        ReleaseFile(file);
        return nullptr;
    }
    return file;
}

bool HoldsBitmap(const uint8_t* file, DWORD size) {
    return size >= FILE_HEADER_BYTES + INFO_HEADER_BYTES && file[0] == 'B' && file[1] == 'M' &&
           Little32(file + BITS_OFFSET_FIELD) < size;
}

}  // namespace

uint8_t* LoadFileGlobal(const char* path, DWORD& size) {
    SECURITY_ATTRIBUTES security = {sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
    const HANDLE handle = CreateFileA(path, GENERIC_READ, 0, &security, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    size = GetFileSize(handle, nullptr);
    uint8_t* file = size == INVALID_FILE_SIZE ? nullptr : ReadOpenFile(handle, size);
    CloseHandle(handle);
    return file;
}

uint8_t* LoadBitmapFile(const char* path, BitmapInfo& info) {
    info = {};
    DWORD size;
    uint8_t* file = LoadFileGlobal(path, size);
    if (!file) return nullptr;
    if (!HoldsBitmap(file, size)) {
        ReleaseFile(file);
        return nullptr;
    }
    info.file = file;
    info.infoHeader = file + FILE_HEADER_BYTES;
    info.colourTable = info.infoHeader + INFO_HEADER_BYTES;
    info.bits = file + Little32(file + BITS_OFFSET_FIELD);
    return file;
}

void DrawBitmap(const BitmapInfo& info) {
    HDC context;
    if (!Display.offscreen || Failed(Display.offscreen->GetDC(&context))) return;
    const auto width = static_cast<int32_t>(Little32(info.infoHeader + 4));
    const auto height = static_cast<int32_t>(Little32(info.infoHeader + 8));
    const RECT& area = Display.source;
    StretchDIBits(context, area.left, area.top, area.right, area.bottom, 0, 0, width, height, info.bits,
                  reinterpret_cast<const BITMAPINFOHEADER*>(info.infoHeader), DIB_RGB_COLORS, SRCCOPY);
    Display.offscreen->ReleaseDC(context);
}

int ShowBitmap(const char* path) {
    BitmapInfo info;
    if (uint8_t* file = LoadBitmapFile(path, info)) {
        DrawBitmap(info);
        ReleaseFile(file);
    }
    return 1;
}
