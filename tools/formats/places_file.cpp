#include "formats/places_file.h"

#include "formats/error.h"
#include "formats/files.h"

#include <fmt/format.h>

#include <sstream>
#include <utility>

namespace {

std::istream& operator>>(std::istream& in, MarkedPlace& mark) {
    std::string heading;
    in >> mark.order >> mark.x >> mark.y >> mark.z >> mark.reach >> heading >> std::ws;
    if (heading != "-") {
        std::istringstream number(heading);
        double degrees = 0;
        if (!(number >> degrees)) in.setstate(std::ios::failbit);
        mark.heading = degrees;
    }
    const bool read = !in.fail();
    std::getline(in, mark.name);
    if (read) in.clear();  // a place need not have a name
    return in;
}

bool ReadLine(std::istream& in, PlacesFile& places) {
    std::string word;
    if (!(in >> word)) return true;
    if (word == "map") {
        in >> places.frame.quarterTurns >> places.frame.scale;
        for (double& offset : places.frame.offset)
            in >> offset;
    } else if (word == "time") {
        in >> places.routeTime;
    } else if (word == "net") {
        in >> places.net.emplace();
    } else if (word == "mark") {
        in >> places.marks.emplace_back();
    } else {
        return false;
    }
    return !in.fail() && places.frame.scale > 0;
}

}  // namespace

std::array<double, 3> MapFrame::ToMap(const std::array<double, 3>& p) const {
    std::array<double, 3> turned{};
    for (size_t i = 0; i < 3; ++i)
        turned[i] = (p[i] - offset[i]) / scale;
    double east = turned[0], north = turned[2];
    for (int i = 0; i < quarterTurns; ++i)
        east = std::exchange(north, -east);
    return {east, north, turned[1]};
}

PlacesFile ReadPlaces(const std::filesystem::path& path) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path, TEXT_BYTES_MAX);
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    PlacesFile places;
    int number = 0;
    for (std::string line; std::getline(text, line);) {
        ++number;
        std::istringstream in(line.substr(0, line.find('#')));
        if (!ReadLine(in, places)) Refuse(path.string(), number, "this is no line of places", "run mapc again");
    }
    return places;
}

std::string PlacesText(const PlacesFile& places) {
    std::string text = fmt::format("# Written by mapc: where the map and its marks lie in the world.\n"
                                   "map {} {} {} {} {}\ntime {}\n",
                                   places.frame.quarterTurns, places.frame.scale, places.frame.offset[0],
                                   places.frame.offset[1], places.frame.offset[2], places.routeTime);
    if (places.net) text += fmt::format("net {}\n", *places.net);
    for (const MarkedPlace& mark : places.marks) {
        text += fmt::format("mark {} {} {} {} {} {} {}\n", mark.order, mark.x, mark.y, mark.z, mark.reach,
                            mark.heading ? fmt::format("{}", *mark.heading) : "-", mark.name);
    }
    return text;
}
