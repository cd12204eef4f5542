#include "datacheck/compiled_level.h"

#include "datacheck/rules.h"

#include <fmt/format.h>

std::vector<std::string> CheckCompiled(const CompiledLevel& compiled, const CompileFiles& files,
                                       const MaterialList& list) {
    LevelData level;
    level.number = files.level;
    level.map = files.map.string();
    level.placement = compiled.placement;
    level.world = compiled.world;
    level.light = compiled.light;
    level.slots = compiled.slots;
    for (const Material& material : list.materials) {
        if (material.flags & MATERIAL_CLIP) level.unseenSlots.push_back(material.slot);
    }
    Report report;
    CheckLevel(level, report);
    constexpr std::string_view NOTE = "note: ";
    std::vector<std::string> notes, problems;
    for (const std::string& line : report.Lines()) {
        const bool isNote = line.starts_with(NOTE);
        (isNote ? notes : problems).push_back(isNote ? line.substr(NOTE.size()) : line);
    }
    if (report.HasProblems()) throw ContentError(fmt::format("{}", fmt::join(problems, "\n")));
    return notes;
}
