// The named numbers of a game frame, as traces and recordings hold them.
#pragma once

#include "host/probe.h"

#include <array>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

enum class FieldKind { Unsigned, Signed, Real };

struct FieldInfo {
    const char* name;
    FieldKind kind;
    uint32_t count;  // how many numbers the field has; 0: a list of any length
    bool isSlow;     // recordings hold it in every 32nd frame only: it would cost more than all others together
};

constexpr FieldInfo FRAME_FIELDS[] = {
    {"ticks", FieldKind::Unsigned, 1, false}, {"level", FieldKind::Signed, 1, false},
    {"state", FieldKind::Signed, 1, false},   {"pos", FieldKind::Real, 3, false},
    {"vel", FieldKind::Real, 3, false},       {"heading", FieldKind::Real, 1, false},
    {"contact", FieldKind::Signed, 1, false}, {"slope", FieldKind::Real, 1, false},
    {"time0", FieldKind::Unsigned, 1, false}, {"camera", FieldKind::Real, 3, false},
    {"angles", FieldKind::Real, 3, false},    {"polys", FieldKind::Unsigned, 1, false},
    {"lights", FieldKind::Real, 0, true},     {"shots", FieldKind::Real, 0, false},
    {"random", FieldKind::Unsigned, 1, true},
};
constexpr size_t FIELD_COUNT = std::size(FRAME_FIELDS);

using FieldWords = std::vector<uint32_t>;  // the bits of the numbers
using FrameFields = std::array<FieldWords, FIELD_COUNT>;

FrameFields TakeFields(const HostFrameReport& report);
// 64 bits over the frame's number, all fields and the report's further state.
uint64_t DigestFrame(uint32_t frame, const FrameFields& fields, const HostFrameReport& report);
// As in JSON: floats as %.9g and null when not finite; several numbers and lists in brackets.
std::string FieldText(size_t field, const FieldWords& words);
