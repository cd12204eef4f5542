// Whole frames of a level as the software renderer draws them, from the traversal to the last pixel, seen from ten
// places: frames [--data DIR] [LEVEL] [ROUNDS].

#include "app/app_tables.h"
#include "app/load_level.h"
#include "camera/camera.h"
#include "host/host.h"
#include "memory/system.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "raster_floor.h"
#include "render/raster.h"
#include "render/screen.h"
#include "render/submit.h"
#include "rounds.h"
#include "world/bsp.h"
#include "world/draw/draw_sky.h"
#include "world/draw/render_world.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace raster_floor;

namespace {

constexpr uint32_t PLACE_COUNT = 10;
constexpr double TARGET = 8;  // times the floor of one full frame

int32_t Level = 3;
int RoundCount = 15;

struct Place {
    Vec3 position;
    float heading;  // degrees
    uint32_t polygons;
};

void LookFrom(const Place& place) {
    CameraMode = CAMERA_FREE;
    CameraState = {};
    CameraState.yawAccumulator = place.heading;
    CameraPos = place.position;
    CameraAngles = {0, place.heading, 0};
    MouseInput = {};
    UpdateCamera();
}

void DrawFrame() {
    FrameCount++;
    if (FrameCount == 0) FillStamps(0xFFFF);
    if (FrameCount == 0x8000) FillStamps(0);
    SubmittedPolygons = 0;
    ClearFrame();
    BeginBackToFront();
    if (SkyFlag != 0) DrawSky();
    RenderWorld();
    EndBackToFront();
}

// Spread over the level, in the order of its leaves, and looking around in equal turns.
std::vector<Place> ChoosePlaces() {
    std::vector<Place> places;
    for (uint32_t i = 0; i < PLACE_COUNT; i++) {
        const uint32_t leaf = (2 * i + 1) * WorldGeometry.leafCount / (2 * PLACE_COUNT);
        Place place = {WorldGeometry.leaves[leaf].centre, static_cast<float>(i) * 360 / PLACE_COUNT, 0};
        LookFrom(place);
        DrawFrame();
        place.polygons = SubmittedPolygons;
        places.push_back(place);
    }
    return places;
}

void StartLevel() {
    UseGlide = 0;
    BuildReciprocalTable();
    SystemInit();
    InitGraphics(0);
    LoadLevel(Level - 1);
    DepthScale = 63000.0f / std::max(1.0f, FarDistance);
}

int Measure(HINSTANCE, HINSTANCE, char*, int) {
    StartLevel();
    const std::vector<Place> places = ChoosePlaces();
    Rounds rounds;
    const uint8_t* texels = TextureImage + TextureRecords()[0].texelOffset;
    const size_t floor = rounds.Add("floor, a frame of rows", 1, [texels] { FloorFrame(texels, WIDTH); });
    for (const Place& place : places) {
        const std::string name = std::to_string(place.polygons) + " polygons";
        rounds.Add(name, 1, [place] {
            LookFrom(place);
            DrawFrame();
        });
    }
    rounds.Run(RoundCount);
    std::printf("Level %d, nanoseconds a frame\n", Level);
    rounds.Print(floor);
    for (size_t i = 1; i <= places.size(); i++)
        rounds.PrintAgainst(i, floor, TARGET);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    static char headless[] = "--headless";
    std::vector<char*> hostArguments = {arguments[0], headless};
    int number = 0;
    for (int i = 1; i < argumentCount; i++) {
        if (std::strcmp(arguments[i], "--data") == 0 && i + 1 < argumentCount)
            hostArguments.insert(hostArguments.end(), {arguments[i], arguments[i + 1]}), i++;
        else
            (number++ == 0 ? Level : RoundCount) = std::atoi(arguments[i]);
    }
    return HostMain(static_cast<int>(hostArguments.size()), hostArguments.data(), Measure);
}
