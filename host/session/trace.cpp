#include "session/trace.h"

#include <cinttypes>
#include <cstdio>

namespace {

std::string DigestText(uint64_t digest) {
    char text[32];
    std::snprintf(text, sizeof text, "\"%016" PRIx64 "\"", digest);
    return text;
}

}  // namespace

std::string TraceLine(uint32_t frame, const FrameFields& fields, uint64_t digest, uint32_t dropped,
                      const std::optional<uint64_t>& pixels) {
    std::string line = "{\"frame\":" + std::to_string(frame);
    for (size_t field = 0; field < FIELD_COUNT; ++field)
        line += std::string(",\"") + FRAME_FIELDS[field].name + "\":" + FieldText(field, fields[field]);
    line += ",\"digest\":" + DigestText(digest);
    line += ",\"dropped\":" + std::to_string(dropped);
    return line + ",\"pixels\":" + (pixels ? DigestText(*pixels) : "null") + "}";
}
