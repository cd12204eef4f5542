#include "session/watch.h"

#include "host/files.h"
#include "input/devices.h"
#include "interfaces/cd_drive.h"
#include "interfaces/files.h"
#include "machine/game.h"
#include "machine/log.h"
#include "machine/overlay.h"
#include "machine/text_file.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

namespace {

constexpr size_t FILE_MAX = 1;  // MiB
constexpr int MARGIN = 4;
constexpr size_t COLUMNS = (OVERLAY_WIDTH - 2 * MARGIN) / OVERLAY_CHARACTER_WIDTH;
constexpr size_t ROWS_MAX = 12;  // the upper half of the picture
constexpr uint32_t FAULT_PANEL = 0xC0501010;

std::string file;
std::string textSeen;
std::string dataNow, placeNow, musicNow;
bool awaitsPicture = false;  // of the level that was loaded last

struct News {
    std::string data;
    int32_t level = 0;
    std::string place, music;
    std::vector<std::string> lines;
};

bool TakeKey(std::istream& text, const char* key, std::string& value) {
    std::string word;
    return text >> word && word == key && std::getline(text >> std::ws, value);
}

// False: it is no such file.
bool ReadNews(const std::string& content, News& news) {
    std::istringstream text(content);
    std::string level;
    if (!TakeKey(text, "data", news.data) || !TakeKey(text, "level", level) || !TakeKey(text, "place", news.place) ||
        !TakeKey(text, "music", news.music))
        return false;
    news.level = level.size() == 1 ? level[0] - '0' : 0;
    for (std::string line; std::getline(text, line);)
        news.lines.push_back(line);
    return news.level >= 1 && static_cast<size_t>(news.level) <= CurrentGame->levelKeys.size();
}

// Each line broken between words where it is too long, its further parts set in.
std::vector<std::string> Wrapped(const std::vector<std::string>& lines) {
    std::vector<std::string> rows;
    for (std::string rest : lines) {
        while (rest.size() > COLUMNS) {
            const size_t space = rest.rfind(' ', COLUMNS);
            const size_t cut = space == std::string::npos || space < COLUMNS / 2 ? COLUMNS : space;
            rows.push_back(rest.substr(0, cut));
            rest = "  " + rest.substr(rest[cut] == ' ' ? cut + 1 : cut);
        }
        rows.push_back(rest);
    }
    if (rows.size() > ROWS_MAX) {
        rows.resize(ROWS_MAX);
        rows.back() = "...";
    }
    return rows;
}

void ShowLines(const std::vector<std::string>& lines) {
    if (lines.empty()) {
        SetLastingOverlay(nullptr);
        return;
    }
    Overlay overlay;
    const std::vector<std::string> rows = Wrapped(lines);
    overlay.Fill(0, 0, OVERLAY_WIDTH, static_cast<int>(rows.size()) * OVERLAY_LINE_HEIGHT + 2 * MARGIN, FAULT_PANEL);
    for (size_t row = 0; row < rows.size(); ++row)
        overlay.Write(MARGIN, MARGIN + static_cast<int>(row) * OVERLAY_LINE_HEIGHT, rows[row], OVERLAY_TEXT);
    SetLastingOverlay(&overlay);
}

// False: the file says nothing new.
bool Look(News& news) {
    std::string text;
    std::string error;
    if (file.empty() || !ReadTextFile(file, FILE_MAX, text, error) || text == textSeen) return false;
    textSeen = text;
    if (!ReadNews(text, news)) return false;
    ShowLines(news.lines);
    return true;
}

}  // namespace

void StartWatch(const std::string& watched) {
    file = watched;
    textSeen.clear();
    dataNow = HostDataFolder();
    placeNow.clear();
    musicNow.clear();
    awaitsPicture = false;
    PlayUnfocused(!file.empty());
    ShowLines({});
}

bool LevelIsNew(HostReload& reload) {
    if (std::exchange(awaitsPicture, false)) HostLog("watch: the first picture of %s", dataNow.c_str());
    News news;
    if (!Look(news)) return false;
    const std::string placeBefore = std::exchange(placeNow, news.place);
    const std::string musicBefore = std::exchange(musicNow, news.music);
    if (news.data == dataNow) return false;
    dataNow = news.data;
    SetDataFolder(dataNow);
    HostLog("watch: level %d from %s", news.level, dataNow.c_str());
    awaitsPicture = true;
    const bool musicIsNew = !musicBefore.empty() && musicBefore != news.music;
    if (musicIsNew) SetDiscFolder(dataNow + "/disc");
    reload = {news.level, placeBefore.empty() || placeBefore == news.place, musicIsNew};
    return true;
}
