// The sound of the machine with a window: one device, stereo at 44100 Hz, that plays one track over and over. Main
// thread only; the track is decoded on the device's own thread.
#pragma once

#include "machine/track_reader.h"

#include <memory>
#include <string>

bool OpenSound(std::string& problem);
void PlayTrack(std::shared_ptr<TrackReader> track);  // null: silence
void SetSoundVolume(int percent);
void PauseSound(bool paused);  // the track stands still meanwhile
void CloseSound();
