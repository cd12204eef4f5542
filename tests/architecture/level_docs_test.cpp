// What documents and pictures say of the levels, held against the table of the game.
#include "records/levels.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

using std::string;
using std::to_string;

string TextOf(const string& file) {
    std::ifstream stream(SOURCE_FOLDER "/" + file);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::vector<string> FindAll(const string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::vector<string> found;
    for (std::sregex_iterator it(text.begin(), text.end(), expression), end; it != end; ++it)
        found.push_back(it->str());
    return found;
}

// "F1 to F7, F12": a run of three or more is told by its ends.
string TellKeys() {
    const auto follows = [](int i) {
        return string(LEVEL_ROWS[i].key) == "F" + to_string(std::stoi(LEVEL_ROWS[i - 1].key + 1) + 1);
    };
    string told;
    for (int first = 0, last = 0; first < LEVEL_COUNT; first = last + 1) {
        for (last = first; last + 1 < LEVEL_COUNT && follows(last + 1); ++last) {
        }
        if (last == first + 1) last = first;
        told += string(told.empty() ? "" : ", ") + LEVEL_ROWS[first].key;
        if (last > first) told += string(" to ") + LEVEL_ROWS[last].key;
    }
    return told;
}

string LevelsOfTrack(int track) {
    std::vector<string> levels;
    for (const LevelRow& row : LEVEL_ROWS)
        if (row.track == track) levels.push_back(to_string(row.number));
    string told = levels.front();
    for (size_t i = 1; i < levels.size(); ++i)
        told += (i + 1 == levels.size() ? " and " : ", ") + levels[i];
    return told;
}

TEST(LevelDocs, AuthorsReadWhereEachLevelBegins) {
    std::vector<string> rows;
    for (const LevelRow& row : LEVEL_ROWS) {
        rows.push_back("| " + to_string(row.number) + " | " + row.world + " | " + to_string(row.start[0]) + ", " +
                       to_string(row.start[1]) + ", " + to_string(row.start[2]) + " | " + to_string(row.floor) + " |");
    }
    EXPECT_EQ(FindAll(TextOf("docs/authoring.md"), R"(\| \d+ \| [a-z]+ \| -?\d+, -?\d+, -?\d+ \| -?\d+ \|)"), rows);
}

TEST(LevelDocs, PlayersReadTheKeys) {
    EXPECT_NE(TextOf("README.md").find("| " + TellKeys() + " | choose a level |"), string::npos) << TellKeys();
    std::vector<string> captions;
    for (const LevelRow& row : LEVEL_ROWS)
        captions.push_back(string("\"") + row.key + "\"");
    EXPECT_EQ(FindAll(TextOf("content/pictures/Select01.toml"), R"("F\d+")"), captions);
}

TEST(LevelDocs, TellTheTrackAndTheNumberOfLevels) {
    const string levels = "Levels " + LevelsOfTrack(LEVEL_ROWS[0].track) + " play ";
    for (const LevelRow& row : LEVEL_ROWS)
        EXPECT_TRUE(row.track == LEVEL_ROWS[0].track || row.track == LEVEL_ROWS[1].track) << "the docs tell of two";
    for (const char* file : {"docs/headless.md", "docs/music.md"})
        EXPECT_NE(TextOf(file).find(levels), string::npos) << file << ": " << levels;
    for (const char* file : {"docs/headless.md", "docs/authoring.md"}) {
        for (const string& range : FindAll(TextOf(file), R"(level(`,)?,? 1\.\.\d+)"))
            EXPECT_TRUE(range.ends_with(".." + to_string(LEVEL_COUNT))) << file << ": " << range;
    }
}

}  // namespace
