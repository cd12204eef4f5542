// Fog of the accelerator, the intensity table and the off-screen software frame.
#pragma once

void SetupFog();
void ReloadFogTable();  // accelerator only: after the development keys changed the distances
