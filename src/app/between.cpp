#include "app/between.h"

#include "app/app_tables.h"
#include "camera/camera.h"
#include "character/actor.h"
#include "character/leaf_bins.h"
#include "host/probe.h"
#include "lights/light_slots.h"
#include "math/vectors.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "records/walking_facts.h"
#include "render/projection.h"
#include "render/screen.h"
#include "render/submit.h"
#include "world/bsp.h"
#include "world/draw/draw_view.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace {

constexpr uint16_t FIRST_FRAME = 1;  // the value of FrameCount after a level load
// How much farther than by their speed, in world units a frame, things may move: a step up or down, and a turn of the
// camera about the player or its way around a corner.
constexpr float PLAYER_MARGIN = LEDGE_MAX + LEDGE_CLEARANCE;
constexpr float CAMERA_MARGIN = CAMERA_FOLLOW_DISTANCE / 2.0f;

// What a frame looks like.
struct View {
    bool isValid = false;
    int32_t cameraMode = 0;
    Vec3 camera{}, angles{};
    Vec3 player{}, velocity{};
    std::vector<Vec3> points;        // the character's, in the world
    std::vector<float> intensities;  // intensities of the same points, as this frame draws them
    LightSlot lights[LIGHT_SLOT_COUNT];
    std::vector<uint8_t> textures;  // TextureRemap
};
View before, latest;

std::vector<uint8_t> frame;  // the software renderer's picture
ViewTransform shown;         // view of the latest picture

Vec3 Mixed(const Vec3& from, const Vec3& to, float way) {
    const float rest = 1.0f - way;  // not from + (to - from) x way, so that both ends come out exactly
    return {rest * from.x + way * to.x, rest * from.y + way * to.y, rest * from.z + way * to.z};
}

float Length(const Vec3& v) {
    return std::sqrt(Dot(v, v));
}

// A light that was not there before, or is another, is not on the way: it comes with the latest view.
LightSlot Mixed(const LightSlot& from, const LightSlot& to, float way) {
    LightSlot mixed = way < 1.0f ? from : to;
    if (from.type != to.type) return mixed;
    mixed.position = Mixed(Vec3{from.position}, Vec3{to.position}, way);
    mixed.intensity = (1.0f - way) * from.intensity + way * to.intensity;
    return mixed;
}

// The light of lamps that flicker nears what it is now by so much a frame, and zero's light by so much.
constexpr float LAMP_EASING = 0.125f;
constexpr float BODY_EASING = 0.25f;

void SteadyLamps() {
    for (int i = 0; i < LIGHT_SLOT_COUNT; ++i) {
        LightSlot& light = latest.lights[i];
        const LightSlot& past = before.lights[i];
        if (light.type != LIGHT_FLICKER || past.type != LIGHT_FLICKER) continue;
        light.intensity = past.intensity + (light.intensity - past.intensity) * LAMP_EASING;
    }
    for (size_t i = 0; i < latest.intensities.size(); ++i)
        latest.intensities[i] = before.intensities[i] + (latest.intensities[i] - before.intensities[i]) * BODY_EASING;
}

// A level is being played, and the latest view is one of it. An outline drawing never clears the accelerator's depth.
bool CanDraw() {
    return GameMode == MODE_PLAYING && FrameCount > FIRST_FRAME && latest.isValid && FogSwitch != 0;
}

bool BelongTogether() {
    if (!before.isValid || before.cameraMode != latest.cameraMode) return false;
    const float speed = std::max(Length(before.velocity), Length(latest.velocity));
    if (Length(latest.player - before.player) > speed + PLAYER_MARGIN) return false;
    return latest.cameraMode == CAMERA_FREE || Length(latest.camera - before.camera) <= speed + CAMERA_MARGIN;
}

// All that the game would miss after a picture. The stamps are not here: one of the last frame says as much as any.
struct Saved {
    Saved()
        : first(PlayerActor.mesh->firstPoint), count(PlayerActor.mesh->pointCount),
          viewPoints(WorldGeometry.viewPoints + first, WorldGeometry.viewPoints + first + count),
          intensities(IntensityCache + first, IntensityCache + first + count),
          textures(TextureRemap, TextureRemap + TextureCount) {}

    ~Saved() {
        std::copy(viewPoints.begin(), viewPoints.end(), WorldGeometry.viewPoints + first);
        std::copy(intensities.begin(), intensities.end(), IntensityCache + first);
        std::copy(textures.begin(), textures.end(), TextureRemap);
        CameraPos = camera;
        CameraAngles = angles;
        ViewMatrix = view;
        CameraRotation = rotation;
        PlayerActor.position = player;
        SubmittedPolygons = submitted;
        DroppedPolygons = dropped;
        FrameBuffer = buffer;
        FramePitch = pitch;
        FillStamps(static_cast<uint16_t>(FrameCount - 1));
    }

