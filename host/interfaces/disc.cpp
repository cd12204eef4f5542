#include "interfaces/disc.h"

#include "machine/log.h"
#include "machine/track_reader.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// 0: not the name of a track.
uint32_t TrackNumber(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    if (name.size() < 9 || !name.starts_with("track") || !std::isdigit(static_cast<unsigned char>(name[5])) ||
        !std::isdigit(static_cast<unsigned char>(name[6])))
        return 0;
    const std::string ending = name.substr(7);
    if (ending != ".flac" && ending != ".ogg" && ending != ".wav") return 0;
    const auto number = static_cast<uint32_t>((name[5] - '0') * 10 + (name[6] - '0'));
    return number >= DISC_FIRST_MUSIC && number <= DISC_LAST_MUSIC ? number : 0;
}

std::set<std::string> NamesIn(const std::string& folder) {
    std::set<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        names.insert(entry->path().filename().string());
    return names;
}

void AddTrack(Disc& disc, const std::string& folder, const std::string& name) {
    const std::string path = folder + "/" + name;
    const uint32_t number = TrackNumber(name);
    std::error_code error;
    if (number == 0 || !fs::is_regular_file(path, error)) {
        HostLog("disc: %s is not a track; tracks are files named track02 to track98, .flac, .ogg or .wav",
                path.c_str());
        return;
    }
    disc.lastTrack = std::max(disc.lastTrack, number + 1);
    if (disc.tracks.contains(number)) {
        HostLog("disc: %s is left out, there is a track %u already", path.c_str(), number);
        return;
    }
    std::string problem;
    if (const auto reader = TrackReader::Open(path, problem))
        disc.tracks[number] = {path, reader->Milliseconds()};
    else
        HostLog("disc: %s cannot be played: %s", path.c_str(), problem.c_str());
}

}  // namespace

Disc ReadDisc(const std::string& folder) {
    Disc disc;
    for (const std::string& name : NamesIn(folder))
        if (!name.starts_with('.')) AddTrack(disc, folder, name);
    return disc;
}
