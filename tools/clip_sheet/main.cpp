// clip_sheet: the character's animations as the game draws them, a row of moments for each; with --changes what happens
// when one of its states follows another, frame by frame. Made of the game itself.

#include "clip_sheet/film_rows.h"

#include "app/app_tables.h"
#include "app/host_game.h"
#include "app/load_level.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "formats/image.h"
#include "math/random.h"
#include "memory/system.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "render/raster.h"
#include "render/screen.h"
#include "render/submit.h"
#include "render/textures.h"
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
constexpr int WIDTH = 320, HEIGHT = 240;            // size of the software frame
constexpr int CELL_WIDTH = 136, CELL_HEIGHT = 196;  // the part that is cut from its middle
constexpr float EYE_DISTANCE = 165.0f;
constexpr float SOLES = 110.0f;  // distance of the soles below the actor's position

struct Options {
    int32_t level = 3;
    float heading = 70.0f;  // direction from which it is seen: 0 its back, 90 its left side, 180 its face
    std::string output = "clips.png";
    std::vector<std::string> clips;  // file names of animations, or names of states
    bool changes = false;
    uint32_t ticks = 1;
};
Options Wanted;
const Moment* Shown;  // pose drawn in place of the state's own animation; null: the latter

std::string NameOf(const AnimFileEntry& entry) {
    const std::string path = entry.path;
    return path.substr(path.rfind('\\') + 1, path.size() - path.rfind('\\') - 5);
}

void StartLevel() {
    UseGlide = 0;
    BuildReciprocalTable();
    SystemInit();
    InitGraphics(0);
    LoadLevel(Wanted.level - 1);
    DepthScale = 63000.0f / std::max(1.0f, FarDistance);
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

using Frame = std::vector<uint8_t>;  // CELL_WIDTH x CELL_HEIGHT palette entries

Frame DrawFrame(bool withPlayer) {
    FrameCount++;
    SubmittedPolygons = 0;
    LookAtPlayer();
    ClearFrame();
    if (withPlayer && Shown) DrawPlayerAs(*Shown);
    if (withPlayer && !Shown) DrawActorAt(0);
    if (SkyFlag != 0) DrawSky();
    RenderWorld();
    Frame frame;
    for (int y = 0; y < CELL_HEIGHT; ++y) {
        const uint8_t* row = FrameBuffer + (HEIGHT - CELL_HEIGHT + 2 * y) / 2 * FramePitch + (WIDTH - CELL_WIDTH) / 2;
        frame.insert(frame.end(), row, row + CELL_WIDTH);
    }
    return frame;
}

// Copies the figure to the sheet and makes the background pale, so that the figure stands out.
void DrawCell(Image& sheet, int left, int top) {
    const uint8_t* palette = TextureImage + TEXTURE_PALETTE_OFFSET;
    const Frame empty = DrawFrame(false);
    DrawFrame(true);  // a frame before, which gathers the lights that the figure is drawn with
    const Frame frame = DrawFrame(true);
    // A pixel of the figure may have the background's colour; its neighbours give it away.
    const auto isBackground = [&](size_t i) {
        const size_t before = i - std::min<size_t>(i, 1), after = std::min(i + 1, frame.size() - 1);
        return frame[i] == empty[i] && frame[before] == empty[before] && frame[after] == empty[after];
    };
    for (size_t i = 0; i < frame.size(); ++i) {
        const auto channel = [&](size_t c) {
            const int full = palette[size_t{3} * frame[i] + c] * 255 / 63;
            return static_cast<uint8_t>(isBackground(i) ? 150 + full / 4 : full);
        };
        const int index = static_cast<int>(i);
        sheet.At(left + index % CELL_WIDTH, top + index / CELL_WIDTH) = {channel(0), channel(1), channel(2), 255};
    }
}

int DrawChanges(HINSTANCE, HINSTANCE, char*, int) {
    const std::vector<FilmRow> films = FilmsInto(Wanted.clips, Wanted.ticks);
    StartLevel();
    size_t longest = 0;
    for (const FilmRow& film : films)
        longest = std::max(longest, film.frames.size());
    Image sheet(CELL_WIDTH * static_cast<int>(longest), CELL_HEIGHT * static_cast<int>(films.size()));
    for (size_t row = 0; row < films.size(); ++row) {
        std::printf("row %zu: %s\n", row + 1, films[row].name.c_str());
        for (size_t i = 0; i < films[row].frames.size(); ++i) {
            Shown = &films[row].frames[i];
            DrawCell(sheet, CELL_WIDTH * static_cast<int>(i), CELL_HEIGHT * static_cast<int>(row));
        }
    }
    WritePng(Wanted.output, sheet);
    return 0;
}

int DrawSheet(HINSTANCE, HINSTANCE, char*, int) {
    StartLevel();
    std::set<std::string> seen;
    std::vector<int16_t> rows;
    for (int16_t i = 0; PlayerAnimations[i].path != nullptr; ++i) {
        const std::string name = NameOf(PlayerAnimations[i]);
        const auto& clips = Wanted.clips;
        const bool wanted = clips.empty() || std::find(clips.begin(), clips.end(), name) != clips.end();
        if (wanted && seen.insert(name).second) rows.push_back(i);
    }
    Image sheet(CELL_WIDTH * static_cast<int>(MOMENTS), CELL_HEIGHT * static_cast<int>(rows.size()));
    for (size_t row = 0; row < rows.size(); ++row) {
        const AnimFileEntry& clip = PlayerAnimations[rows[row]];
        std::printf("row %zu: %s, 10 to %u\n", row + 1, NameOf(clip).c_str(), clip.record->length);
        PlayerStates[0].animations[0] = rows[row];
        for (uint32_t i = 0; i < MOMENTS; ++i) {
            PlayerActor.layerTimes[0] = 10 + i * (clip.record->length - 10) / (MOMENTS - 1);
            DrawCell(sheet, CELL_WIDTH * static_cast<int>(i), CELL_HEIGHT * static_cast<int>(row));
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
    app.add_option("clips", Wanted.clips, "names of animation files, or of states; all when none is named");
    CLI11_PARSE(app, argumentCount, arguments);
    std::vector<std::string> words = {arguments[0], "--headless"};
    if (!data.empty()) words.insert(words.end(), {"--data", data});
    std::vector<char*> hostArguments;
    for (std::string& word : words)
        hostArguments.push_back(word.data());
    return HostMain(static_cast<int>(hostArguments.size()), hostArguments.data(), GameForHost,
                    Wanted.changes ? DrawChanges : DrawSheet);
}
