#include "formats/light_files.h"

#include "formats/binary.h"
#include "formats/error.h"
#include "formats/files.h"
#include "records/light_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace {

constexpr const char* REBUILD = "build it again with mapc";
constexpr size_t SLOT_SIZE = 96;
constexpr size_t CONTRIBUTION_SIZE = 12;  // index and weight, in both lists
constexpr size_t SETTINGS_SIZE = 28;

void PutColour(ByteWriter& out, const std::array<int16_t, 3>& colour) {
    for (const int16_t channel : colour)
        out.BigU16(static_cast<uint16_t>(channel));
}

int16_t GetBig16(ByteReader& in) {
    return static_cast<int16_t>(in.BigU16());
}

std::array<int16_t, 3> GetColour(ByteReader& in) {
    std::array<int16_t, 3> colour;
    for (int16_t& channel : colour)
        channel = GetBig16(in);
    return colour;
}

void GetSettings(ByteReader& in, LightMapFile& lights) {
    lights.lightLevel = GetBig16(in);
    lights.contrast = GetBig16(in);
    lights.fadeDistance = static_cast<int32_t>(in.BigU32());
    lights.farDistance = static_cast<int32_t>(in.BigU32());
    lights.lightMode = GetBig16(in);
    lights.plainBrightening = in.BigU16();
    lights.brightColour = GetColour(in);
    lights.darkColour = GetColour(in);
}

void PutSlot(ByteWriter& out, const LightSlotRecord& slot) {
    for (const int32_t field :
         {slot.type, slot.phase, slot.pointCount, slot.cornerCount, slot.firstPoint, slot.firstCorner, slot.timer}) {
        out.I32(field);
    }
    for (const float coordinate : slot.position)
        out.F32(coordinate);
    out.F32(slot.radius);
    out.F64(slot.radiusSquared);
    for (const float field : {slot.intensity, slot.highIntensity, slot.lowIntensity})
        out.F32(field);
    out.I32(slot.highTime);
    out.I32(slot.lowTime);
    out.F32(slot.stepDown);
    out.F32(slot.stepUp);
    out.Zeros(16);
}

LightSlotRecord GetSlot(ByteReader& in) {
    LightSlotRecord slot;
    for (int32_t* field : {&slot.type, &slot.phase, &slot.pointCount, &slot.cornerCount, &slot.firstPoint,
                           &slot.firstCorner, &slot.timer}) {
        *field = in.I32();
    }
    for (float& coordinate : slot.position)
        coordinate = in.F32();
    slot.radius = in.F32();
    slot.radiusSquared = in.F64();
    for (float* field : {&slot.intensity, &slot.highIntensity, &slot.lowIntensity})
        *field = in.F32();
    slot.highTime = in.I32();
    slot.lowTime = in.I32();
    slot.stepDown = in.F32();
    slot.stepUp = in.F32();
    in.Take(16);
    return slot;
}

void PutContributions(ByteWriter& out, std::vector<LightContribution> list, size_t count) {
    list.resize(count);
    for (const LightContribution& entry : list)
        out.U16(entry.index);
    for (const LightContribution& entry : list)
        out.F32(entry.weight);
}

std::vector<LightContribution> GetContributions(ByteReader& in, size_t count) {
    std::vector<LightContribution> list(count);
    for (LightContribution& entry : list)
        entry.index = in.U16();
    for (LightContribution& entry : list)
        entry.weight = in.F32();
    return list;
}

void CheckCounts(const std::string& file, size_t slots, size_t contributions) {
    if (slots > LIGHT_SLOT_COUNT || contributions > LIGHT_CONTRIBUTION_MAX) {
        Refuse(file, 0,
               fmt::format("has {} slots of {} and {} contributions of {}", slots, LIGHT_SLOT_COUNT, contributions,
                           LIGHT_CONTRIBUTION_MAX),
               "use fewer lights, or smaller ones");
    }
}

void CheckRange(const ByteReader& in, size_t slot, int32_t first, int32_t count, size_t total) {
    const bool inside =
        first >= 0 && count >= 0 && static_cast<uint64_t>(first) + static_cast<uint64_t>(count) <= total;
    if (!inside) {
        Refuse(in.File(), 0, fmt::format("slot {} uses entries {} + {} of {}", slot, first, count, total), REBUILD);
    }
}

}  // namespace

