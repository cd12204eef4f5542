#include "datacheck/compiled_level.h"

#include "datacheck/rules.h"

#include <fmt/format.h>

void CheckCompiled(const CompiledLevel& compiled, const CompileFiles& files, const MaterialList& list) {
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
    if (!report.HasProblems()) return;
    std::vector<std::string> problems = report.Lines();
    std::erase_if(problems, [](const std::string& line) { return line.starts_with("note: "); });
    throw ContentError(fmt::format("{}", fmt::join(problems, "\n")));
}
