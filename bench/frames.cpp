// frames [--data DIR] [--rounds N] [LEVEL...]: whole frames as the software renderer draws them for a player, from the
// pose of the character to the last pixel, with the character in view and without. They are drawn at the start of each
// level, and at the places that its map marks, in the costliest of ten directions.

#include "app/app_tables.h"
#include "app/host_game.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "formats/places_file.h"
#include "game_picture/game_picture.h"
#include "raster_floor.h"
#include "render/render_tables.h"
#include "render/submit.h"
#include "rounds.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

using namespace raster_floor;

namespace {

constexpr double FRAME_TARGET = 8;        // most time of a frame, in times of the floor of one full frame
constexpr double CHARACTER_TARGET = 1.5;  // most time of the character alone at the start, likewise
constexpr int DIRECTIONS = 10;            // directions that are tried at a marked place
constexpr int FRAMES_UNTIL_STILL = 200;   // until the camera, which follows smoothly, stands still

int32_t Level;
int RoundCount = 15;
std::filesystem::path LevelsFolder;
std::FILE* Output;  // for the results; what the game prints goes nowhere

struct FramePlace {
    Vec3 position;  // where the character stands, world units
    float heading;  // degrees; the camera looks the same way from behind
};

// The place of a player, and what he sees from it.
struct View {
    std::string name;
    Actor player;
    Vec3 cameraPosition;
    ViewTransform viewMatrix;
    Matrix3 cameraRotation;
    uint32_t polygons, characterPolygons;
};

void LookAt(const View& view) {
    PlayerActor = view.player;
    CameraPos = view.cameraPosition;
    ViewMatrix = view.viewMatrix;
    CameraRotation = view.cameraRotation;
}

View ViewFrom(const FramePlace& place, std::string name) {
    PlayerActor.position = place.position;
    PlayerActor.angles = {0, place.heading, 0};
    UpdateActorBase(PlayerActor);
    for (int i = 0; i < FRAMES_UNTIL_STILL; ++i)
        UpdateCamera();
    View view = {std::move(name), PlayerActor, CameraPos, ViewMatrix, CameraRotation, 0, 0};
    DrawFrame(false);
    view.polygons = SubmittedPolygons;
    DrawFrame(true);
    view.characterPolygons = SubmittedPolygons - view.polygons;
    return view;
}

std::string NameOf(const FramePlace& place) {
    char name[64];
    std::snprintf(name, sizeof name, "%.0f %.0f %.0f, %.0f deg", place.position.x, place.position.y, place.position.z,
                  place.heading);
    return name;
}

std::vector<FramePlace> MarkedPlaces() {
    const std::filesystem::path file = LevelsFolder / ("level" + std::to_string(Level)) / "places.txt";
    std::vector<FramePlace> places;
    if (!std::filesystem::exists(file)) return places;
    for (const MarkedPlace& mark : ReadPlaces(file).marks)
        places.push_back({{static_cast<float>(mark.x), static_cast<float>(mark.y), static_cast<float>(mark.z)}, 0});
    return places;
}

double SecondsOf(const View& view) {
    LookAt(view);
    const auto start = std::chrono::steady_clock::now();
    DrawFrame(false);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

View CostliestViewFrom(FramePlace place) {
    View costliest;
    double most = -1;
    for (int i = 0; i < DIRECTIONS; ++i) {
        place.heading = 360.0f / DIRECTIONS * static_cast<float>(i);
        View view = ViewFrom(place, NameOf(place));
        const double seconds = std::min({SecondsOf(view), SecondsOf(view), SecondsOf(view)});
        if (seconds <= most) continue;
        most = seconds;
        costliest = std::move(view);
    }
    return costliest;
}

std::vector<View> ViewsOfLevel() {
    std::vector<View> views = {ViewFrom({PlayerActor.position, PlayerActor.angles.y}, "start")};
    for (const FramePlace& place : MarkedPlaces())
        views.push_back(CostliestViewFrom(place));
    return views;
}

struct ViewWork {
    size_t world, all;
};

ViewWork AddView(Rounds& rounds, const View& view) {
    const auto add = [&](bool withCharacter) {
        return rounds.Add(view.name, 1, [&view, withCharacter] {
            LookAt(view);
            DrawFrame(withCharacter);
        });
    };
    return {add(false), add(true)};
}

void Print(const Rounds& rounds, size_t floor, const View& view, const ViewWork& work) {
    const double unit = rounds.Median(floor);
    const double world = rounds.Median(work.world) / unit;
    const double all = rounds.Median(work.all) / unit;
    const bool isStart = view.name == "start";
    const bool misses = all > FRAME_TARGET || (isStart && all - world > CHARACTER_TARGET);
    std::fprintf(Output, "  %-28s %5u + %3u polygons  %6.2f x %5.1f %%  %5.2f x  %6.2f x %5.1f %%%s\n",
                 view.name.c_str(), view.polygons, view.characterPolygons, world, 100 * rounds.Spread(work.world),
                 all - world, all, 100 * rounds.Spread(work.all), misses ? "  MISSED" : "");
}

int Measure(HINSTANCE, HINSTANCE, char*, int) {
    StartLevel(Level, false);
    const std::vector<View> views = ViewsOfLevel();
    Rounds rounds;
    const uint8_t* texels = TextureImage + TextureRecords()[0].texelOffset;
    const size_t floor = rounds.Add("floor", 1, [texels] { FloorFrame(texels, WIDTH); });
    std::vector<ViewWork> works;
    for (const View& view : views)
        works.push_back(AddView(rounds, view));
    rounds.Run(RoundCount);
    std::fprintf(Output, "Level %d, floor %.3f ms, spread %.1f %%\n", Level, rounds.Median(floor) * 1e-6,
                 100 * rounds.Spread(floor));
    for (size_t i = 0; i < views.size(); ++i)
        Print(rounds, floor, views[i], works[i]);
    std::fflush(Output);
    return 0;
}

// Measures a level in a process of its own, because a game starts only once in a process.
void RunLevel(std::vector<char*> hostArguments) {
    const pid_t child = fork();
    if (child == 0)
        std::_Exit(HostMain(static_cast<int>(hostArguments.size()), hostArguments.data(), GameForHost, Measure));
    waitpid(child, nullptr, 0);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    Output = fdopen(dup(STDOUT_FILENO), "w");
    if (!Output || !std::freopen("/dev/null", "w", stdout)) return EXIT_FAILURE;
    static char headless[] = "--headless";
    std::filesystem::path data = std::filesystem::path(arguments[0]).parent_path() / "../data";  // the build's own
    std::vector<char*> hostArguments = {arguments[0], headless};
    std::vector<int> levels;
    for (int i = 1; i < argumentCount; ++i) {
        if (std::strcmp(arguments[i], "--data") == 0 && i + 1 < argumentCount) {
            data = arguments[++i];
        } else if (std::strcmp(arguments[i], "--rounds") == 0 && i + 1 < argumentCount)
            RoundCount = std::atoi(arguments[++i]);
        else
            levels.push_back(std::atoi(arguments[i]));
    }
    LevelsFolder = data / "game/data/levels";
    static char dataOption[] = "--data";
    std::string dataFolder = data.string();
    hostArguments.insert(hostArguments.end(), {dataOption, dataFolder.data()});
    if (levels.empty())
        for (int level = 1; level <= LEVEL_COUNT; ++level)
            levels.push_back(level);
    std::fprintf(Output,
                 "Times the floor of one full frame, with the spread of the rounds: the world alone, the "
                 "character's share (target %.1f at the start), both (target %.0f)\n",
                 CHARACTER_TARGET, FRAME_TARGET);
    std::fflush(Output);
    for (const int level : levels) {
        Level = level;
        RunLevel(hostArguments);
    }
    return 0;
}
