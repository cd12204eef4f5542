// What documents, pictures, the page and the packages say of the levels, compared with the tables of the game and
// tools.
#include "mapc/counts.h"
#include "records/levels.h"
#include "records/light_facts.h"
#include "records/table_facts.h"
#include "records/view_facts.h"
#include "records/walking_facts.h"

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

// The words of a file, each line break and the blanks around it as one blank.
string TextOf(const string& file) {
    std::ifstream stream(SOURCE_FOLDER "/" + file);
    std::ostringstream text;
    text << stream.rdbuf();
    return std::regex_replace(text.str(), std::regex(R"(\s*\n\s*)"), " ");
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

// "1, 2 and 5": the levels whose rows `belongs` accepts.
template <typename Belongs>
string LevelsWhere(Belongs belongs) {
    std::vector<string> levels;
    for (const LevelRow& row : LEVEL_ROWS)
        if (belongs(row)) levels.push_back(to_string(row.number));
    string told;
    for (size_t i = 0; i < levels.size(); ++i)
        told += (i == 0 ? "" : i + 1 == levels.size() ? " and " : ", ") + levels[i];
    return told;
}

string LevelsOfTicks(int ticks) {
    return LevelsWhere([ticks](const LevelRow& row) { return row.ticks == ticks; });
}

void ExpectIn(std::initializer_list<const char*> files, const string& words) {
    for (const char* file : files)
        EXPECT_NE(TextOf(file).find(words), string::npos) << file << " lacks: " << words;
}

TEST(LevelDocs, AuthorsReadWhereEachLevelBegins) {
    std::vector<string> rows;
    for (const LevelRow& row : LEVEL_ROWS) {
        rows.push_back("| " + to_string(row.number) + " | " + row.world + " | " + to_string(row.start[0]) + ", " +
                       to_string(row.start[1]) + ", " + to_string(row.start[2]) + " | " + to_string(row.floor) + " |");
    }
    EXPECT_EQ(FindAll(TextOf("docs/authoring.md"), R"(\| \d+ \| [a-z]+ \| -?\d+, -?\d+, -?\d+ \| -?\d+ \|)"), rows);
}

TEST(LevelDocs, PlayersReadTheKeysAndTheNumberOfLevels) {
    ExpectIn({"README.md"}, "| " + TellKeys() + " | choose a level |");
    ExpectIn({"packaging/tarnwick.6.more"}, TellKeys() + " choose a level");
    std::vector<string> captions;
    for (const LevelRow& row : LEVEL_ROWS)
        captions.push_back(string("\"") + row.key + "\"");
    EXPECT_EQ(FindAll(TextOf("content/pictures/Select01.toml"), R"("F\d+")"), captions);

    const string count = to_string(LEVEL_COUNT);
    ExpectIn({"README.md"}, "1 to " + count + " for the levels");
    ExpectIn({"host/backends/web/page/index.html"}, "<kbd>1</kbd> to <kbd>" + count + "</kbd>");
    ExpectIn({"docs/first_level.md", "docs/authoring.md"}, "`level1` to `level" + count + "`");
    const char* const words[] = {"seven", "eight", "nine", "ten"};
    ASSERT_LT(LEVEL_COUNT - 7, 4);
    ExpectIn({"README.md", "packaging/tarnwick.desktop", "packaging/tarnwick.metainfo.xml", "cmake/Install.cmake",
              "host/backends/web/page/index.html"},
             string(words[LEVEL_COUNT - 7]) + " worlds");
}

// 16384 as "16,384".
string Grouped(double number) {
    string digits = to_string(static_cast<long>(number));
    for (size_t place = digits.size(); place > 3;)
        digits.insert(place -= 3, ",");
    return digits;
}

TEST(LevelDocs, TellTheLimits) {
    for (const string& words :
         {Grouped(NODES_MAX) + " nodes, " + Grouped(LEAVES_MAX) + " leaves, " + Grouped(PLANES_MAX) + " planes, " +
              Grouped(POLYGONS_MAX) + " polygons, " + Grouped(POINTS_MAX) + " points, " + Grouped(CORNERS_MAX) +
              " polygon corners, " + Grouped(POLYGONS_AT_POINT_MAX) + " polygons at one point",
          Grouped(CHARACTER_LIGHT_COUNT) + " that reach the player at one place",
          Grouped(LIGHT_CONTRIBUTION_MAX) + " points that changing lamps reach",
          Grouped(GATHERED_POINTS_MAX) + " points within the radius of a dynamic light",
          Grouped(CORNER_NUMBER_POLYGONS) + " polygons only", "beyond " + Grouped(CONTACTS_MAX) + " the game ends",
          "nothing beyond " + Grouped(GLIDE_FAR_DISTANCE)})
        ExpectIn({"docs/authoring.md"}, words);
    const auto sum = [](const char* count, uint32_t spare) { return count + (" + " + to_string(spare)); };
    ExpectIn({"docs/formats.md"}, "1 <= N <= " + to_string(BSP_NODES_MAX) + ", 1 <= L <= " + to_string(BSP_LEAVES_MAX) +
                                      "; " + sum("P", SPARE_PLANES) + ", " + sum("V", SPARE_POINTS) + " and " +
                                      sum("K", SPARE_POLY_VERTICES) + " at most " + to_string(INDICES_MAX) + ", " +
                                      sum("F", SPARE_POLYGONS) + " at most " + to_string(POLYGON_NUMBERS_MAX));
}

TEST(LevelDocs, TellWhatIsInWhichLevels) {
    for (const LevelRow& row : LEVEL_ROWS)
        EXPECT_TRUE(row.track == LEVEL_ROWS[0].track || row.track == LEVEL_ROWS[1].track) << "the docs tell of two";
    const auto levelsOfTrack = [](int track) {
        return LevelsWhere([=](const LevelRow& row) { return row.track == track; });
    };
    ExpectIn({"docs/headless.md", "docs/music.md"}, "Levels " + levelsOfTrack(LEVEL_ROWS[0].track) + " play ");
    ExpectIn({"content/music/track02.toml"}, "for levels " + levelsOfTrack(2) + ":");
    ExpectIn({"content/music/track03.toml"}, "for levels " + levelsOfTrack(3) + ":");
    ExpectIn({"docs/skies.md"}, "Levels " + LevelsWhere([](const LevelRow& row) { return row.sky == LevelSky::OPEN; }) +
                                    " lie under a sky");
    ExpectIn({"docs/character.md"},
             "in levels " + LevelsWhere([](const LevelRow& row) { return row.skin == LevelSkin::TARNWICK; }));
    ExpectIn({"docs/authoring.md"}, "A second has 62 frames in levels " + LevelsOfTicks(1) + ", 31 in " +
                                        LevelsOfTicks(2) + ", and 15 in " + LevelsOfTicks(4));
    for (const char* file : {"docs/headless.md", "docs/authoring.md"}) {
        for (const string& range : FindAll(TextOf(file), R"(level(`,)?,? 1\.\.\d+)"))
            EXPECT_TRUE(range.ends_with(".." + to_string(LEVEL_COUNT))) << file << ": " << range;
    }
}

}  // namespace
