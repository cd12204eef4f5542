#include "character/mesh.h"
#include "character/skin.h"

#include "formats/character_files.h"
#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/world_tables.h"

namespace {

using Bytes = std::vector<uint8_t>;

CharacterMesh TwoTriangles(uint32_t bones) {
    return {bones, {{0, 0, 0}, {0, 50, 0}, {50, 0, 0}, {50, 50, 10}}, {{0, 1, 2}, {2, 1, 3}}};
}
const std::vector<SkinTriangle> SKIN = {{0, {{{0, 0}, {1, 1}, {2, 2}}}}, {200, {{{256, 0}, {257, 1}, {258, 2}}}}};

class CharacterFiles : public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
        world_.AddLeaf({{{-500, 0, -500}, {500, 0, -500}, {500, 0, 500}, {-500, 0, 500}}});
        world_.Publish();
        CharPointBase = WorldGeometry.used.points;
        CharPolyBase = WorldGeometry.used.polygons;
    }

    void LoadFrom(const Bytes& mesh, const Bytes& coordinates) {
        const std::string meshFile = std::string(FileOf(mesh)) + ".msh";
        std::filesystem::rename(FileOf(mesh), meshFile);
        LoadMesh(meshFile.c_str(), mesh_, FileOf(coordinates));
        std::filesystem::remove(meshFile);
    }

    TinyWorld world_;
    MeshRecord mesh_{};
};

TEST_F(CharacterFiles, WhatDoesNotFitIsRefused) {
    CharacterMesh mesh = TwoTriangles(3);
    mesh.points.resize(SPARE_POINTS + 1);
    EXPECT_EQ(FatalOf([&] { LoadFrom(EncodeMesh(mesh), EncodeSkin(SKIN)); }), "0: No room for the mesh");
    EXPECT_EQ(FatalOf([&] { LoadMesh("none.msh", mesh_, "none.tuv"); }), "0: No Mesh File Found");
}

// Two bones: blocks 0 and 1 belong to bones 4 and 3.
class Skinning : public CharacterFiles {
protected:
    void SetUp() override {
        CharacterFiles::SetUp();
        LoadFrom(EncodeMesh(TwoTriangles(22)), EncodeSkin(SKIN));
        for (int axis = 0; axis < 3; ++axis)
            mesh_.bones[3].world.t[axis] = 10.0 * (axis + 1);
        actor_.mesh = &mesh_;
        actor_.states = &state_;
        actor_.animations = &entry_;
        record_.hiddenBlock = 255;
    }

    std::vector<WeightBlock> Blocks() const {
        std::vector<WeightBlock> blocks(22);
        blocks[0].hard = {0, 1};
        blocks[1].soft = {{0, 32768}, {1, 0}};
        return blocks;
    }

    void Skin(const Bytes& weights) {
        testing::internal::CaptureStdout();
        actor_.weights = LoadWeights(FileOf(weights), mesh_);
        testing::internal::GetCapturedStdout();
        SkinActor(actor_);
    }

    AnimRecord record_{};
    AnimFileEntry entry_ = {"", &record_};
    StateRecord state_{};
    Actor actor_{};
};

TEST_F(Skinning, AHiddenBlockIsSteppedOverAndSoIsAMatrixNumber) {
    record_.hiddenBlock = 0;
    ViewPoint& point = WorldGeometry.viewPoints[mesh_.firstPoint];
    point = {};
    point.x = point.y = point.z = 4.0f;
    Bytes weights = EncodeWeights(Blocks());
    weights[3] = 4;  // the version with matrix numbers
    size_t at = 8;
    for (const WeightBlock& block : Blocks()) {
        weights.insert(weights.begin() + static_cast<std::ptrdiff_t>(at), {7, 0});
        at += 2 + 4 + 2 * block.hard.size() + 4 * block.soft.size();
    }
    Skin(weights);
    // Half of bone 3's place, and half of what it held: block 0 would have put it at 0 before.
    EXPECT_EQ(point.x, 7.0f);
    EXPECT_EQ(point.y, 12.0f);
    EXPECT_EQ(point.z, 17.0f);
}

TEST_F(Skinning, MissingWeightsEndTheGameBeforeAnyShutdownAndSaySo) {
    const auto load = [&] { LoadWeights("game\\data\\anims\\none.wei", mesh_); };
    EXPECT_EXIT(load(), testing::ExitedWithCode(1), "Failed to LoadMalloc weights file!\n.*none.wei .looked for in ");
}

}  // namespace
