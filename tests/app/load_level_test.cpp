// The order of a level load, the files it names, and what the level before hands on.
#include "machine.h"

#include "app/load_level.h"
#include "character/character_tables.h"
#include "character/mesh.h"
#include "render/screen.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

namespace {

TEST(LoadLevel, CallsTheLoadersInOrder) {
    PolyVertex main[2] = {{5, 1.0f, 2.0f, 0.0f}, {6, 3.0f, 4.0f, 0.0f}};
    PolyVertex alternate[2] = {};
    WorldGeometry.polyVertices = main;
    WorldGeometry.alternateVertices = alternate;
    GlideWindowOpen = 1;
    Fake.onCall = [&](const std::string& call) {
        if (call.starts_with("LoadBspWorld")) WorldGeometry.used = {1, 20, 300, 2};
        if (call.starts_with("LoadStaticObject")) WorldGeometry.used.polygons += 5;
        if (call == "L_CreateGlideUVs") main[1].u = -1.0f;
    };
    LoadLevel(7);
    EXPECT_EQ(Fake.calls, (Calls{"LoadBspWorld game\\data\\levels\\level8\\assault.bgm",
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
                                 "L_CreateGlideUVs",
                                 "ResetCurrentTexture",
                                 "ResetViewCache"}));
    EXPECT_EQ(PlayerActor.weights, &Fake);
    EXPECT_EQ(CharPolyBase, WorldGeometry.used.polygons) << "behind world and sky";
    EXPECT_EQ(CharPointBase, WorldGeometry.used.points);
    EXPECT_EQ(alternate[1].u, 3.0f) << "the accelerator's coordinates are built from a copy in texel units";
}

TEST(LoadLevel, HandsOnThePlayersMotionButNeitherActorsNorSkyNorTheAcceleratorsFog) {
    for (const int32_t accelerator : {0, 1}) {
        ActorCount = 20;
        SkyObject.polygonCount = 20;
        PlayerActor.angles = PlayerActor.velocity = {1, 2, 3};
        FogNearDistance = 2000.0f;
        GlideWindowOpen = accelerator;
        LoadLevel(0);
        EXPECT_EQ(ActorCount + SkyObject.polygonCount, 0);
        EXPECT_EQ(PlayerActor.angles.y + PlayerActor.velocity.z, 2.0f + 3.0f);
        EXPECT_EQ(FogNearDistance, accelerator ? 2000.0f : 0.0f);
    }
}

}  // namespace
