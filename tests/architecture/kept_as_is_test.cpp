// docs/kept_as_is.md and the comments at the places that it names.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using Counts = std::map<std::string, int>;  // by file, from the root of the tree

std::string Read(const fs::path& path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

template <typename Add>
void ForEachMatch(const std::string& text, const std::regex& pattern, Add add) {
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        add((*match)[1].str());
}

}  // namespace

TEST(KeptAsIs, EachLineNamesFilesThatSaySo) {
    const fs::path root = SOURCE_FOLDER;
    Counts lines, comments;
    ForEachMatch(Read(root / "docs/kept_as_is.md"), std::regex("`((src|host)/[a-z0-9_/]+\\.(cpp|h))`"),
                 [&](const std::string& file) { lines[file]++; });
    for (const char* tree : {"src", "host"})
        for (const auto& entry : fs::recursive_directory_iterator(root / tree))
            if (entry.is_regular_file())
                ForEachMatch(Read(entry.path()), std::regex("([Kk]ept as it is:)"), [&](const std::string&) {
                    comments[entry.path().lexically_relative(root).generic_string()]++;
                });
    EXPECT_FALSE(lines.empty());
    for (const auto& [file, count] : lines)
        EXPECT_GE(comments[file], count) << file << " has fewer comments \"Kept as it is: ...\" than lines name it";
    for (const auto& [file, count] : comments)
        EXPECT_TRUE(lines.contains(file)) << file << " has " << count << " comments, and no line names it";
}
