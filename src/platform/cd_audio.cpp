#include "platform/cd_audio.h"

#include "host/mci.h"

uint32_t CdTrack;

namespace {

MCIDEVICEID device = 0;  // 0 while the drive is closed
bool isOpen = false;

uintptr_t Callback(HWND window) {
    return reinterpret_cast<uintptr_t>(window);
}

}  // namespace

bool OpenCdAudio() {
    if (isOpen) return true;
    MCI_OPEN_PARMSA open{};
    open.lpstrDeviceType = "cdaudio";
    if (mciSendCommandA(0, MCI_OPEN, MCI_OPEN_TYPE, &open) != 0) return false;
    device = open.wDeviceID;
    isOpen = true;
    MCI_SET_PARMS format{};
    format.dwTimeFormat = MCI_FORMAT_TMSF;
    if (mciSendCommandA(device, MCI_SET, MCI_SET_TIME_FORMAT, &format) != 0) CloseCdAudio();
    return isOpen;
}

void PlayCdTrack(HWND window) {
    MCI_PLAY_PARMS play{};
    play.dwCallback = Callback(window);
    play.dwFrom = CdTrack & 0xFF;
    play.dwTo = (CdTrack + 1) & 0xFF;
    if (mciSendCommandA(device, MCI_PLAY, MCI_NOTIFY | MCI_FROM | MCI_TO, &play) != 0) CloseCdAudio();
}

void StopCd(HWND window) {
    if (!isOpen) return;
    MCI_GENERIC_PARMS stop{};
    stop.dwCallback = Callback(window);
    if (mciSendCommandA(device, MCI_STOP, MCI_WAIT, &stop) != 0) CloseCdAudio();
}

void CloseCdAudio() {
    if (!isOpen) return;
    mciSendCommandA(device, MCI_CLOSE, 0, nullptr);
    device = 0;
    isOpen = false;
}
