// Game controllers, played as keys and as mouse. Any number may be plugged in; each holds its own keys.
#pragma once

#include <SDL.h>

#include <cstdint>

void StartPads();  // without controllers, or without support for them, nothing is ever reported
void StopPads();
void HandlePadEvent(const SDL_Event& event);
void TurnWithPads(uint32_t milliseconds);  // right sticks as mouse motion for the time since the previous call
