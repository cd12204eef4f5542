#include "explorer/report.h"
#include "explorer/route.h"
#include "formats/error.h"
#include "formats/files.h"
#include "records/levels.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>

namespace fs = std::filesystem;

namespace {

fs::path LevelFolder(const fs::path& data, int level) {
    return data / fmt::format("game/data/levels/level{}", level);
}

WalkerLevel FilesOf(const fs::path& data, int level, uint32_t ticks) {
    const LevelRow& row = LevelRowOf(level);
    const fs::path folder = LevelFolder(data, level);
    const auto start = [&](int axis) { return static_cast<float>(row.start[axis]); };
    return {folder / (std::string(row.world) + ".bgm"),
            folder / "lights.alt",
            data / "game/data/anims",
            {start(0), start(1), start(2)},
            ticks > 0 ? ticks : static_cast<uint32_t>(row.ticks)};
}

std::optional<PlacesFile> PlacesOf(const fs::path& data, int level) {
    const fs::path file = LevelFolder(data, level) / "places.txt";
    if (!fs::exists(file)) return std::nullopt;
    return ReadPlaces(file);
}

// Status.
int Walk(const WalkerLevel& files, const PlacesFile& places, uint32_t seed, const fs::path& script) {
    Walker walker(files);
    const RouteReport report = WalkRoute(walker, places, seed);
    fmt::print("{}", RouteText(report, places));
    const std::string text = ScriptOf(report.play, "along the route");
    WriteWholeFile(script, {text.begin(), text.end()});
    return report.WithinTime(places) ? 0 : 1;
}

// What a search is about, and where its scripts go.
struct Exploration {
    const WalkerLevel& files;
    const std::optional<PlacesFile>& places;
    const fs::path& output;
    std::string name;                         // its scripts begin with it
    const std::vector<std::string>& allowed;  // kinds of faults
};

// Status.
int Explore(const Exploration& exploration, SearchOptions options) {
    const auto begin = std::chrono::steady_clock::now();
    const auto& [files, places, output, name, allowed] = exploration;
    if (places && places->net) options.net = static_cast<float>(*places->net);
    Walker walker(files);
    const SearchReport report = Search(walker, options).Run();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    const std::optional<MapFrame> map = places ? std::optional(places->frame) : std::nullopt;
    fmt::print("{}{:.1f} seconds\n", ReportOf(report, map, output, name), seconds.count());
    for (const Fault& fault : report.faults) {
        const std::string kind = FAULT_NAMES[static_cast<int>(fault.kind)];
        if (fault.kind != FaultKind::Creep && std::find(allowed.begin(), allowed.end(), kind) == allowed.end())
            return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Searches a level for places where a player falls out of the world, is trapped, is thrown up, or gets "
                 "through a wall. Status 1 when there are any; walls gone through alone do not count.");
    int level = 0;
    fs::path data = "build/data", output = ".";
    SearchOptions options;
    uint32_t ticks = 0;
    app.add_option("--level", level, "the level")->required()->check(CLI::Range(1, LEVEL_COUNT));
    app.add_option("--frames", options.frames, "how many frames to play")->capture_default_str();
    app.add_option("--seed", options.seed, "of the random keys: the same seed, the same search")->capture_default_str();
    uint32_t seeds = 1;
    app.add_option("--seeds", seeds, "so many searches, with that seed and those after it, which share the frames")
        ->check(CLI::Range(1, 1000));
    app.add_option("--ticks", ticks, "length of a frame in ticks; the level's own when it is left out")
        ->check(CLI::Range(1, 12));
    app.add_option("--data", data, "the data folder")->capture_default_str();
    app.add_option("--output", output, "the folder for a script of each fault, which the game plays")
        ->capture_default_str();
    std::vector<std::string> allowed;
    app.add_option("--allow", allowed, "kinds of faults, fall, trap or lift, that are told but do not count")
        ->check(CLI::IsMember({"fall", "trap", "lift"}));
    bool route = false;
    app.add_flag("--route", route,
                 "walk the route that the map marks instead; status 1 when it is too long or blocked");
    CLI11_PARSE(app, argc, argv);
    try {
        const WalkerLevel files = FilesOf(data, level, ticks);
        const std::optional<PlacesFile> places = PlacesOf(data, level);
        const std::string name = fmt::format("level{}", level);
        if (route) return Walk(files, places.value_or(PlacesFile{}), options.seed, output / (name + "_route.txt"));
        options.frames /= seeds;
        int status = 0;
        for (const uint32_t last = options.seed + seeds; options.seed != last; ++options.seed) {
            const std::string part = seeds > 1 ? fmt::format("{}_seed{}", name, options.seed) : name;
            status |= Explore({files, places, output, part, allowed}, options);
        }
        return status;
    } catch (const std::exception& error) {
        fmt::print(stderr, "explorer: {}\n", error.what());
        return 2;
    }
}
