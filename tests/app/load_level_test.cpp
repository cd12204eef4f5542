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

// Index 0 to 7: world file's tail, skin, sky, ticks, fog.
TEST(LevelTable, HoldsTheEightLevels) {
    struct Row {
        const char* world;
        Vec3 start;
        int skin, sky, ticks;
        uint32_t fog;
    };
    const Row rows[LEVEL_COUNT] = {
        {"level1\\assault.bgm", {3837, -1103, 12788}, 0, 1, 4, 0xFA821E},
        {"level2\\bigone.bgm", {3837, -1103, 12788}, 1, 1, 4, 0},
        {"level3\\house.bgm", {223, 488, -211}, 0, 0, 1, 0},
        {"level4\\soulflum.bgm", {1068, -731, 1663}, 1, 0, 1, 0},
        {"level5\\dside.bgm", {-15, 507, 1599}, 1, 1, 1, 0},
        {"level6\\swamp.bgm", {3444, 408, 4976}, 0, 1, 2, 0xFA821E},
        {"level7\\wild.bgm", {327, -317, -384}, 0, 0, 2, 0},
        {"level8\\assault.bgm", {800, 800, 0}, 1, 1, 2, 0},
    };
    for (int i = 0; i < LEVEL_COUNT; i++) {
        const LevelInfo& level = LevelTable[i];
        const Row& row = rows[i];
        const std::string folder = "game\\data\\levels\\level" + std::to_string(i + 1) + "\\";
        EXPECT_EQ(level.worldFile, std::string("game\\data\\levels\\") + row.world);
        EXPECT_EQ(level.textureFile, folder + "texture.bin");
        EXPECT_EQ(level.skyFile, folder + "sky.sob");
        EXPECT_EQ(level.lightMapFile, folder + "lights.lmp");
        EXPECT_EQ(level.lightSlotFile, folder + "lights.alt");
        EXPECT_TRUE(level.start.x == row.start.x && level.start.y == row.start.y && level.start.z == row.start.z);
        EXPECT_EQ(level.skin, row.skin);
        EXPECT_EQ(level.hasSky, row.sky);
        EXPECT_EQ(level.minFrameTicks, row.ticks);
        EXPECT_EQ(level.textureColour, 0x404040u);
        EXPECT_EQ(level.fogColour, row.fog);
    }
}

}  // namespace