std::vector<uint8_t> EncodeLightMap(const LightMapFile& lights) {
    ByteWriter out;
    out.Zeros(12);
    out.BigU32(static_cast<uint32_t>(lights.pointLight.size()));
    out.BigU32(static_cast<uint32_t>(lights.cornerLight.size()));
    out.Append(lights.pointLight.data(), lights.pointLight.size());
    for (const auto& corners : lights.cornerLight)
        out.Append(corners.data(), corners.size());
    out.BigU16(static_cast<uint16_t>(lights.lightLevel));
    out.BigU16(static_cast<uint16_t>(lights.contrast));
    out.BigU32(static_cast<uint32_t>(lights.fadeDistance));
    out.BigU32(static_cast<uint32_t>(lights.farDistance));
    out.BigU16(static_cast<uint16_t>(lights.lightMode));
    out.BigU16(lights.plainBrightening);
    PutColour(out, lights.brightColour);
    PutColour(out, lights.darkColour);
    return std::move(out.bytes);
}

LightMapFile DecodeLightMap(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    in.Take(12);
    const uint32_t points = in.BigU32();
    const uint32_t polygons = in.BigU32();
    if (polygons > CORNER_LIGHT_POLYGONS) {
        Refuse(fileName, 0, fmt::format("lights {} polygons, {} at most", polygons, CORNER_LIGHT_POLYGONS), REBUILD);
    }
    if (const uint64_t needed = uint64_t{points} + uint64_t{polygons} * 8 + SETTINGS_SIZE; needed != in.Left()) {
        Refuse(fileName, 0, fmt::format("holds {} bytes after its counts instead of {}", in.Left(), needed), REBUILD);
    }
    LightMapFile lights;
    lights.pointLight.resize(points);
    for (int8_t& light : lights.pointLight)
        light = static_cast<int8_t>(in.U8());
    lights.cornerLight.resize(polygons);
    for (auto& corners : lights.cornerLight) {
        for (int8_t& light : corners)
            light = static_cast<int8_t>(in.U8());
    }
    GetSettings(in, lights);
    return lights;
}

LightMapFile ReadLightMapFile(const std::filesystem::path& path) {
    return DecodeLightMap(ReadWholeFile(path), path.string());
}

std::vector<uint8_t> EncodeLightSlots(const LightSlotFile& lights) {
    const size_t contributions = std::max(lights.points.size(), lights.corners.size());
    CheckCounts("lights.alt", lights.slots.size(), contributions);
    ByteWriter out;
    out.BigU16(static_cast<uint32_t>(lights.slots.size()));
    out.BigU16(static_cast<uint32_t>(contributions));
    out.BigU16(0);
    for (const LightSlotRecord& slot : lights.slots)
        PutSlot(out, slot);
    PutContributions(out, lights.points, contributions);
    PutContributions(out, lights.corners, contributions);
    return std::move(out.bytes);
}

LightSlotFile DecodeLightSlots(std::vector<uint8_t> content, const std::string& fileName) {
    ByteReader in(std::move(content), fileName);
    const size_t slots = in.BigU16();
    const size_t contributions = in.BigU16();
    in.BigU16();
    CheckCounts(fileName, slots, contributions);
    if (const size_t needed = slots * SLOT_SIZE + contributions * CONTRIBUTION_SIZE; needed != in.Left()) {
        Refuse(fileName, 0, fmt::format("holds {} bytes after its counts instead of {}", in.Left(), needed), REBUILD);
    }
    LightSlotFile lights;
    for (size_t i = 0; i < slots; ++i)
        lights.slots.push_back(GetSlot(in));
    lights.points = GetContributions(in, contributions);
    lights.corners = GetContributions(in, contributions);
    for (size_t i = 0; i < slots; ++i) {
        CheckRange(in, i, lights.slots[i].firstPoint, lights.slots[i].pointCount, contributions);
        CheckRange(in, i, lights.slots[i].firstCorner, lights.slots[i].cornerCount, contributions);
    }
    return lights;
}

LightSlotFile ReadLightSlotFile(const std::filesystem::path& path) {
    return DecodeLightSlots(ReadWholeFile(path), path.string());
}
