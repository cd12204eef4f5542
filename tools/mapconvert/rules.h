// How maps from elsewhere are read: the author's table. content/foreign.toml is the usual one, and says what each key
// means.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// Names are compared without regard to case. A '*' at a pattern's end stands for any more letters.
using NamePatterns = std::vector<std::string>;

std::string LowerCase(std::string text);
bool Matches(const NamePatterns& patterns, const std::string& name);

struct ForeignRules {
    double door = 80;                                      // map units
    std::vector<std::filesystem::path> pictures;           // folders and files; relative ones are beside the table
    std::filesystem::path palette;                         // or empty
    std::vector<std::string> starts;                       // classes, the first wanted most
    NamePatterns world, leftOut;                           // classes with brushes; all others become detail
    NamePatterns sky, clip, unseen, leftOutFaces, liquid;  // textures
    NamePatterns lamps, suns;                              // classes
    double lampWeight = 0.4, lampReach = 1;  // light bytes, and map units of radius, for each unit of light
    double sun = 50, skyLight = 25, ambient = 12;
};

ForeignRules ReadForeignRules(const std::filesystem::path& path);  // ContentError with file and line
