#include "host/dinput.h"

#include "input/devices.h"
#include "input/session_hooks.h"

const DIDATAFORMAT c_dfDIKeyboard = {KEY_COUNT};
const DIDATAFORMAT c_dfDIMouse = {sizeof(DIMOUSESTATE)};

namespace {

constexpr HRESULT DIERR_INVALIDPARAM = static_cast<HRESULT>(0x80070057);

class Device final : public IDirectInputDeviceA {
public:
    explicit Device(HostDeviceGuid guid) : guid_(guid) {}

    DWORD Release() override {
        Unacquire();
        delete this;
        return 0;
    }

    HRESULT SetDataFormat(const DIDATAFORMAT* format) override {
        if (!format || format->dwDataSize != (IsMouse() ? sizeof(DIMOUSESTATE) : size_t{KEY_COUNT}))
            return DIERR_INVALIDPARAM;
        dataSize_ = format->dwDataSize;
        return DI_OK;
    }

    HRESULT SetCooperativeLevel(HWND window, DWORD flags) override {
        if (!window) return DIERR_INVALIDPARAM;
        foreground_ = (flags & DISCL_FOREGROUND) != 0;
        exclusive_ = (flags & DISCL_EXCLUSIVE) != 0;
        return DI_OK;
    }

    HRESULT Acquire() override {
        if (dataSize_ == 0) return DIERR_INVALIDPARAM;
        if (foreground_ && !HasFocus()) return DIERR_OTHERAPPHASPRIO;
        if (acquired_ && !LostFocus()) return DI_ALREADY_ACQUIRED;
        acquired_ = true;
        lossesAtAcquire_ = FocusLosses();
        if (IsMouse() && exclusive_) SetMouseAcquired(true);
        return DI_OK;
    }

    HRESULT Unacquire() override {
        if (acquired_ && IsMouse() && exclusive_) SetMouseAcquired(false);
        acquired_ = false;
        return DI_OK;
    }

    HRESULT GetDeviceState(DWORD size, void* state) override {
        if (!IsMouse()) Session.atKeyboardPoll();
        if (Session.replaying())
            return IsMouse() ? Session.replayMouse(*static_cast<DIMOUSESTATE*>(state))
                             : Session.replayKeys(static_cast<uint8_t*>(state));
        const HRESULT result = ReadState(size, state);
        if (IsMouse()) {
            Session.tookMouse(result, *static_cast<DIMOUSESTATE*>(state));
        } else {
            if (Failed(result)) DropPulses();
            Session.tookKeys(result, static_cast<const uint8_t*>(state));
        }
        return result;
    }

private:
    HRESULT ReadState(DWORD size, void* state) {
        if (!acquired_) return DIERR_NOTACQUIRED;
        if (LostFocus()) {
            acquired_ = false;
            return DIERR_INPUTLOST;
        }
        if (size != dataSize_ || !state) return DIERR_INVALIDPARAM;
        if (IsMouse()) {
            TakeMouse(*static_cast<DIMOUSESTATE*>(state));
        } else {
            auto* keys = static_cast<uint8_t*>(state);
            TakeKeys(keys);
            Session.atKeyboardRead(keys);
        }
        return DI_OK;
    }

    bool IsMouse() const { return guid_ == HostDeviceGuid::Mouse; }
    bool LostFocus() const { return foreground_ && lossesAtAcquire_ != FocusLosses(); }

    HostDeviceGuid guid_;
    DWORD dataSize_ = 0;
    bool foreground_ = false;
    bool exclusive_ = false;
    bool acquired_ = false;
    uint32_t lossesAtAcquire_ = 0;
};

class Input final : public IDirectInputA {
public:
    DWORD Release() override {
        delete this;
        return 0;
    }

    HRESULT CreateDevice(HostDeviceGuid guid, IDirectInputDeviceA** device, void*) override {
        *device = new Device(guid);
        return DI_OK;
    }
};

}  // namespace

HRESULT DirectInputCreateA(HINSTANCE, DWORD version, IDirectInputA** input, void*) {
    if (version != DIRECTINPUT_VERSION) return DIERR_GENERIC;
    *input = new Input;
    return DI_OK;
}
