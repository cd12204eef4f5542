// Pictures besides those of the game frames: between two frames, and of a frame from another camera (host/host.h). They
// are drawn from what the frames looked like, and leave everything that the game computes or draws later as it was.
#pragma once

#include "host/host.h"

// Keeps what the frame looks like, and the frame before it. Called by GameFrame when all but the drawing is done;
// does nothing unless the host wants it.
void KeepView();

bool DrawBetween(float way);
bool DrawFrom(HostCamera& camera, const float (&move)[3]);
bool PointOnScreen(const float (&point)[3], float (&pixel)[2]);
