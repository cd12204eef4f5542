// gallery: one sheet of all levels, up to eight places of each that its map marks for a picture (info_route with an
// angle), as a player there sees them. Two rows a level, the software renderer above the accelerator. Made of the game
// itself.

#include "formats/places_file.h"
#include "game_picture/game_picture.h"

#include "app/app_tables.h"
#include "app/host_game.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "lights/light_slots.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <numeric>

namespace fs = std::filesystem;

namespace {

constexpr int PICTURES = 8;  // pictures of a level
constexpr int CELL_WIDTH = 320, CELL_HEIGHT = 240;
constexpr int FRAMES_UNTIL_STILL = 200;  // the camera follows smoothly

fs::path Data = "build/data";
int Level;
bool Accelerator;
fs::path RowFile;
fs::path Folder;  // for each picture by itself; none when empty

// Those with a picture, evenly chosen where there are more; the start where there are none.
std::vector<MarkedPlace> PlacesToShow() {
    const fs::path file = Data / fmt::format("game/data/levels/level{}/places.txt", Level);
    std::vector<MarkedPlace> marks;
    if (fs::exists(file)) marks = ReadPlaces(file).marks;
    std::erase_if(marks, [](const MarkedPlace& mark) { return !mark.heading; });
    std::vector<MarkedPlace> chosen;
    const size_t count = std::min<size_t>(marks.size(), PICTURES);
    for (size_t i = 0; i < count; ++i)
        chosen.push_back(marks[i * marks.size() / count]);
    const Vec3& start = PlayerActor.position;
    if (chosen.empty()) chosen.push_back({.x = start.x, .y = start.y, .z = start.z, .heading = 0, .name = "the start"});
    return chosen;
}

Image PictureOf(const MarkedPlace& place) {
    PlayerActor.position = {static_cast<float>(place.x), static_cast<float>(place.y), static_cast<float>(place.z)};
    PlayerActor.angles = {0, static_cast<float>(*place.heading), 0};
    UpdateActorBase(PlayerActor);
    for (int i = 0; i < FRAMES_UNTIL_STILL; ++i)
        UpdateCamera();
    for (int i = 0; i < 2; ++i) {  // the lights of the first frame fall on the character of the second
        DrawFrame(true);
        UpdateLights();
    }
    return TakePicture();
}

// At the column of the row; an accelerator's picture is halved.
void Put(Image& row, int column, const Image& picture) {
    const int step = picture.width / CELL_WIDTH;
    for (int y = 0; y < CELL_HEIGHT; ++y) {
        for (int x = 0; x < CELL_WIDTH; ++x) {
            int sum[3] = {};
            for (int i = 0; i < step * step; ++i) {
                const Rgba& pixel = picture.At(x * step + i % step, y * step + i / step);
                sum[0] += pixel.r, sum[1] += pixel.g, sum[2] += pixel.b;
            }
            const auto mean = [&](int channel) { return static_cast<uint8_t>(sum[channel] / (step * step)); };
            row.At(column * CELL_WIDTH + x, y) = {mean(0), mean(1), mean(2)};
        }
    }
}

int DrawRow(HINSTANCE, HINSTANCE, char*, int) {
    StartLevel(Level, Accelerator);
    Image row(CELL_WIDTH * PICTURES, CELL_HEIGHT);
    const std::vector<MarkedPlace> places = PlacesToShow();
    std::vector<Image> pictures;
    for (size_t i = 0; i < places.size(); ++i) {
        pictures.push_back(PictureOf(places[i]));
        Put(row, static_cast<int>(i), pictures.back());
        if (!Accelerator && Folder.empty())
            fmt::print(stderr, "level {}, picture {}: {}\n", Level, i + 1, places[i].name);
    }
    WritePng(RowFile, row);
    for (size_t i = 0; i < PICTURES && !Folder.empty(); ++i) {
        const std::string name = fmt::format("level{}_{}{}.png", Level, i + 1, Accelerator ? "" : "_software");
        WritePng(Folder / name, pictures[i % pictures.size()]);
    }
    return 0;
}

// In a process of its own: a game starts once.
bool DrawRowApart() {
    const pid_t child = fork();
    if (child == 0) {
        if (!std::freopen("/dev/null", "w", stdout)) std::_Exit(EXIT_FAILURE);
        std::string data = Data.string();
        char program[] = "gallery", headless[] = "--headless", dataOption[] = "--data";
        char* arguments[] = {program, headless, dataOption, data.data()};
        std::_Exit(HostMain(4, arguments, GameForHost, DrawRow));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0;
}

// Status 0, or 1 where a level could not be drawn.
int DrawSheet(const std::vector<int>& levels, const fs::path& output) {
    Image sheet(CELL_WIDTH * PICTURES, CELL_HEIGHT * 2 * static_cast<int>(levels.size()));
    RowFile = fs::path(output).concat(".row");
    size_t row = 0;
    for (const int level : levels) {
        for (const bool accelerator : {false, true}) {
            Level = level;
            Accelerator = accelerator;
            if (!DrawRowApart()) {
                fmt::print(stderr, "gallery: level {} could not be drawn\n", level);
                return 1;
            }
            const Image picture = ReadPng(RowFile);
            std::copy(picture.pixels.begin(), picture.pixels.end(),
                      sheet.pixels.begin() + static_cast<std::ptrdiff_t>(row++ * picture.pixels.size()));
        }
    }
    fs::remove(RowFile);
    WritePng(output, sheet);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("One picture of the places that the levels' maps mark: for each level a row drawn by the software "
                 "renderer above one drawn by the accelerator.");
    std::vector<int> levels;
    fs::path output = "gallery.png";
    app.add_option("levels", levels, "the levels; all of them when left out")->check(CLI::Range(1, LEVEL_COUNT));
    app.add_option("-o,--output", output, "the PNG to write")->capture_default_str();
    app.add_option("--data", Data, "the data folder")->capture_default_str();
    app.add_option("--folder", Folder,
                   "also write level<N>_<1 to 8>.png and, as software draws it, level<N>_<1 to 8>_software.png there: "
                   "always eight, some of them alike in levels with fewer marks");
    CLI11_PARSE(app, argc, argv);
    if (levels.empty()) {
        levels.resize(LEVEL_COUNT);
        std::iota(levels.begin(), levels.end(), 1);
    }
    try {
        if (!Folder.empty()) fs::create_directories(Folder);
        return DrawSheet(levels, output);
    } catch (const std::exception& error) {
        fmt::print(stderr, "gallery: {}\n", error.what());
        return 1;
    }
}
