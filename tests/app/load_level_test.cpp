// The order of a level load, the files it names, and what the level before hands on.
#include "machine.h"

#include "app/app_tables.h"
#include "app/load_level.h"
#include "camera/camera_tables.h"
#include "character/character_tables.h"
#include "character/mesh.h"
#include "platform/timer.h"
#include "render/screen.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

class LoadLevelTest : public testing::Test {
protected:
    ~LoadLevelTest() override { WorldGeometry = {}; }
};

TEST_F(LoadLevelTest, CallsTheLoadersInOrder) {
    LoadLevel(7);
    EXPECT_EQ(Fake.calls, (Calls{
                              "LoadBspWorld game\\data\\levels\\level8\\assault.bgm",
                              "LoadStaticObject game\\data\\levels\\level8\\sky.sob",
                              "LoadMesh game\\data\\anims\\zero.msh game\\data\\anims\\tarnwick.tuv",
                              "LoadAnimations",
                              "AddActor 800 800 0",
                              "UpdateActorBase",
                              "LoadWeights game\\data\\anims\\zero.wei",
                              "LoadLightMap game\\data\\levels\\level8\\lights.lmp",
                              "ApplyLightLevel",
                              "LoadLightSlots game\\data\\levels\\level8\\lights.alt",
                              "LoadTextureFile 7",
                              "ClearShots",
                              "GenerateVertexNormals",
                              "SetStaticMarks",
                              "SetupScreen",
                              "SetupFog",
                              "SetTexturePalette",
                              "ResetViewCache",
                          }));
    EXPECT_EQ(PlayerActor.weights, &Fake);
}

TEST_F(LoadLevelTest, AcceleratorCoordinatesAreBuiltFromACopyInTexelUnits) {
    PolyVertex main[2] = {{5, 1.0f, 2.0f, 0.0f}, {6, 3.0f, 4.0f, 0.0f}};
    PolyVertex alternate[2] = {};
    WorldGeometry.polyVertices = main;
    WorldGeometry.alternateVertices = alternate;
    WorldGeometry.used.polyVertices = 2;
    GlideWindowOpen = 1;
    Fake.onCall = [&](const std::string& call) {
        if (call == "L_CreateGlideUVs") main[1].u = -1.0f;
    };
    LoadLevel(0);
    EXPECT_EQ(Fake.Among({"SetTexturePalette", "L_CreateGlideUVs", "ResetCurrentTexture", "ResetViewCache"}),
              (Calls{"SetTexturePalette", "L_CreateGlideUVs", "ResetCurrentTexture", "ResetViewCache"}));
    EXPECT_EQ(alternate[1].u, 3.0f);
}

TEST_F(LoadLevelTest, PlacesTheCharacterAfterWorldAndSky) {
    Fake.onCall = [](const std::string& call) {
        if (call.starts_with("LoadBspWorld")) WorldGeometry.used = {1, 20, 300, 4000};
        if (call.starts_with("LoadStaticObject")) {
            WorldGeometry.used.polygons += 5;
            WorldGeometry.used.points += 7;
        }
        if (call.starts_with("LoadMesh")) {
            EXPECT_EQ(CharPolyBase, 25u);
            EXPECT_EQ(CharPointBase, 307u);
        }
    };
    LoadLevel(2);
}

TEST_F(LoadLevelTest, SetsTheLevelsGlobalsForEveryLevel) {
    for (int32_t level = 0; level < LEVEL_COUNT; level++) {
        CameraMode = CAMERA_FREE;
        CameraPos = CameraAngles = {1, 1, 1};
        ActorCount = 20;
        SkyObject = {1, 2, 3, 4};
        FrameCount = 999;
        LoadLevel(level);
        EXPECT_EQ(LoadedLevel, level);
        EXPECT_EQ(CameraMode, CAMERA_FOLLOW);
        EXPECT_EQ(CameraPos.z, 4101.0f);
        EXPECT_EQ(CameraAngles.y, 329.0f);
        EXPECT_EQ(ActorCount, 0);
        EXPECT_EQ(SkyObject.polygonCount, 0);
        EXPECT_EQ(FrameCount, 1);
        EXPECT_EQ(MinFrameTicks, LevelTable[level].minFrameTicks);
        EXPECT_EQ(SkyFlag, LevelTable[level].hasSky);
    }
}

TEST_F(LoadLevelTest, FogOfAnAcceleratedLevelDoesNotReachASoftwareLevel) {
    FogNearDistance = 2000.0f;
    Fake.onCall = [](const std::string& call) {
        if (call.starts_with("LoadLightMap")) {
            EXPECT_EQ(FogNearDistance, 0.0f);
        }
    };
    LoadLevel(0);
    FogNearDistance = 2000.0f;
    GlideWindowOpen = 1;
    Fake.onCall = nullptr;
    LoadLevel(0);
    EXPECT_EQ(FogNearDistance, 2000.0f);
}

TEST_F(LoadLevelTest, PlayerKeepsAnglesAndVelocity) {
    PlayerActor.angles = {0, 123, 0};
    PlayerActor.velocity = {1, 2, 3};
    LoadLevel(2);
    EXPECT_EQ(PlayerActor.angles.y, 123.0f);
    EXPECT_EQ(PlayerActor.velocity.z, 3.0f);
}

}  // namespace