    size_t first, count;  // the character's points
    std::vector<ViewPoint> viewPoints;
    std::vector<float> intensities;
    std::vector<uint8_t> textures;
    Vec3 camera = CameraPos, angles = CameraAngles, player = PlayerActor.position;
    ViewTransform view = ViewMatrix;
    Matrix3 rotation = CameraRotation;
    uint32_t submitted = SubmittedPolygons, dropped = DroppedPolygons;
    uint8_t* buffer = FrameBuffer;
    int32_t pitch = FramePitch;
};

// The picture begins as the frame's own, because a frame leaves what no polygon covers as it was.
bool TakeFrame() {
    if (GlideActive()) return true;
    if (Failed(LockSurface())) return false;
    frame.assign(SurfaceMemory, SurfaceMemory + static_cast<ptrdiff_t>(SurfacePitch) * ScreenHeight);
    UnlockSurface();
    FrameBuffer = frame.data();
    FramePitch = SurfacePitch;
    return true;
}

void ShowFrame() {
    if (GlideActive())
        SwapScreen();
    else
        HostShowPicture(frame.data(), FramePitch);
}

void PutCharacter(const View& from, float way) {
    const uint32_t first = PlayerActor.mesh->firstPoint;
    for (uint32_t i = 0; i < latest.points.size(); ++i) {
        const Vec3 point = Mixed(from.points[i], latest.points[i], way);
        ViewPoint& view = WorldGeometry.viewPoints[first + i];
        view.x = point.x;
        view.y = point.y;
        view.z = point.z;
        IntensityCache[first + i] = (1.0f - way) * from.intensities[i] + way * latest.intensities[i];
    }
    PlayerActor.position = Mixed(from.player, latest.player, way);
    BinActor(PlayerActor);
}

// The world as it is on the way from one view to the latest, as the camera sees it.
bool Draw(const View& from, float way) {
    if (!TakeFrame()) return false;
    ClearFrame();
    PutCharacter(from, way);
    const std::vector<uint8_t>& textures = way < 1.0f ? from.textures : latest.textures;
    std::copy(textures.begin(), textures.end(), TextureRemap);
    LightSlot lights[LIGHT_SLOT_COUNT];
    for (int i = 0; i < LIGHT_SLOT_COUNT; ++i)
        lights[i] = Mixed(from.lights[i], latest.lights[i], way);
    RaiseLightBytes(lights);
    DrawView();
    shown = ViewMatrix;
    ShowFrame();
    return true;
}

}  // namespace

void KeepView() {
    shown = ViewMatrix;
    std::swap(before, latest);
    if (FrameCount == FIRST_FRAME) before.isValid = false;
    latest.isValid = HostWantsViews();
    if (!latest.isValid) return;
    latest.cameraMode = CameraMode;
    latest.camera = CameraPos;
    latest.angles = CameraAngles;
    latest.player = PlayerActor.position;
    latest.velocity = PlayerActor.velocity;
    const MeshRecord& mesh = *PlayerActor.mesh;
    latest.points.resize(mesh.pointCount);
    for (uint32_t i = 0; i < mesh.pointCount; ++i) {
        const ViewPoint& point = WorldGeometry.viewPoints[mesh.firstPoint + i];
        latest.points[i] = {point.x, point.y, point.z};
    }
    latest.intensities.assign(IntensityCache + mesh.firstPoint, IntensityCache + mesh.firstPoint + mesh.pointCount);
    std::copy(std::begin(LightSlots), std::end(LightSlots), latest.lights);
    latest.textures.assign(TextureRemap, TextureRemap + TextureCount);
    if (before.isValid && HostWantsSteadyLamps()) SteadyLamps();
}

bool DrawBetween(float way) {
    if (!CanDraw() || (way < 1.0f && !BelongTogether())) return false;
    const View& from = way < 1.0f ? before : latest;
    const Saved saved;
    PlaceCamera(Mixed(from.camera, latest.camera, way), Mixed(from.angles, latest.angles, way));
    return Draw(from, way);
}

bool DrawFrom(HostCamera& camera, const float (&move)[3]) {
    if (!CanDraw()) return false;
    const Saved saved;
    const Vec3 angles = {camera.angles[0], camera.angles[1], camera.angles[2]};
    PlaceCamera({camera.position[0], camera.position[1], camera.position[2]}, angles);
    RotateVectorT(move[0], move[1], move[2], CameraRotation);
    PlaceCamera(CameraPos + RotatedVector, angles);
    camera.position[0] = CameraPos.x;
    camera.position[1] = CameraPos.y;
    camera.position[2] = CameraPos.z;
    return Draw(latest, 1.0f);
}

bool PointOnScreen(const float (&point)[3], float (&pixel)[2]) {
    RotateVector(point[0], point[1], point[2], shown.rotation);
    const Vec3 seen = RotatedVector + shown.translation;
    if (seen.z < NEAREST_DEPTH) return false;
    pixel[0] = ScreenX(seen.x, 1.0f / seen.z);
    pixel[1] = ScreenY(seen.y, 1.0f / seen.z);
    return true;
}
