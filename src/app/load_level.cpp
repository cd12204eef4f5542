#include "app/load_level.h"

#include "app/app_tables.h"
#include "app/shots.h"
#include "camera/camera_tables.h"
#include "character/actor.h"
#include "character/animation.h"
#include "character/mesh.h"
#include "character/skin.h"
#include "lights/light_slots.h"
#include "math/convert.h"
#include "math/world_planes.h"
#include "platform/timer.h"
#include "player/player.h"
#include "records/levels.h"
#include "render/fog.h"
#include "render/screen.h"
#include "render/submit.h"
#include "render/textures.h"
#include "world/bsp.h"
#include "world/light_map.h"
#include "world/static_object.h"
#include "world/world_tables.h"

#include <algorithm>

namespace {

constexpr Vec3 CAMERA_START_POSITION = {3400.0f, 137.0f, 4101.0f};
constexpr Vec3 CAMERA_START_ANGLES = {-27.0f, 329.0f, 0.0f};

constexpr const char* SKIN_PATHS[] = {  // by LevelSkin
#define SKIN(NAME, FILE) "game\\data\\anims\\" FILE,
    LEVEL_SKINS(SKIN)
#undef SKIN
};

// Resets the state that must not last from the previous level into this one.
void ResetLevelState(int32_t index) {
    LoadedLevel = index;
    CameraMode = CAMERA_FOLLOW;
    CameraPos = CAMERA_START_POSITION;
    CameraAngles = CAMERA_START_ANGLES;
    ActorCount = 0;
    // Only LoadLightMap with the accelerator sets it, and DebugKeys keeps FadeDistance above it.
    if (!GlideActive()) FogNearDistance = 0.0f;
}

void LoadPlayerMesh(uint16_t skin) {
    CharPointBase = WorldGeometry.used.points;
    CharPolyBase = WorldGeometry.used.polygons;
    LoadMesh("game\\data\\anims\\zero.msh", PlayerMesh, SKIN_PATHS[skin]);
}

void PlacePlayer(const Vec3& start) {
    AddActor(PlayerActor, &PlayerMesh, PlayerStates.data(), TruncToInt(start.x), TruncToInt(start.y),
             TruncToInt(start.z), PlayerAnimations);
    UpdateActorBase(PlayerActor);  // the first frame poses the character with this base
    PlayerActor.weights = LoadWeights("game\\data\\anims\\zero.wei", PlayerMesh);
}

// Afterwards polyVertices holds the accelerator's texture units, and alternateVertices keeps texel units.
void ConvertToGlideCoordinates() {
    std::copy_n(WorldGeometry.polyVertices, WorldGeometry.used.polyVertices, WorldGeometry.alternateVertices);
    L_CreateGlideUVs();
    ResetCurrentTexture();
}

}  // namespace

void LoadLevel(int32_t index) {
    const LevelInfo& level = LevelTable[index];
    ResetLevelState(index);
    LoadBspWorld(level.worldFile);
    LoadStaticObject(level.skyFile);
    LoadPlayerMesh(level.skin);
    SkyFlag = level.hasSky;
    MinFrameTicks = level.minFrameTicks;
    LoadAnimations(PlayerAnimations, PlayerMesh);
    PlacePlayer(level.start);
    LoadLightMap(level.lightMapFile);
    ApplyLightLevel();
    LoadLightSlots(level.lightSlotFile);
    LoadTextureFile(index);
    ClearShots();
    GenerateVertexNormals();
    SetStaticMarks();
    SetupScreen();
    SetupFog();
    SetTexturePalette();
    if (GlideActive()) ConvertToGlideCoordinates();
    ResetViewCache();
    FrameCount = 1;
}

void ResetToLevelStart() {
    // Kept as it is: the velocity is left as it is.
    PlayerActor.position = LevelTable[LoadedLevel].start;
}
