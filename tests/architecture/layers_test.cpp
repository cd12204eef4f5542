// The picture of docs/architecture.md, held against the #include lines of the tree.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using std::string;

const fs::path ROOT = SOURCE_FOLDER;

// Bottom-up. A file may include its own folder and what stands before it.
const std::vector<string> LAYERS = {"platform", "render/device", "memory",    "math",       "camera", "world",
                                    "lights",   "render",        "character", "world/draw", "player", "app"};

struct SourceLine {
    string file;  // from the root of the tree
    int number;
    string text;
};

struct Include {
    SourceLine line;
    bool quoted;
    string path;
};

std::vector<SourceLine> LinesBelow(const string& folder) {
    std::vector<SourceLine> lines;
    for (const auto& entry : fs::recursive_directory_iterator(ROOT / folder)) {
        const fs::path& path = entry.path();
        if (path.extension() != ".h" && path.extension() != ".cpp") continue;
        std::ifstream file(path);
        int number = 0;
        for (string text; std::getline(file, text);)
            lines.push_back({path.lexically_relative(ROOT).generic_string(), ++number, text});
    }
    return lines;
}

std::vector<Include> IncludesBelow(const string& folder) {
    static const std::regex pattern(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re");
    std::vector<Include> includes;
    for (const SourceLine& line : LinesBelow(folder)) {
        std::smatch match;
        if (std::regex_search(line.text, match, pattern)) includes.push_back({line, match[1] == "\"", match[2]});
    }
    EXPECT_FALSE(includes.empty()) << folder;
    return includes;
}

void ExpectNone(const std::vector<Include>& includes, const string& reason,
                const std::function<bool(const Include&)>& wrong) {
    for (const Include& include : includes)
        if (wrong(include))
            ADD_FAILURE() << include.line.file << ":" << include.line.number << ": " << include.line.text << "\n  "
                          << reason;
}

bool IsTables(const string& path) {
    return path.find("_tables.") != string::npos;
}

bool AllowedEverywhere(const string& path) {
    return path.starts_with("host/") || path.starts_with("records/") || IsTables(path);
}

// Numbers and rows, without code or layouts of files.
bool IsFactOfTheGame(const string& path) {
    return path == "records/levels.h" || (path.starts_with("records/") && path.ends_with("_facts.h"));
}

// The place in LAYERS of the longest folder that `path` (from src/) lies in; -1: none of them.
int LayerOf(const string& path) {
    int layer = -1;
    size_t longest = 0;
    for (size_t i = 0; i < LAYERS.size(); i++) {
        if (!path.starts_with(LAYERS[i] + "/") || LAYERS[i].size() < longest) continue;
        layer = static_cast<int>(i);
        longest = LAYERS[i].size();
    }
    return layer;
}

bool Exists(const std::vector<string>& roots, const string& path) {
    return std::any_of(roots.begin(), roots.end(), [&](const string& root) { return fs::exists(ROOT / root / path); });
}

bool NamesDeviceLibrary(const Include& include) {
    return include.path.starts_with("SDL") || include.path.starts_with("GL/") || include.path.starts_with("EGL/");
}

}  // namespace

TEST(Layers, GameFoldersUseOnlyWhatStandsBelowThem) {
    ExpectNone(IncludesBelow("src"), "a folder above this file's own", [](const Include& include) {
        const string file = include.line.file.substr(4);
        if (!include.quoted || AllowedEverywhere(include.path) || file == "main.cpp") return false;
        return LayerOf(include.path) < 0 || LayerOf(include.path) > LayerOf(file);
    });
}

TEST(Layers, TablesAndRecordsAreDataOnly) {
    ExpectNone(IncludesBelow("src"), "tables and records include only tables, records and the host's interfaces",
               [](const Include& include) {
                   const string file = include.line.file.substr(4);
                   const bool data = IsTables(file) || file.starts_with("records/");
                   return data && include.quoted && !AllowedEverywhere(include.path);
               });
}

TEST(Layers, GameSeesOfItsMachineOnlyTheInterfaces) {
    ExpectNone(IncludesBelow("src"), "not in src/ or host/include/", [](const Include& include) {
        return NamesDeviceLibrary(include) || (include.quoted && !Exists({"src", "host/include"}, include.path));
    });
}

TEST(Layers, MachineKnowsNothingOfTheGame) {
    ExpectNone(IncludesBelow("host"), "not in host/", [](const Include& include) {
        return include.quoted && !Exists({"host", "host/include"}, include.path);
    });
}

TEST(Layers, OnlyOneBackEndAndTheBoardKnowTheDeviceLibraries) {
    ExpectNone(IncludesBelow("host"), "windows, devices and graphics belong to host/backends/sdl and host/boards/gpu",
               [](const Include& include) {
                   const string& file = include.line.file;
                   return NamesDeviceLibrary(include) && !file.starts_with("host/backends/sdl/") &&
                          !file.starts_with("host/boards/gpu");
               });
}

TEST(Layers, FactsOfTheGameIncludeNothingOfTheGame) {
    ExpectNone(IncludesBelow("src"), "facts stand alone: tools take them, too", [](const Include& include) {
        return IsFactOfTheGame(include.line.file.substr(4)) && include.quoted && !IsFactOfTheGame(include.path);
    });
}

TEST(Layers, ToolsHaveTheirOwnReadersAndWriters) {
    ExpectNone(IncludesBelow("tools"), "not in tools/, and not the facts about the game", [](const Include& include) {
        const std::string& file = include.line.file;
        const bool showsTheGame = file.starts_with("tools/clip_sheet/") || file.starts_with("tools/motion/");
        return include.quoted && !showsTheGame && !IsFactOfTheGame(include.path) && !Exists({"tools"}, include.path);
    });
}

TEST(Layers, GlobalsAreDeclaredInHeadersAndAnglesGoThroughThePortableTrigonometry) {
    static const std::regex declaration(R"(^\s*extern\s+[^"])");
    static const std::regex call(R"(\b(sin|cos|tan|asin|acos|atan|atan2|sincos)f?\s*\()");
    for (const SourceLine& line : LinesBelow("src")) {
        const auto refuse = [&](const char* remedy) {
            ADD_FAILURE() << line.file << ":" << line.number << ": " << line.text << "\n  " << remedy;
        };
        if (line.file.ends_with(".cpp") && std::regex_search(line.text, declaration))
            refuse("declare it in its own header");
        if (!line.file.starts_with("src/math/trig.") && std::regex_search(line.text, call))
            refuse("the C library's differ between processors: use math/trig.h");
    }
}
