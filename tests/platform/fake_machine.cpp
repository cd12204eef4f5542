#include "fake_machine.h"

#include <algorithm>
#include <cstring>
#include <memory>

FakeMachine Fake;

namespace {

HRESULT Call(const char* name) {
    Fake.calls.emplace_back(name);
    return static_cast<int>(Fake.calls.size()) - 1 == Fake.failingCall ? DDERR_GENERIC : DD_OK;
}

template <class Base>
class Held : public Base {
public:
    Held() { Fake.heldObjects++; }
    virtual ~Held() { Fake.heldObjects--; }
    DWORD Release() override {
        Call("Release");
        delete this;
        return 0;
    }
};

// `made` is written only when the call succeeds.
template <class Object, class Base, class... Arguments>
HRESULT Create(const char* name, Base** made, Arguments... arguments) {
    const HRESULT result = Call(name);
    if (!Failed(result)) *made = new Object(arguments...);
    return result;
}

class Palette : public Held<IDirectDrawPalette> {
public:
    HRESULT SetEntries(DWORD, DWORD first, DWORD count, const PALETTEENTRY* entries) override {
        std::copy(entries, entries + count, Fake.palette + first);
        return Call("SetEntries");
    }
};

uint8_t SurfaceBytes[64];

class Surface : public Held<IDirectDrawSurface> {
public:
    explicit Surface(bool isPrimary) : back(isPrimary ? std::make_unique<Surface>(false) : nullptr) {}

    HRESULT Blt(const RECT* to, IDirectDrawSurface* from, const RECT* area, DWORD, const DDBLTFX*) override {
        Call("Blt");
        if (Fake.surfacesLost) return DDERR_SURFACELOST;
        if (from) {
            Fake.blitFrom = *area;
            Fake.blitTo = *to;
        }
        return DD_OK;
    }
    HRESULT Flip(IDirectDrawSurface*, DWORD) override {
        Call("Flip");
        return Fake.surfacesLost ? DDERR_SURFACELOST : DD_OK;
    }
    HRESULT GetAttachedSurface(const DDSCAPS*, IDirectDrawSurface** attached) override {
        *attached = back.get();
        return Call("GetAttachedSurface");
    }
    HRESULT GetDC(HDC* context) override {
        *context = nullptr;
        Fake.heldObjects++;
        return DD_OK;
    }
    HRESULT ReleaseDC(HDC) override {
        Fake.heldObjects--;
        return DD_OK;
    }
    HRESULT IsLost() override { return Fake.surfacesLost ? DDERR_SURFACELOST : DD_OK; }
    HRESULT Restore() override {
        Fake.surfacesLost = false;
        return Call("Restore");
    }
    HRESULT Lock(const RECT*, DDSURFACEDESC* description, DWORD, HANDLE) override {
        description->lpSurface = SurfaceBytes;
        description->lPitch = 336;
        return Call("Lock");
    }
    HRESULT Unlock(void*) override { return Call("Unlock"); }
    HRESULT SetPalette(IDirectDrawPalette*) override { return Call("SetPalette"); }

private:
    std::unique_ptr<Surface> back;
};

class DirectDraw : public Held<IDirectDraw> {
public:
    HRESULT SetCooperativeLevel(HWND, DWORD) override { return Call("SetCooperativeLevel"); }
    HRESULT EnumDisplayModes(DWORD, const DDSURFACEDESC*, void* context, DDENUMMODESCALLBACK callback) override {
        for (const DDSURFACEDESC& mode : Fake.modes)
            if (callback(&mode, context) == DDENUMRET_CANCEL) break;
        return Call("EnumDisplayModes");
    }
    HRESULT SetDisplayMode(DWORD width, DWORD height, DWORD bits) override {
        Fake.modeWidth = width;
        Fake.modeHeight = height;
        Fake.modeBits = bits;
        return Call("SetDisplayMode");
    }
    HRESULT CreateSurface(const DDSURFACEDESC* description, IDirectDrawSurface** surface, void*) override {
        Fake.surfaces.push_back(*description);
        return Create<Surface>("CreateSurface", surface, (description->dwFlags & DDSD_BACKBUFFERCOUNT) != 0);
    }
    HRESULT CreatePalette(DWORD, const PALETTEENTRY* entries, IDirectDrawPalette** palette, void*) override {
        std::copy(entries, entries + 256, Fake.palette);
        return Create<Palette>("CreatePalette", palette);
    }
    HRESULT FlipToGDISurface() override { return DD_OK; }
};

class Device : public Held<IDirectInputDeviceA> {
public:
    HRESULT SetDataFormat(const DIDATAFORMAT*) override { return Call("SetDataFormat"); }
    HRESULT SetCooperativeLevel(HWND, DWORD level) override {
        return Call(level & DISCL_EXCLUSIVE ? "SetExclusive" : "SetShared");
    }
    HRESULT Acquire() override { return Call("Acquire"); }
    HRESULT Unacquire() override { return Call("Unacquire"); }
    HRESULT GetDeviceState(DWORD size, void* state) override {
        const HRESULT result = Call("GetDeviceState");
        if (Failed(result)) return result;
        if (size == sizeof(Fake.keys))
            std::memcpy(state, Fake.keys, size);
        else
            std::memcpy(state, &Fake.mouse, size);
        return result;
    }
};

class DirectInput : public Held<IDirectInputA> {
public:
    HRESULT CreateDevice(HostDeviceGuid, IDirectInputDeviceA** device, void*) override {
        return Create<Device>("CreateDevice", device);
    }
};

struct OpenFile {
    const std::vector<uint8_t>* bytes;
};

}  // namespace

