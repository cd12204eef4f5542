// Fog of the accelerator, the intensity table and the off-screen software frame.
#pragma once

// Intensity table and off-screen frame; with the accelerator its fog, too.
// FatalError(1, "No memory for the off-screen frame").
void SetupFog();

// Accelerator only.
void LoadFogTable(float nearDistance);  // fog from there to FadeDistance; none while FarDistance is not positive
void ReloadFogTable();                  // after FogNearDistance, FadeDistance or FarDistance has changed
void SetFogStates();                    // the loaded level's fog colour, fog on
