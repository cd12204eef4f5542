// One JSON object a game frame.
#pragma once

#include "core/machine.h"
#include "host/probe.h"

#include <string>

// `frame` and the numbers of the report in its order, floats as %.9g and null when not finite; "digest": over their
// bits and the report's further state; "dropped"; "pixels": over the picture's 32-bit pixels, null without one. No line
// end.
std::string TraceLine(uint32_t frame, const HostFrameReport& report, const Picture* picture);
