#include "walk_in.h"

#include "formats/image.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

fs::path WalkInRecipe() {
    const fs::path home = testing::TempDir();
    for (const char* file : {"walk_in.toml", "walk_in.glb"})
        fs::copy_file(fs::path(SOURCE_FOLDER "/tests/tools/charc") / file, home / file,
                      fs::copy_options::overwrite_existing);
    WritePng(home / "skin.png", Image(300, 200));
    return home / "walk_in.toml";
}
