#include "platform/display.h"

#include "render/render_tables.h"

#include <initializer_list>

DisplayContext Display;
uint8_t DisplayState = DISPLAY_NONE;
DisplayModeEntry DisplayModeTable[DISPLAY_MODES_MAX];
uint16_t DisplayModeCount;
uint8_t* SurfaceMemory;
int32_t SurfacePitch;

namespace {

constexpr UINT PALETTE_SIZE = 256;

bool operator==(const DisplayModeEntry& a, const DisplayModeEntry& b) {
    return a.width == b.width && a.height == b.height && a.bits == b.bits;
}

// Modes that differ only in refresh rate come one after the other and are stored once.
HRESULT StoreMode(const DDSURFACEDESC* description, void*) {
    if (DisplayModeCount >= DISPLAY_MODES_MAX) return DDENUMRET_CANCEL;
    const DisplayModeEntry mode = {description->dwWidth, description->dwHeight,
                                   description->ddpfPixelFormat.dwRGBBitCount};
    if (DisplayModeCount > 0 && mode == DisplayModeTable[DisplayModeCount - 1]) return DDENUMRET_OK;
    // Kept as it is: every opening adds the modes it finds to the same table.
    DisplayModeTable[DisplayModeCount++] = mode;
    return DDENUMRET_OK;
}

const DisplayModeEntry* FindMode(uint32_t width, uint32_t height, uint32_t bits) {
    for (uint16_t i = 0; i < DisplayModeCount; ++i) {
        const DisplayModeEntry& mode = DisplayModeTable[i];
        if (mode.bits == bits && mode.width >= width && mode.height >= height) return &mode;
    }
    return nullptr;
}

RECT Area(uint32_t width, uint32_t height) {
    return {0, 0, static_cast<LONG>(width), static_cast<LONG>(height)};
}

bool CreateFlipChain(DisplayContext& context) {
    DDSURFACEDESC description = {};
    description.dwSize = sizeof(description);
    description.dwFlags = DDSD_CAPS | DDSD_BACKBUFFERCOUNT;
    description.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
    description.dwBackBufferCount = 1;
    const DDSCAPS backBuffer = {DDSCAPS_BACKBUFFER};
    return !Failed(context.directDraw->CreateSurface(&description, &context.primary, nullptr)) &&
           !Failed(context.primary->GetAttachedSurface(&backBuffer, &context.back));
}

bool CreateOffscreen(DisplayContext& context, const DisplayModeEntry& mode) {
    DDSURFACEDESC description = {};
    description.dwSize = sizeof(description);
    description.dwFlags = DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH;
    description.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_SYSTEMMEMORY;
    description.dwWidth = mode.width;
    description.dwHeight = mode.height;
    return !Failed(context.directDraw->CreateSurface(&description, &context.offscreen, nullptr));
}

bool OpenContext(HWND window, DisplayContext& context, uint32_t width, uint32_t height, uint32_t bits) {
    if (Failed(DirectDrawCreate(nullptr, &context.directDraw, nullptr))) return false;
    if (Failed(context.directDraw->SetCooperativeLevel(window, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN))) return false;
    if (Failed(context.directDraw->EnumDisplayModes(0, nullptr, nullptr, StoreMode))) return false;
    const DisplayModeEntry* mode = FindMode(width, height, bits);
    if (!mode) return false;
    // Kept as it is: only the part that was asked for is shown.
    context.source = Area(width, height);
    context.mode = Area(mode->width, mode->height);
    return !Failed(context.directDraw->SetDisplayMode(mode->width, mode->height, bits)) && CreateFlipChain(context) &&
           CreateOffscreen(context, *mode) && (bits != 8 || InitPalette(context));
}

template <class Object>
void Release(Object*& object) {
    if (object) object->Release();
    object = nullptr;
}

void ReleaseContext(DisplayContext& context) {
    Release(context.clipper);
    Release(context.palette);
    Release(context.offscreen);
    Release(context.primary);
    context.back = nullptr;
    Release(context.directDraw);
}

void RestoreIfLost(IDirectDrawSurface* surface, HRESULT& result) {
    if (surface && surface->IsLost() == DDERR_SURFACELOST) result = surface->Restore();
}

bool ReadSystemPalette(PALETTEENTRY (&entries)[PALETTE_SIZE]) {
    const HDC screen = GetDC(nullptr);
    const UINT count = GetSystemPaletteEntries(screen, 0, PALETTE_SIZE, entries);
    ReleaseDC(nullptr, screen);
    return count != 0;
}

BYTE EightBits(uint8_t sixBits) {
    // Kept as it is: 63 becomes 252, not 255.
    return static_cast<BYTE>(sixBits * 4);
}

}  // namespace

