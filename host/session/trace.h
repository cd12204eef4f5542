// One JSON object a game frame.
#pragma once

#include "session/frame_fields.h"

#include <optional>
#include <string>

// A line without its end: `frame`; the fields in their order; "digest" (DigestFrame's); `dropped`, which is no part of
// the digest, as it tells what a table had no room for and not what the game has done; "pixels", the same kind of
// digest over the picture's 32-bit pixels, null without a picture.
std::string TraceLine(uint32_t frame, const FrameFields& fields, uint64_t digest, uint32_t dropped,
                      const std::optional<uint64_t>& pixels);
