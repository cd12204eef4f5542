#include "host/ddraw.h"

#include "interfaces/display.h"
#include "interfaces/gdi.h"
#include "interfaces/presentation.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr uint32_t SIDE_MAX = 4096;

class Palette final : public IDirectDrawPalette {
public:
    explicit Palette(const PALETTEENTRY* entries) { std::copy_n(entries, 256, entries_); }

    void AddReference() { ++references_; }
    DWORD Release() override {
        const DWORD left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT SetEntries(DWORD flags, DWORD first, DWORD count, const PALETTEENTRY* entries) override;

    const PALETTEENTRY* Entries() const { return entries_; }

private:
    PALETTEENTRY entries_[256];
    DWORD references_ = 1;
};

class Surface;
Surface* primarySurface = nullptr;

class Surface final : public IDirectDrawSurface {
public:
    Surface(uint32_t width, uint32_t height, uint32_t bits, bool videoMemory)
        : width_(width), height_(height), bits_(bits), pitch_((width * bits / 8 + 7) & ~7U), videoMemory_(videoMemory),
          lossesSeen_(SurfaceLosses()), memory_(size_t{pitch_} * height) {}

    ~Surface() {
        if (primarySurface == this) {
            FreezeFront();
            primarySurface = nullptr;
        }
        if (palette_) palette_->Release();
    }

    // A back buffer lives and dies with its primary surface.
    DWORD Release() override {
        if (!isBack_) delete this;
        return 0;
    }

    HRESULT Blt(const RECT* destination, IDirectDrawSurface* source, const RECT* sourceRect, DWORD flags,
                const DDBLTFX* effects) override;
    HRESULT Flip(IDirectDrawSurface* override, DWORD flags) override;

    HRESULT GetAttachedSurface(const DDSCAPS* caps, IDirectDrawSurface** attached) override {
        if (!back_ || !caps || caps->dwCaps != DDSCAPS_BACKBUFFER) return DDERR_INVALIDPARAMS;
        *attached = back_.get();
        return DD_OK;
    }

    HRESULT GetDC(HDC* context) override {
        if (const HRESULT result = Ready(); Failed(result)) return result;
        context_ = {memory_.data(), pitch_, width_, height_, bits_};
        *context = &context_;
        busy_ = true;
        return DD_OK;
    }

    HRESULT ReleaseDC(HDC context) override {
        if (!busy_ || context != &context_) return DDERR_INVALIDPARAMS;
        busy_ = false;
        ShowIfPrimary();
        return DD_OK;
    }

    HRESULT IsLost() override { return videoMemory_ && lossesSeen_ != SurfaceLosses() ? DDERR_SURFACELOST : DD_OK; }

    HRESULT Restore() override {
        lossesSeen_ = SurfaceLosses();
        return DD_OK;
    }

    HRESULT Lock(const RECT* area, DDSURFACEDESC* description, DWORD, HANDLE) override {
        if (area || !description || description->dwSize != sizeof *description) return DDERR_INVALIDPARAMS;
        if (const HRESULT result = Ready(); Failed(result)) return result;
        description->dwFlags = DDSD_WIDTH | DDSD_HEIGHT;
        description->dwWidth = width_;
        description->dwHeight = height_;
        description->lPitch = static_cast<LONG>(pitch_);
        description->lpSurface = memory_.data();
        description->ddpfPixelFormat.dwRGBBitCount = bits_;
        busy_ = true;
        return DD_OK;
    }

    HRESULT Unlock(void*) override {
        if (!busy_) return DDERR_GENERIC;
        busy_ = false;
        ShowIfPrimary();
        return DD_OK;
    }

    HRESULT SetPalette(IDirectDrawPalette* palette) override {
        if (bits_ != 8) return DDERR_INVALIDPARAMS;
        auto* entering = static_cast<Palette*>(palette);
        if (entering) entering->AddReference();
        if (palette_) palette_->Release();
        palette_ = entering;
        ShowIfPrimary();
        return DD_OK;
    }

    void MakePrimary(std::unique_ptr<Surface> back) {
        back_ = std::move(back);
        back_->isBack_ = true;
        primarySurface = this;
    }