bool OpenDisplay(HWND window, DisplayContext& context, uint32_t width, uint32_t height, uint32_t bits) {
    context = {};
    if (!OpenContext(window, context, width, height, bits)) {
        ReleaseContext(context);
        context = {};
        return false;
    }
    while (ShowCursor(FALSE) >= 0) {
    }
    DisplayState = DISPLAY_FULL_SCREEN;
    return true;
}

bool OpenSoftwareDisplay(HWND window) {
    const ScreenRes& size = ScreenResTable[ScreenResIndex];
    return OpenDisplay(window, Display, static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height), 8);
}

void CloseDisplay() {
    ReleaseContext(Display);
    DisplayState = DISPLAY_NONE;
    while (ShowCursor(TRUE) < 0) {
    }
}

void PresentDisplay() {
    if (!Display.back) return;
    const HRESULT result = Display.back->Blt(&Display.mode, Display.offscreen, &Display.source, DDBLT_WAIT, nullptr);
    if (result == DDERR_SURFACELOST) RestoreSurfaces();
    FlipDisplay(nullptr);
}

HRESULT FlipDisplay(IDirectDrawSurface* override) {
    if (!Display.primary) return DDERR_GENERIC;
    HRESULT result = Display.primary->Flip(override, DDFLIP_WAIT);
    if (result == DDERR_SURFACELOST) {
        RestoreSurfaces();
        result = Display.primary->Flip(override, DDFLIP_WAIT);
    }
    return result;
}

void ClearSurface(IDirectDrawSurface* surface) {
    if (!surface) return;
    const DDBLTFX effects = {sizeof(DDBLTFX), 0};
    surface->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL | DDBLT_WAIT, &effects);
}

HRESULT LockSurface() {
    if (!Display.offscreen) return DDERR_GENERIC;
    DDSURFACEDESC description = {};
    description.dwSize = sizeof(description);
    const HRESULT result = Display.offscreen->Lock(nullptr, &description, DDLOCK_WAIT, nullptr);
    if (!Failed(result)) {
        SurfaceMemory = static_cast<uint8_t*>(description.lpSurface);
        SurfacePitch = description.lPitch;
    }
    return result;
}

void UnlockSurface() {
    if (Display.offscreen) Display.offscreen->Unlock(nullptr);
}

HRESULT RestoreSurfaces() {
    HRESULT result = DD_OK;
    for (IDirectDrawSurface* surface : {Display.primary, Display.back, Display.offscreen})
        RestoreIfLost(surface, result);
    return result;
}

bool InitPalette(DisplayContext& context) {
    PALETTEENTRY entries[PALETTE_SIZE] = {};
    if (!ReadSystemPalette(entries)) return false;
    if (context.palette) {
        context.palette->SetEntries(0, 0, PALETTE_SIZE, entries);
        return true;
    }
    if (Failed(context.directDraw->CreatePalette(DDPCAPS_8BIT, entries, &context.palette, nullptr))) return false;
    if (Failed(context.primary->SetPalette(context.palette))) {
        Release(context.palette);
        return false;
    }
    return true;
}

bool SetPaletteRange(const uint8_t* rgb, DisplayContext& context, uint8_t first, uint8_t last) {
    PALETTEENTRY entries[PALETTE_SIZE] = {};
    if (!context.palette || !ReadSystemPalette(entries)) return false;
    for (int i = first; i <= last; ++i) {
        const uint8_t* colour = rgb + 3 * i;
        entries[i] = {EightBits(colour[0]), EightBits(colour[1]), EightBits(colour[2]), PC_NOCOLLAPSE};
    }
    return !Failed(context.palette->SetEntries(0, 0, PALETTE_SIZE, entries));
}
