// The development keys, and the key that fires a shot.
#pragma once

void DebugKeys();  // once a frame, before Controls is rebuilt: firing reads the Controls of the frame before
