#include "charc/compile.h"
#include "charc/recipe_reader.h"
#include "datacheck/rules.h"
#include "records/levels.h"
#include "walk_in.h"

#include <gtest/gtest.h>

#include <algorithm>

// One skin of any size, no last bone: what the checker then sees of it.
TEST(WalkInFiles, AreWhatTheCheckerTakes) {
    const CompiledCharacter made = CompileCharacter(ReadRecipe(WalkInRecipe()));
    CharacterData data;
    for (const OutputFile& file : made.files) {
        const std::string name = file.path.string();
        if (name == CHARACTER_MESH_FILE) data.mesh = DecodeMesh(file.content, name);
        if (name == CHARACTER_WEIGHTS_FILE) data.weights = DecodeWeights(file.content, name);
        if (name.ends_with(".tuv")) data.skins[name] = DecodeSkin(file.content, name);
        if (name.ends_with(".anm")) data.clips[name] = DecodeAnimation(file.content, name);
    }
    EXPECT_EQ(data.skins.size(), std::size(LEVEL_SKIN_FILES));
    Report report;
    CheckCharacter(data, report);
    EXPECT_EQ(report.Lines(), std::vector<std::string>{});
    for (const SkinTriangle& triangle : data.skins["zero.tuv"])
        for (const auto& corner : triangle.corners)
            EXPECT_LE(std::max(corner[0], corner[1]), 128 * 256) << "texels of the picture as it is scaled, 128 a side";
}
