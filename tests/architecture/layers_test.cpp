// The picture of docs/architecture.md, held against the #include lines of the tree.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using std::string;

const fs::path ROOT = SOURCE_FOLDER;

// The game, bottom-up. A file may include its own folder and what stands before it.
const std::vector<string> LAYERS = {"platform", "render/device", "memory",    "math",       "camera", "world",
                                    "lights",   "render",        "character", "world/draw", "player", "app"};

// The machine and the tools, bottom-up. A file may include its own folder and those named beside it.
struct Layer {
    string folder;
    std::vector<string> uses;
};
const std::vector<Layer> HOST_LAYERS = {
    {"machine", {}},
    {"input", {"machine"}},
    {"boards", {"machine"}},
    {"boards/cpu", {"boards", "machine"}},
    {"boards/gpu", {"machine", "boards"}},
    {"backends/headless", {"machine"}},
    {"backends/sdl", {"machine", "input", "boards/gpu"}},
    {"backends/web", {"machine", "input", "boards/gpu"}},
    {"interfaces", {"machine", "input", "boards"}},
    {"session", {"machine", "input", "boards", "interfaces"}},
    {"testing", {"machine", "input", "interfaces", "session"}},
    {".",
     {"boards/cpu", "boards/gpu", "backends/headless", "backends/sdl", "backends/web",
      "session"}},  // desktop.cpp, web.cpp
};
const std::vector<Layer> TOOL_LAYERS = {
    {"transforms", {}},
    {"formats", {"transforms"}},
    {"gltf", {"transforms", "formats"}},
    {"mapc", {"transforms", "formats"}},
    {"texc", {"transforms", "formats"}},
    {"mapconvert", {"transforms", "formats", "mapc", "texc"}},
    {"picc", {"formats"}},
    {"musicc", {"formats"}},
    {"skyc", {"transforms", "formats", "gltf"}},
    {"motion", {"formats"}},  // and the game
    {"charc", {"transforms", "formats", "gltf", "motion"}},
    {"datacheck", {"transforms", "formats", "mapc", "charc"}},
    {"mapc/main.cpp", {"formats", "mapc", "datacheck"}},    // asks the rules before a level is written
    {"game_picture", {"formats"}},                          // and the game
    {"gallery", {"formats", "game_picture"}},               // and the game
    {"clip_sheet", {"formats", "motion", "game_picture"}},  // and the game
    {"explorer", {"formats", "motion"}},                    // and the game
};

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
    for (size_t i = 0; i < LAYERS.size(); ++i) {
        if (!path.starts_with(LAYERS[i] + "/") || LAYERS[i].size() < longest) continue;
        layer = static_cast<int>(i);
        longest = LAYERS[i].size();
    }
    return layer;
}

// Of a path from the root of a tree; "." for a file that lies there itself.
string FolderOf(const string& path) {
    const string folder = fs::path(path).parent_path().generic_string();
    return folder.empty() ? "." : folder;
}

std::vector<Layer>::const_iterator FindLayer(const std::vector<Layer>& layers, const string& folder) {
    return std::find_if(layers.begin(), layers.end(), [&](const Layer& layer) { return layer.folder == folder; });
}

