#include "backends/sdl/sound.h"

#include <SDL.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int RATE = 44100;
constexpr int DEVICE_FRAMES = 4096;  // 93 ms, so that a busy machine does not break the music up
constexpr int CHUNK_FRAMES = 1024;

SDL_AudioDeviceID device = 0;
std::atomic<int> volume = 100;  // per cent

// What the device's thread plays; changed only while it is locked out.
std::shared_ptr<TrackReader> playing;
SDL_AudioStream* converter = nullptr;  // from the track's rate to the device's

void Fill(void*, Uint8* out, int bytes) {
    std::memset(out, 0, static_cast<size_t>(bytes));
    if (!playing || !converter) return;
    std::array<int16_t, 2 * CHUNK_FRAMES> chunk;
    while (SDL_AudioStreamAvailable(converter) < bytes) {
        playing->Read(chunk);
        if (SDL_AudioStreamPut(converter, chunk.data(), static_cast<int>(sizeof chunk)) != 0) return;
    }
    const int got = SDL_AudioStreamGet(converter, out, bytes);
    const int percent = volume;
    if (percent == 100) return;
    auto* samples = reinterpret_cast<int16_t*>(out);
    for (int i = 0; i < got / static_cast<int>(sizeof(int16_t)); ++i)
        samples[i] = static_cast<int16_t>(samples[i] * percent / 100);
}

}  // namespace

bool OpenSound(std::string& problem) {
    SDL_AudioSpec wanted{};
    wanted.freq = RATE;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = 2;
    wanted.samples = DEVICE_FRAMES;
    wanted.callback = Fill;
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) == 0) device = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    if (device == 0) {
        problem = SDL_GetError();
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return false;
    }
    // The device's thread must end before what it plays is destroyed, however the program ends.
    [[maybe_unused]] static const int registered = std::atexit(CloseSound);
    SDL_PauseAudioDevice(device, 0);
    return true;
}

void PlayTrack(std::shared_ptr<TrackReader> track) {
    SDL_AudioStream* stream = nullptr;
    if (track) stream = SDL_NewAudioStream(AUDIO_S16SYS, 2, static_cast<int>(track->Rate()), AUDIO_S16SYS, 2, RATE);
    SDL_LockAudioDevice(device);
    std::swap(playing, track);
    std::swap(converter, stream);
    SDL_UnlockAudioDevice(device);
    if (stream) SDL_FreeAudioStream(stream);
}

void SetSoundVolume(int percent) {
    volume = percent;
}

void PauseSound(bool paused) {
    if (device != 0) SDL_PauseAudioDevice(device, paused ? 1 : 0);
}

void CloseSound() {
    if (device == 0) return;
    PlayTrack(nullptr);
    SDL_CloseAudioDevice(device);
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    device = 0;
}
