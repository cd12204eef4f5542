// The photo mode, on the key C or from the settings: the game stands still, and its last picture is seen by a camera
// that the player moves. Nothing of it reaches the game.
#pragma once

#include "host/host.h"
#include "host/probe.h"
#include "input/keys.h"

#include <cstdint>
#include <string>

constexpr uint8_t PHOTO_KEY = KeyCode("C");

bool CanTakePhotos();                                 // a level is being played, and the game can draw it
void KeepPhotoCamera(const HostFrameReport& report);  // after each game frame: where its camera stood
void RunPhotoMode();                                  // until the player leaves it, or a close is requested
// The picture from that camera, as a PNG. False: there is none, or it cannot be written; a line has said so.
bool WritePhoto(const HostCamera& camera, const std::string& file);
