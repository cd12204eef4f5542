#include "platform/cd_audio.h"

uint32_t CdTrack;

bool OpenCdAudio() {
    return false;
}

void PlayCdTrack(HWND) {}

void StopCd(HWND) {}

void CloseCdAudio() {}
