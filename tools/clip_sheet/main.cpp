// clip_sheet: the character's animations as the game draws them, a row of moments for each; with --changes what happens
// when one of its states follows another, frame by frame. Made of the game itself.

#include "clip_sheet/film_rows.h"
#include "game_picture/game_picture.h"

#include "app/app_tables.h"
#include "app/host_game.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "math/random.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "render/raster.h"
#include "render/screen.h"
#include "render/submit.h"
#include "world/bsp.h"
#include "world/draw/draw_sky.h"
#include "world/draw/render_world.h"
#include "world/world_tables.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <set>

namespace {

constexpr uint32_t MOMENTS = 12;
constexpr int SOFTWARE_WIDTH = 320;
constexpr int SOFTWARE_CELL_WIDTH = 136, SOFTWARE_CELL_HEIGHT = 196;  // the part cut from the picture's middle
constexpr float EYE_DISTANCE = 165.0f;
constexpr float SOLES = 110.0f;  // distance of the soles below the actor's position

struct Options {
    int32_t level = 3;
    float heading = 70.0f;  // direction from which it is seen: 0 its back, 90 its left side, 180 its face
    std::string output = "clips.png";
    std::vector<std::string> clips;  // file names of animations, or names of states
    bool changes = false;
    uint32_t ticks = 1;
    bool accelerator = false;
};
Options Wanted;
const Moment* Shown;  // pose drawn in place of the state's own animation; null: the latter

// The accelerator's pictures, and so the cells cut from them, have twice as many pixels each way.
int CellWidth() {
    return SOFTWARE_CELL_WIDTH * ScreenWidth / SOFTWARE_WIDTH;
}
int CellHeight() {
    return SOFTWARE_CELL_HEIGHT * ScreenWidth / SOFTWARE_WIDTH;
}

std::string NameOf(const AnimFileEntry& entry) {
    const std::string path = entry.path;
    return path.substr(path.rfind('\\') + 1, path.size() - path.rfind('\\') - 5);
}

void StandOnGround() {
    Vec3& position = PlayerActor.position;
    const Vec3 below = {position.x, position.y - 400.0f, position.z};
    position.y += SOLES - CameraRayDistance(position, below);
}

void LookAtPlayer() {
    const Vec3& player = PlayerActor.position;
    CameraMode = CAMERA_FREE;
    CameraState = {};
    CameraState.yawAccumulator = Wanted.heading;
    CameraAngles = {0, Wanted.heading, 0};
    CameraPos = player;
    MouseInput = {};
    UpdateCamera();
    // Back along the view, and down to the height of the hips.
    const Vec3 ahead = {ViewMatrix.rotation.m[6], ViewMatrix.rotation.m[7], ViewMatrix.rotation.m[8]};
    CameraPos = {player.x - ahead.x * EYE_DISTANCE, player.y - 26.0f, player.z - ahead.z * EYE_DISTANCE};
    UpdateCamera();
}

using Frame = std::vector<Rgba>;  // pixels of a cell, upper row first

Frame MiddleOfPicture() {
    const Image picture = TakePicture();
    Frame frame;
    const int left = (ScreenWidth - CellWidth()) / 2, top = (ScreenHeight - CellHeight()) / 2;
    for (int y = top; y < top + CellHeight(); ++y) {
        for (int x = left; x < left + CellWidth(); ++x)
            frame.push_back(picture.At(x, y));
    }
    return frame;
}

Frame DrawCharacter(bool withPlayer) {
    FrameCount++;
    SubmittedPolygons = 0;
    LookAtPlayer();
    ClearFrame();
    if (withPlayer && Shown) DrawPlayerAs(*Shown);
    if (withPlayer && !Shown) DrawActorAt(0);
    if (SkyFlag != 0) DrawSky();
    RenderWorld();
    return MiddleOfPicture();
}

// Copies the figure to the sheet and makes the background pale, so that the figure stands out.
void DrawCell(Image& sheet, int column, int row) {
    const Frame empty = DrawCharacter(false);
    DrawCharacter(true);  // a frame before, which gathers the lights that the figure is drawn with
    const Frame frame = DrawCharacter(true);
    // A pixel of the figure may have the background's colour; its neighbours give it away.
    const auto isBackground = [&](size_t i) {
        const size_t before = i - std::min<size_t>(i, 1), after = std::min(i + 1, frame.size() - 1);
        return frame[i] == empty[i] && frame[before] == empty[before] && frame[after] == empty[after];
    };
    const auto pale = [](uint8_t full) { return static_cast<uint8_t>(150 + full / 4); };
    for (size_t i = 0; i < frame.size(); ++i) {
        const auto& [r, g, b, a] = frame[i];
        const int x = static_cast<int>(i) % CellWidth(), y = static_cast<int>(i) / CellWidth();
        sheet.At(CellWidth() * column + x, CellHeight() * row + y) =
            isBackground(i) ? Rgba{pale(r), pale(g), pale(b)} : frame[i];
    }
}

int DrawChanges(HINSTANCE, HINSTANCE, char*, int) {
    const std::vector<FilmRow> films = FilmsInto(Wanted.clips, Wanted.ticks);
    if (films.empty()) {
        std::fprintf(stderr, "clip_sheet: no change leads into a state of these names; without names all are drawn\n");
        return 1;
    }
    StartLevel(Wanted.level, Wanted.accelerator);
    StandOnGround();
    size_t longest = 0;
    for (const FilmRow& film : films)
        longest = std::max(longest, film.frames.size());
    Image sheet(CellWidth() * static_cast<int>(longest), CellHeight() * static_cast<int>(films.size()));
    for (size_t row = 0; row < films.size(); ++row) {
        std::printf("row %zu: %s\n", row + 1, films[row].name.c_str());
        for (size_t i = 0; i < films[row].frames.size(); ++i) {
            Shown = &films[row].frames[i];
            DrawCell(sheet, static_cast<int>(i), static_cast<int>(row));
        }
    }
    WritePng(Wanted.output, sheet);
    return 0;
}

int DrawSheet(HINSTANCE, HINSTANCE, char*, int) {
    StartLevel(Wanted.level, Wanted.accelerator);
    StandOnGround();
    std::set<std::string> seen;
    std::vector<int16_t> rows;
    for (int16_t i = 0; PlayerAnimations[i].path != nullptr; ++i) {
        const std::string name = NameOf(PlayerAnimations[i]);
        const auto& clips = Wanted.clips;
        const bool wanted = clips.empty() || std::find(clips.begin(), clips.end(), name) != clips.end();
        if (wanted && seen.insert(name).second) rows.push_back(i);
    }
    for (const std::string& name : Wanted.clips) {
        if (seen.contains(name)) continue;
        std::fprintf(stderr, "clip_sheet: there is no animation %s; without names all are drawn\n", name.c_str());
        return 1;
    }
    Image sheet(CellWidth() * static_cast<int>(MOMENTS), CellHeight() * static_cast<int>(rows.size()));
    for (size_t row = 0; row < rows.size(); ++row) {
        const AnimFileEntry& clip = PlayerAnimations[rows[row]];
        std::printf("row %zu: %s, 10 to %u\n", row + 1, NameOf(clip).c_str(), clip.record->length);
        PlayerStates[0].animations[0] = rows[row];
        for (uint32_t i = 0; i < MOMENTS; ++i) {
            PlayerActor.layerTimes[0] = 10 + i * (clip.record->length - 10) / (MOMENTS - 1);
            DrawCell(sheet, static_cast<int>(i), static_cast<int>(row));
        }
    }
    WritePng(Wanted.output, sheet);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    CLI::App app("Draws the character's animations as the game shows them.");
    std::string data;
    app.add_option("--data", data, "the game's data");
    app.add_option("--level", Wanted.level, "level in which the character stands")->check(CLI::Range(1, LEVEL_COUNT));
    app.add_option("--heading", Wanted.heading,
                   "direction from which it is seen in degrees: 0 from behind, 180 from ahead");
    app.add_option("-o,--output", Wanted.output, "the picture to write (.png)");
    app.add_flag("--changes", Wanted.changes, "show the changes into the states, each at its worst departure");
    app.add_option("--ticks", Wanted.ticks, "length of a frame in ticks, for --changes")->check(CLI::Range(1, 12));
    app.add_flag("--accelerator", Wanted.accelerator, "drawn as the accelerator does, twice as large");
    app.add_option("clips", Wanted.clips, "names of animation files, or of states; all when none is named");
    CLI11_PARSE(app, argumentCount, arguments);
    std::vector<std::string> words = {arguments[0], "--headless", "--board", "cpu"};
    if (!data.empty()) words.insert(words.end(), {"--data", data});
    std::vector<char*> hostArguments;
    for (std::string& word : words)
        hostArguments.push_back(word.data());
    return HostMain(static_cast<int>(hostArguments.size()), hostArguments.data(), GameForHost,
                    Wanted.changes ? DrawChanges : DrawSheet);
}
