#include "session/frame_fields.h"

#include "machine/bits.h"
#include "machine/digest.h"

#include <cmath>
#include <cstdio>
#include <span>

namespace {

FieldWords Bits(std::span<const float> values) {
    FieldWords words;
    for (const float value : values)
        words.push_back(BitCast<uint32_t>(value));
    return words;
}

FieldWords Bits(float value) {
    return {BitCast<uint32_t>(value)};
}

FieldWords Bits(int32_t value) {
    return {static_cast<uint32_t>(value)};
}

std::string NumberText(FieldKind kind, uint32_t word) {
    if (kind == FieldKind::Unsigned) return std::to_string(word);
    if (kind == FieldKind::Signed) return std::to_string(static_cast<int32_t>(word));
    const auto value = BitCast<float>(word);
    char text[32] = "null";
    if (std::isfinite(value)) std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

}  // namespace

FrameFields TakeFields(const HostFrameReport& report) {
    return {FieldWords{report.ticks}, Bits(report.level),   Bits(report.state),        Bits(report.position),
            Bits(report.velocity),    Bits(report.heading), Bits(report.contact),      Bits(report.slope),
            FieldWords{report.time0}, Bits(report.camera),  Bits(report.cameraAngles), FieldWords{report.polygons},
            Bits(report.lights),      Bits(report.shots),   FieldWords{report.random}};
}

uint64_t DigestFrame(uint32_t frame, const FrameFields& fields, const HostFrameReport& report) {
    Digest digest;
    digest.Add(&frame, sizeof frame);
    for (const FieldWords& words : fields)
        for (const uint32_t word : words)
            digest.Add(&word, sizeof word);
    for (const HostStateSpan& state : report.extra)
        digest.Add(state.data, state.bytes);
    return digest.Value();
}

std::string FieldText(size_t field, const FieldWords& words) {
    const FieldInfo& info = FRAME_FIELDS[field];
    std::string text;
    for (const uint32_t word : words)
        text.append(text.empty() ? "" : ",").append(NumberText(info.kind, word));
    return info.count == 1 ? text : "[" + text + "]";
}
