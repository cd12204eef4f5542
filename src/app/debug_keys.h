// The development keys, and the one that fires.
#pragma once

void DebugKeys();  // once a frame, before Controls is rebuilt: firing goes by the frame before
