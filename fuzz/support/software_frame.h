// A frame of the software renderer with one texture, for targets that draw.
#pragma once

void SetUpSoftwareFrame();  // once; later calls do nothing