bool Contains(const std::vector<string>& names, const string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Every folder of `tree` has its place in `layers`, uses only what stands before it, and includes only what it uses.
void ExpectLayers(const string& tree, const std::vector<Layer>& layers) {
    for (auto layer = layers.begin(); layer != layers.end(); ++layer)
        for (const string& used : layer->uses)
            EXPECT_LT(FindLayer(layers, used), layer) << layer->folder << " uses " << used;
    ExpectNone(IncludesBelow(tree), "not what this file's folder may use", [&](const Include& include) {
        if (!include.quoted || !fs::exists(ROOT / tree / include.path)) return false;
        const string used = FolderOf(include.path);
        const string file = include.line.file.substr(tree.size() + 1);
        const string folder = FolderOf(file);
        if (folder.starts_with("include")) return true;
        auto layer = FindLayer(layers, file);  // a program may join what its folder may not use
        if (layer == layers.end()) layer = FindLayer(layers, folder);
        return layer == layers.end() || (used != folder && !Contains(layer->uses, used));
    });
}

// Who includes whom, by module: a header and the source file of the same name are one.
using Includers = std::map<string, std::set<string>>;

Includers IncludersBelow(const string& tree) {
    const auto name = [](fs::path path) { return path.replace_extension().generic_string(); };
    Includers includers;
    for (const Include& include : IncludesBelow(tree)) {
        for (const string& root : {tree, tree + "/include"}) {
            const fs::path used = fs::path(root) / include.path;
            if (include.quoted && fs::exists(ROOT / used) && name(used) != name(include.line.file))
                includers[name(include.line.file)].insert(name(used));
        }
    }
    return includers;
}

// The first circle that `start` leads to, as "a, b, a"; empty: none. `done`: those that lead to no circle.
string CircleFrom(const string& start, const Includers& includers, std::vector<string>& path, std::set<string>& done) {
    if (const auto first = std::find(path.begin(), path.end(), start); first != path.end()) {
        string circle;
        for (auto step = first; step != path.end(); ++step)
            circle += *step + ", ";
        return circle + start;
    }
    const auto found = includers.find(start);
    if (found == includers.end() || done.contains(start)) return {};
    path.push_back(start);
    for (const string& used : found->second)
        if (const string circle = CircleFrom(used, includers, path, done); !circle.empty()) return circle;
    path.pop_back();
    done.insert(start);
    return {};
}

string FirstCircle(const Includers& includers) {
    std::set<string> done;
    for (const auto& [start, used] : includers) {
        std::vector<string> path;
        if (const string circle = CircleFrom(start, includers, path, done); !circle.empty()) return circle;
    }
    return {};
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

TEST(Layers, FoldersOfTheMachineUseOnlyWhatTheyMay) {
    ExpectLayers("host", HOST_LAYERS);
}

TEST(Layers, FoldersOfTheToolsUseOnlyWhatTheyMay) {
    ExpectLayers("tools", TOOL_LAYERS);
}

TEST(Layers, NothingIncludesItselfRoundACircle) {
    for (const char* tree : {"src", "host", "tools"})
        EXPECT_EQ(FirstCircle(IncludersBelow(tree)), "");
}

// So a header that needs an include it does not have cannot compile; see CMakeLists.txt beside this file.
TEST(Layers, AHeaderIsReadOnceAndFirstInItsSourceFile) {
    for (const char* tree : {"src", "host", "tools"}) {
        std::set<string> firstSeen;
        for (const Include& include : IncludesBelow(tree)) {
            const fs::path file = ROOT / include.line.file;
            const fs::path header = fs::path(file).replace_extension(".h");
            const bool isFirst = firstSeen.insert(include.line.file).second;
            if (isFirst && file.extension() == ".cpp" && fs::exists(header)) {
                EXPECT_EQ(fs::path(include.path).filename(), header.filename()) << include.line.file;
            }
        }
        std::set<string> headers, once;
        for (const SourceLine& line : LinesBelow(tree)) {
            if (line.file.ends_with(".h")) headers.insert(line.file);
            if (line.text == "#pragma once") once.insert(line.file);
        }
        for (const string& header : headers)
            EXPECT_TRUE(once.contains(header)) << header << " lacks #pragma once";
    }
}

// Game and machine see of each other only what these rules and their include paths allow.
TEST(Layers, OnlyOneBackEndAndTheBoardKnowTheDeviceLibraries) {
    for (const char* tree : {"src", "host"})
        ExpectNone(IncludesBelow(tree), "windows, devices and graphics belong to host/backends/sdl and host/boards/gpu",
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
        static const std::regex showsTheGame("tools/(clip_sheet|explorer|gallery|game_picture|motion)/.*");
        return include.quoted && !std::regex_match(file, showsTheGame) && !IsFactOfTheGame(include.path) &&
               !fs::exists(ROOT / "tools" / include.path);
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
