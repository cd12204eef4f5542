// DirectDraw, version 1: one full-screen display with a flip chain, an offscreen surface and a palette.
#pragma once

#include "host/win32.h"

constexpr HRESULT DD_OK = 0;
constexpr HRESULT DDERR_GENERIC = static_cast<HRESULT>(0x80004005);
constexpr HRESULT DDERR_INVALIDPARAMS = static_cast<HRESULT>(0x80070057);
constexpr HRESULT DDERR_SURFACEBUSY = static_cast<HRESULT>(0x887601AE);
constexpr HRESULT DDERR_SURFACELOST = static_cast<HRESULT>(0x887601C2);
constexpr HRESULT DDERR_UNSUPPORTEDMODE = static_cast<HRESULT>(0x8876024E);

constexpr DWORD DDSCL_FULLSCREEN = 0x1;
constexpr DWORD DDSCL_EXCLUSIVE = 0x10;
constexpr DWORD DDSD_CAPS = 0x1;
constexpr DWORD DDSD_HEIGHT = 0x2;
constexpr DWORD DDSD_WIDTH = 0x4;
constexpr DWORD DDSD_BACKBUFFERCOUNT = 0x20;
constexpr DWORD DDSCAPS_BACKBUFFER = 0x4;
constexpr DWORD DDSCAPS_COMPLEX = 0x8;
constexpr DWORD DDSCAPS_FLIP = 0x10;
constexpr DWORD DDSCAPS_OFFSCREENPLAIN = 0x40;
constexpr DWORD DDSCAPS_PRIMARYSURFACE = 0x200;
constexpr DWORD DDSCAPS_SYSTEMMEMORY = 0x800;
constexpr DWORD DDPCAPS_8BIT = 0x4;
constexpr DWORD DDBLT_COLORFILL = 0x400;
constexpr DWORD DDBLT_WAIT = 0x1000000;
constexpr DWORD DDFLIP_WAIT = 0x1;
constexpr DWORD DDLOCK_WAIT = 0x1;
constexpr HRESULT DDENUMRET_CANCEL = 0;
constexpr HRESULT DDENUMRET_OK = 1;

struct DDPIXELFORMAT {
    DWORD dwRGBBitCount;
};
struct DDSCAPS {
    DWORD dwCaps;
};
struct DDSURFACEDESC {
    DWORD dwSize;
    DWORD dwFlags;
    DWORD dwHeight, dwWidth;
    LONG lPitch;  // bytes
    DWORD dwBackBufferCount;
    void* lpSurface;
    DDPIXELFORMAT ddpfPixelFormat;
    DDSCAPS ddsCaps;
};
struct DDBLTFX {
    DWORD dwSize;
    DWORD dwFillColor;  // raw pixel value
};

struct IDirectDrawPalette {
    virtual DWORD Release() = 0;
    virtual HRESULT SetEntries(DWORD flags, DWORD first, DWORD count, const PALETTEENTRY* entries) = 0;

protected:
    ~IDirectDrawPalette() = default;
};

struct IDirectDrawClipper {
    virtual DWORD Release() = 0;

protected:
    ~IDirectDrawClipper() = default;
};

struct IDirectDrawSurface {
    virtual DWORD Release() = 0;
    virtual HRESULT Blt(const RECT* destination, IDirectDrawSurface* source, const RECT* sourceRect, DWORD flags,
                        const DDBLTFX* effects) = 0;
    virtual HRESULT Flip(IDirectDrawSurface* override, DWORD flags) = 0;
    virtual HRESULT GetAttachedSurface(const DDSCAPS* caps, IDirectDrawSurface** attached) = 0;
    virtual HRESULT GetDC(HDC* context) = 0;
    virtual HRESULT ReleaseDC(HDC context) = 0;
    virtual HRESULT IsLost() = 0;
    virtual HRESULT Restore() = 0;
    virtual HRESULT Lock(const RECT* area, DDSURFACEDESC* description, DWORD flags, HANDLE event) = 0;
    virtual HRESULT Unlock(void* memory) = 0;
    virtual HRESULT SetPalette(IDirectDrawPalette* palette) = 0;

protected:
    ~IDirectDrawSurface() = default;
};

using DDENUMMODESCALLBACK = HRESULT (*)(const DDSURFACEDESC* mode, void* context);

struct IDirectDraw {
    virtual DWORD Release() = 0;
    virtual HRESULT SetCooperativeLevel(HWND window, DWORD flags) = 0;
    virtual HRESULT EnumDisplayModes(DWORD flags, const DDSURFACEDESC* like, void* context,
                                     DDENUMMODESCALLBACK callback) = 0;
    virtual HRESULT SetDisplayMode(DWORD width, DWORD height, DWORD bits) = 0;
    virtual HRESULT CreateSurface(const DDSURFACEDESC* description, IDirectDrawSurface** surface, void* outer) = 0;
    virtual HRESULT CreatePalette(DWORD flags, const PALETTEENTRY* entries, IDirectDrawPalette** palette,
                                  void* outer) = 0;
    virtual HRESULT FlipToGDISurface() = 0;

protected:
    ~IDirectDraw() = default;
};

HRESULT DirectDrawCreate(const void* driver, IDirectDraw** directDraw, void* outer);