    void ShowIfPrimary() {
        if (primarySurface != this) return;
        ShowFront({memory_.data(), pitch_, width_, height_, bits_, palette_ ? palette_->Entries() : SystemPalette()});
    }

    bool Uses(const Palette* palette) const { return palette_ == palette; }

private:
    HRESULT Ready() { return busy_ ? DDERR_SURFACEBUSY : IsLost(); }

    bool Whole(const RECT* given, RECT& area) const {
        area = given ? *given : RECT{0, 0, static_cast<LONG>(width_), static_cast<LONG>(height_)};
        return area.left >= 0 && area.top >= 0 && area.left < area.right && area.top < area.bottom &&
               area.right <= static_cast<LONG>(width_) && area.bottom <= static_cast<LONG>(height_);
    }

    uint8_t* Pixel(LONG x, LONG y) {
        return memory_.data() + static_cast<size_t>(y) * pitch_ + static_cast<size_t>(x) * (bits_ / 8);
    }

    void Fill(const RECT& area, DWORD colour);
    void Copy(const RECT& to, Surface& source, const RECT& from);
    void Stretch(const RECT& to, Surface& source, const RECT& from);

    uint32_t width_, height_, bits_, pitch_;
    bool videoMemory_;
    uint32_t lossesSeen_;
    std::vector<uint8_t> memory_;
    bool busy_ = false;  // locked, or a device context is out
    bool isBack_ = false;
    HostDeviceContext context_{};
    Palette* palette_ = nullptr;
    std::unique_ptr<Surface> back_;
};

HRESULT Palette::SetEntries(DWORD, DWORD first, DWORD count, const PALETTEENTRY* entries) {
    if (first > 256 || count > 256 - first || !entries) return DDERR_INVALIDPARAMS;
    std::copy_n(entries, count, entries_ + first);
    if (primarySurface && primarySurface->Uses(this)) primarySurface->ShowIfPrimary();
    return DD_OK;
}

void Surface::Fill(const RECT& area, DWORD colour) {
    for (LONG y = area.top; y < area.bottom; ++y) {
        if (bits_ == 8) {
            std::memset(Pixel(area.left, y), static_cast<uint8_t>(colour), static_cast<size_t>(area.right - area.left));
            continue;
        }
        const auto value = static_cast<uint16_t>(colour);
        for (LONG x = area.left; x < area.right; ++x)
            std::memcpy(Pixel(x, y), &value, sizeof value);
    }
}

void Surface::Copy(const RECT& to, Surface& source, const RECT& from) {
    const size_t bytes = static_cast<size_t>(to.right - to.left) * (bits_ / 8);
    for (LONG y = 0; y < to.bottom - to.top; ++y)
        std::memmove(Pixel(to.left, to.top + y), source.Pixel(from.left, from.top + y), bytes);
}

// The nearest source pixel to the left of and above each pixel.
void Surface::Stretch(const RECT& to, Surface& source, const RECT& from) {
    const int64_t width = to.right - to.left;
    const int64_t height = to.bottom - to.top;
    const size_t bytes = bits_ / 8;
    for (LONG y = 0; y < height; ++y) {
        const auto sourceY = static_cast<LONG>(from.top + y * int64_t{from.bottom - from.top} / height);
        for (LONG x = 0; x < width; ++x) {
            const auto sourceX = static_cast<LONG>(from.left + x * int64_t{from.right - from.left} / width);
            std::memcpy(Pixel(to.left + x, to.top + y), source.Pixel(sourceX, sourceY), bytes);
        }
    }
}

HRESULT Surface::Blt(const RECT* destination, IDirectDrawSurface* source, const RECT* sourceRect, DWORD flags,
                     const DDBLTFX* effects) {
    RECT to;
    if (!Whole(destination, to)) return DDERR_INVALIDPARAMS;
    if (const HRESULT result = Ready(); Failed(result)) return result;
    if (flags & DDBLT_COLORFILL) {
        if (!effects || effects->dwSize != sizeof *effects) return DDERR_INVALIDPARAMS;
        Fill(to, effects->dwFillColor);
        ShowIfPrimary();
        return DD_OK;
    }
    auto* other = static_cast<Surface*>(source);
    RECT from;
    if (!other || other->bits_ != bits_ || !other->Whole(sourceRect, from)) return DDERR_INVALIDPARAMS;
    if (const HRESULT result = other->Ready(); Failed(result)) return result;
    const bool sameSize = to.right - to.left == from.right - from.left && to.bottom - to.top == from.bottom - from.top;
    sameSize ? Copy(to, *other, from) : Stretch(to, *other, from);
    ShowIfPrimary();
    return DD_OK;
}

// The two surfaces keep their identity and exchange their memory.
HRESULT Surface::Flip(IDirectDrawSurface* override, DWORD) {
    if (!back_ || (override && override != back_.get())) return DDERR_INVALIDPARAMS;
    if (const HRESULT result = Ready(); Failed(result)) return result;
    if (const HRESULT result = back_->Ready(); Failed(result)) return result;
    memory_.swap(back_->memory_);
    CountFlip();
    ShowIfPrimary();
    return DD_OK;
}

class DirectDraw final : public IDirectDraw {
public:
    DWORD Release() override {
        LeaveScreenMode();
        delete this;
        return 0;
    }

