#include "interfaces/presentation.h"

#include "host/probe.h"
#include "input/session_hooks.h"

#include <cstring>
#include <utility>
#include <vector>

namespace {

FrontBuffer shown{};
FrontTexture shownTexture{};  // texture 0: `shown` is the picture
bool converted = true;
bool isHeld = false;
std::vector<uint32_t> pixels;
Picture picture{};
bool isDeferred = false;

constexpr uint32_t Rgb(uint32_t red, uint32_t green, uint32_t blue) {
    return red << 16 | green << 8 | blue;
}

void ConvertIndexed() {
    uint32_t colours[256];
    for (int i = 0; i < 256; ++i)
        colours[i] = Rgb(shown.palette[i].peRed, shown.palette[i].peGreen, shown.palette[i].peBlue);
    uint32_t* out = pixels.data();
    for (uint32_t y = 0; y < shown.height; ++y) {
        const uint8_t* row = shown.pixels + size_t{y} * shown.pitch;
        for (uint32_t x = 0; x < shown.width; ++x)
            *out++ = colours[row[x]];
    }
}

// Fields widen to 8 bits by repeating their high bits, so that full intensity stays full.
void ConvertHighColour() {
    uint32_t* out = pixels.data();
    for (uint32_t y = 0; y < shown.height; ++y) {
        const uint8_t* row = shown.pixels + size_t{y} * shown.pitch;
        for (uint32_t x = 0; x < shown.width; ++x) {
            const uint32_t value = row[2 * x] | uint32_t{row[2 * x + 1]} << 8;
            const uint32_t red = value >> 11;
            const uint32_t green = value >> 5 & 0x3F;
            const uint32_t blue = value & 0x1F;
            *out++ = Rgb(red << 3 | red >> 2, green << 2 | green >> 4, blue << 3 | blue >> 2);
        }
    }
}

void CopyTrueColour() {
    for (uint32_t y = 0; y < shown.height; ++y)
        std::memcpy(&pixels[size_t{y} * shown.width], shown.pixels + size_t{y} * shown.pitch, size_t{shown.width} * 4);
}

// Converts the shown picture. This is left until somebody looks, so that a run without a window pays only for the
// pictures it writes.
void Convert() {
    if (converted) return;
    converted = true;
    if (shownTexture.name != 0) shown = shownTexture.read();
    pixels.resize(size_t{shown.width} * shown.height);
    shown.bits == 8 ? ConvertIndexed() : shown.bits == 16 ? ConvertHighColour() : CopyTrueColour();
    picture = {pixels.data(), static_cast<int>(shown.width), static_cast<int>(shown.height)};
}

void Present() {
    if (!CurrentMachine->present || !Session.wantsPicture()) return;
    Convert();
    CurrentMachine->present(picture);
}

void Show() {
    if (shownTexture.name == 0 || !CurrentMachine->presentTexture ||
        !CurrentMachine->presentTexture(shownTexture.name, static_cast<int>(shownTexture.width),
                                        static_cast<int>(shownTexture.height)))
        Present();
}

}  // namespace

void ShowFront(const FrontBuffer& front) {
    if (isHeld) return;
    shown = front;
    shownTexture = {};
    converted = false;
    if (!isDeferred) Show();
}

void ShowFrontTexture(const FrontTexture& front) {
    if (isHeld) return;
    shownTexture = front;
    converted = false;
    if (!isDeferred) Show();
}

bool DeferFront(bool deferred) {
    return std::exchange(isDeferred, deferred);
}

void ShowDeferredFront() {
    Show();
}

void HostShowPicture(const uint8_t* indices, int32_t pitch) {
    FrontBuffer front = shown;
    front.pixels = indices;
    front.pitch = static_cast<uint32_t>(pitch);
    ShowFront(front);
}

void FreezeFront() {
    Convert();
    if (shownTexture.name == 0) return;
    shownTexture = {};
    Present();
}

void HoldFront(bool held) {
    isHeld = held;
}

const Picture* FrontPicture() {
    Convert();
    return picture.pixels ? &picture : nullptr;
}

bool FrontIsReproducible() {
    return shownTexture.name == 0;
}

void ResetPresentation() {
    converted = true;
    isHeld = isDeferred = false;
    picture = {};
    shownTexture = {};
}