void AddFakeMode(uint32_t width, uint32_t height, uint32_t bits) {
    DDSURFACEDESC mode = {};
    mode.dwWidth = width;
    mode.dwHeight = height;
    mode.ddpfPixelFormat.dwRGBBitCount = bits;
    Fake.modes.push_back(mode);
}

const DIDATAFORMAT c_dfDIKeyboard = {256};
const DIDATAFORMAT c_dfDIMouse = {16};

HRESULT DirectDrawCreate(const void*, IDirectDraw** directDraw, void*) {
    return Create<DirectDraw>("DirectDrawCreate", directDraw);
}

HRESULT DirectInputCreateA(HINSTANCE, DWORD, IDirectInputA** input, void*) {
    return Create<DirectInput>("DirectInputCreate", input);
}

DWORD GetTickCount() {
    Fake.clockReadings++;
    return Fake.clock += Fake.clockStep;
}

int ShowCursor(BOOL show) {
    return Fake.cursor += show ? 1 : -1;
}

HDC GetDC(HWND) {
    Fake.heldObjects++;
    return nullptr;
}

int ReleaseDC(HWND, HDC) {
    Fake.heldObjects--;
    return 1;
}

UINT GetSystemPaletteEntries(HDC, UINT first, UINT count, PALETTEENTRY* entries) {
    std::copy(Fake.systemPalette + first, Fake.systemPalette + first + count, entries);
    return Failed(Call("GetSystemPaletteEntries")) ? 0 : count;
}

HANDLE CreateFileA(const char* path, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
    const auto found = Fake.files.find(path);
    if (Failed(Call("CreateFile")) || found == Fake.files.end()) return INVALID_HANDLE_VALUE;
    Fake.heldObjects++;
    return new OpenFile{&found->second};
}

DWORD GetFileSize(HANDLE file, DWORD*) {
    const auto size = static_cast<DWORD>(static_cast<OpenFile*>(file)->bytes->size());
    return Failed(Call("GetFileSize")) ? INVALID_FILE_SIZE : size;
}

// A failing read delivers all but the last byte and says nothing, as at the end of a file.
BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, void*) {
    *bytesRead = Failed(Call("ReadFile")) && bytes > 0 ? bytes - 1 : bytes;
    if (*bytesRead > 0) std::memcpy(buffer, static_cast<OpenFile*>(file)->bytes->data(), *bytesRead);
    return TRUE;
}

BOOL CloseHandle(HANDLE file) {
    Fake.heldObjects--;
    delete static_cast<OpenFile*>(file);
    return TRUE;
}

HGLOBAL GlobalAlloc(UINT, uintptr_t bytes) {
    if (Failed(Call("GlobalAlloc"))) return nullptr;
    Fake.heldObjects++;
    return new uint8_t[std::max<uintptr_t>(bytes, 16)]();
}

void* GlobalLock(HGLOBAL memory) {
    return memory;
}

BOOL GlobalUnlock(HGLOBAL) {
    return TRUE;
}

HGLOBAL GlobalHandle(const void* memory) {
    return const_cast<void*>(memory);
}

HGLOBAL GlobalFree(HGLOBAL memory) {
    Fake.heldObjects--;
    delete[] static_cast<uint8_t*>(memory);
    return nullptr;
}

int StretchDIBits(HDC, int x, int y, int width, int height, int, int, int widthSource, int heightSource,
                  const void* bits, const BITMAPINFOHEADER*, UINT, DWORD) {
    Call("StretchDIBits");
    const int32_t area[] = {x, y, width, height};
    std::copy(area, area + 4, Fake.drawnArea);
    Fake.drawnSize[0] = widthSource;
    Fake.drawnSize[1] = heightSource;
    Fake.drawnBits = *static_cast<const uint8_t*>(bits);
    return height;
}
