#include "interfaces/files.h"

#include "host/files.h"
#include "input/session_hooks.h"
#include "machine/digest.h"
#include "machine/game.h"
#include "machine/machine.h"
#include "machine/output.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace fs = std::filesystem;

namespace {

std::string dataFolder = ".";

bool EqualWithoutCase(std::string_view a, std::string_view b) {
    const auto same = [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

// The entry of `folder` that `name` means: the one of exactly that name, or else the first in alphabetical order that
// differs in case only. Without either, `name` itself.
std::string MatchName(const std::string& folder, const std::string& name) {
    std::error_code error;
    // Kept as it is: the game's paths are in mixed case, and found whatever the case of the file's letters.
    if (fs::symlink_status(fs::path(folder) / name, error).type() != fs::file_type::not_found) return name;
    std::string best;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        if (EqualWithoutCase(found, name) && (best.empty() || found < best)) best = found;
    }
    return best.empty() ? name : best;
}

// Tells the session of a file that is to be read, or is missing: its content is part of what enters the game.
void NoteFile(const char* gamePath, std::FILE* stream) {
    Digest digest;
    digest.Add(gamePath, std::strlen(gamePath));
    uint8_t block[16384];
    while (const size_t bytes = stream ? std::fread(block, 1, sizeof block, stream) : 0)
        digest.Add(block, bytes);
    if (stream) std::rewind(stream);
    Session.openedFile(gamePath, static_cast<uint32_t>(digest.Value()));
}

}  // namespace

void SetDataFolder(const std::string& folder) {
    dataFolder = folder;
}

const char* HostDataFolder() {
    return dataFolder.c_str();
}

std::string HostResolvePath(const char* gamePath) {
    std::string slashed = gamePath;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    std::string path = slashed.starts_with('/') ? "" : dataFolder;
    for (size_t start = 0; start < slashed.size();) {
        const size_t end = std::min(slashed.find('/', start), slashed.size());
        if (end > start) {
            const std::string name = MatchName(path.empty() ? "/" : path, slashed.substr(start, end - start));
            path.append("/").append(name);
        }
        start = end + 1;
    }
    return path;
}

std::FILE* HostOpenFile(const char* gamePath, const char* mode) {
    const std::string path = HostResolvePath(gamePath);
    if (*mode == 'r' && CurrentMachine && CurrentMachine->bringFile) CurrentMachine->bringFile(path.c_str());
    std::error_code error;
    const fs::file_type type = fs::status(path, error).type();
    if (type != fs::file_type::regular && type != fs::file_type::not_found) return nullptr;
    std::FILE* stream = std::fopen(path.c_str(), mode);
    if (*mode == 'r') NoteFile(gamePath, stream);
    return stream;
}

void HostReportFatal(const char* message, const char* gamePath) {
    std::string text = message;
    if (!text.empty() && text.back() == '\n') text.pop_back();
    if (gamePath) text += std::string("\n") + gamePath + " (looked for in " + dataFolder + ")";
    if (const std::string kept = Session.keepFailure(); !kept.empty()) text += "\n" + kept;
    PrintError("%s", text.c_str());
    if (CurrentMachine && CurrentMachine->hasWindow()) CurrentMachine->messageBox(text.c_str(), CurrentGame->title);
}