    HRESULT SetCooperativeLevel(HWND window, DWORD) override { return window ? DD_OK : DDERR_INVALIDPARAMS; }

    HRESULT EnumDisplayModes(DWORD, const DDSURFACEDESC*, void* context, DDENUMMODESCALLBACK callback) override {
        for (const ScreenMode& mode : OfferedScreenModes()) {
            DDSURFACEDESC description{};
            description.dwSize = sizeof description;
            description.dwFlags = DDSD_WIDTH | DDSD_HEIGHT;
            description.dwWidth = mode.width;
            description.dwHeight = mode.height;
            description.ddpfPixelFormat.dwRGBBitCount = mode.bits;
            if (callback(&description, context) == DDENUMRET_CANCEL) break;
        }
        return DD_OK;
    }

    HRESULT SetDisplayMode(DWORD width, DWORD height, DWORD bits) override {
        return SetScreenMode({width, height, bits}) ? DD_OK : DDERR_UNSUPPORTEDMODE;
    }

    HRESULT CreateSurface(const DDSURFACEDESC* description, IDirectDrawSurface** surface, void*) override {
        if (!description || description->dwSize != sizeof *description || !ProgramScreenMode())
            return DDERR_INVALIDPARAMS;
        if (description->ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE) return CreatePrimary(*description, surface);
        return CreateOffscreen(*description, surface);
    }

    HRESULT CreatePalette(DWORD flags, const PALETTEENTRY* entries, IDirectDrawPalette** palette, void*) override {
        if (flags != DDPCAPS_8BIT || !entries) return DDERR_INVALIDPARAMS;
        *palette = new Palette(entries);
        return DD_OK;
    }

    HRESULT FlipToGDISurface() override { return DD_OK; }

private:
    static HRESULT CreatePrimary(const DDSURFACEDESC& description, IDirectDrawSurface** surface) {
        if (primarySurface || description.dwBackBufferCount != 1) return DDERR_INVALIDPARAMS;
        const ScreenMode mode = *ProgramScreenMode();
        auto* front = new Surface(mode.width, mode.height, mode.bits, true);
        front->MakePrimary(std::make_unique<Surface>(mode.width, mode.height, mode.bits, true));
        *surface = front;
        return DD_OK;
    }

    static HRESULT CreateOffscreen(const DDSURFACEDESC& description, IDirectDrawSurface** surface) {
        const uint32_t width = description.dwWidth;
        const uint32_t height = description.dwHeight;
        if (width == 0 || height == 0 || width > SIDE_MAX || height > SIDE_MAX) return DDERR_INVALIDPARAMS;
        const bool videoMemory = !(description.ddsCaps.dwCaps & DDSCAPS_SYSTEMMEMORY);
        *surface = new Surface(width, height, ProgramScreenMode()->bits, videoMemory);
        return DD_OK;
    }
};

}  // namespace

HRESULT DirectDrawCreate(const void*, IDirectDraw** directDraw, void*) {
    *directDraw = new DirectDraw;
    return DD_OK;
}
