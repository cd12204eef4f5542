#include "session/find_data.h"

#include <system_error>

namespace fs = std::filesystem;

fs::path ProgramFolder() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::vector<fs::path> DataFolders(const fs::path& programFolder) {
    std::vector<fs::path> folders = {programFolder / "data", programFolder.parent_path() / "share/tarnwick"};
    const fs::path ofBuild = TARNWICK_DATA;
    if (!ofBuild.empty()) folders.push_back(ofBuild);
    return folders;
}

fs::path FindDataFolder(const std::vector<fs::path>& folders) {
    std::error_code error;
    for (const fs::path& folder : folders)
        if (fs::is_directory(folder / "game", error)) return folder;
    return {};
}
