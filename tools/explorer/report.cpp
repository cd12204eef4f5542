#include "explorer/report.h"

#include "formats/files.h"

#include <fmt/format.h>

#include <array>

namespace {

constexpr uint32_t FRAMES_AFTERWARDS = 200;

struct NamedKey {
    uint16_t control;
    const char* name;
};
constexpr std::array<NamedKey, 6> KEYS = {{{CTL_UP, "UP"},
                                           {CTL_DOWN, "DOWN"},
                                           {CTL_LEFT, "LEFT"},
                                           {CTL_RIGHT, "RIGHT"},
                                           {CTL_SPACE, "SPACE"},
                                           {CTL_SHIFT, "LSHIFT"}}};

std::string FaultText(const Fault& fault, const std::optional<MapFrame>& map) {
    return fmt::format("{} at {}, to {}, {} times, first after {} frames", FAULT_NAMES[static_cast<int>(fault.kind)],
                       PlaceText(fault.place, map), PlaceText(fault.outcome, std::nullopt), fault.count, fault.frames);
}

}  // namespace

std::string ScriptOf(const KeyPlay& play, const std::string& comment) {
    std::string script = "# " + comment + "\n";
    uint32_t frame = 1;
    uint16_t down = 0;
    for (const HeldKeys& keys : play) {
        for (const auto& [control, name] : KEYS) {
            if ((keys.controls & control) == (down & control)) continue;
            script += fmt::format("{} {} {}\n", frame, keys.controls & control ? "down" : "up", name);
        }
        down = keys.controls;
        frame += keys.frames;
    }
    return script + fmt::format("{} quit\n", frame + FRAMES_AFTERWARDS);
}

std::string PlaceText(const Vec3& place, const std::optional<MapFrame>& map) {
    std::string text = fmt::format("({:.0f} {:.0f} {:.0f})", place.x, place.y, place.z);
    if (!map) return text;
    const auto [east, north, up] = map->ToMap({place.x, place.y, place.z});
    return text + fmt::format(", map ({:.0f} {:.0f} {:.0f})", east, north, up);
}

std::string ReportOf(const SearchReport& report, const std::optional<MapFrame>& map,
                     const std::filesystem::path& folder, const std::string& level) {
    std::string text;
    std::array<int, std::size(FAULT_NAMES)> counts{};
    for (const Fault& fault : report.faults) {
        const auto kind = static_cast<size_t>(fault.kind);
        const std::filesystem::path file =
            folder / fmt::format("{}_{}_{}.txt", level, FAULT_NAMES[kind], ++counts[kind]);
        const std::string what = FaultText(fault, map);
        const std::string script = ScriptOf(fault.play, level + ": " + what);
        WriteWholeFile(file, {script.begin(), script.end()});
        text += fmt::format("{}: {}\n", what, file.string());
    }
    for (size_t kind = 0; kind < counts.size(); ++kind)
        text += fmt::format("{}{} {}s", kind > 0 ? ", " : "", counts[kind], FAULT_NAMES[kind]);
    return text + fmt::format("; {} places reached in {} frames, {} contacts at most, lowest {}, highest {}\n",
                              report.cells, report.frames, report.contacts, PlaceText(report.lowest, map),
                              PlaceText(report.highest, map));
}
