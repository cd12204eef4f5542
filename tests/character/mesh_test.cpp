#include "character/mesh.h"
#include "character/skin.h"

#include "formats/character_files.h"
#include "math/vectors.h"
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

TEST_F(CharacterFiles, TheMeshStandsBehindTheWorldInEveryTable) {
    const GeometryCounts before = WorldGeometry.used;
    LoadFrom(EncodeMesh(TwoTriangles(3)), EncodeSkin(SKIN));
    const PolyRecord second = WorldGeometry.polygons[mesh_.firstPolygon + 1];
    EXPECT_EQ(second.texture, (200 + 93) & 0xFF);
    EXPECT_EQ(second.flags, 0);
    EXPECT_EQ(WorldGeometry.polyVertices[second.firstVertex + 2].point, before.points + 3);
    EXPECT_EQ(WorldGeometry.polyVertices[second.firstVertex + 2].u, 256.0f + 2.0f);
    // Corners 0, 1, 2 run clockwise seen from -z, so the normal points to -z.
    EXPECT_NEAR(WorldGeometry.planes[before.planes].nz, -1.0f, 1e-6f);
    EXPECT_EQ(WorldGeometry.used.polygons, before.polygons + 2);
    EXPECT_EQ(WorldGeometry.used.polyVertices, before.polyVertices + 6);
    EXPECT_EQ(WorldGeometry.used.planes, before.planes + 2);
    EXPECT_EQ(WorldGeometry.fixed.points, before.points + 4);
    EXPECT_EQ(mesh_.bones[2].world.r[4], 1.0);
}

TEST_F(CharacterFiles, WhatDoesNotFitIsRefused) {
    CharacterMesh mesh = TwoTriangles(3);
    mesh.points.resize(SPARE_POINTS + 1);
    EXPECT_THROW(LoadFrom(EncodeMesh(mesh), EncodeSkin(SKIN)), FatalThrown);
    EXPECT_THROW(LoadMesh("none.msh", mesh_, "none.tuv"), FatalThrown);
}

// Two bones: blocks 0 and 1 belong to bones 4 and 3.
class Skinning : public CharacterFiles {
protected:
    void SetUp() override {
        CharacterFiles::SetUp();
        LoadFrom(EncodeMesh(TwoTriangles(22)), EncodeSkin(SKIN));
        mesh_.bones[3].world.t[0] = 10.0;
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

    float X(uint32_t point) const { return WorldGeometry.viewPoints[mesh_.firstPoint + point].x; }

    AnimRecord record_{};
    AnimFileEntry entry_ = {"", &record_};
    StateRecord state_{};
    Actor actor_{};
};

TEST_F(Skinning, AHiddenBlockIsSteppedOverAndSoIsAMatrixNumber) {
    record_.hiddenBlock = 0;
    for (uint32_t p = 0; p < 4; ++p)
        WorldGeometry.viewPoints[mesh_.firstPoint + p] = {};
    Bytes weights = EncodeWeights(Blocks());
    weights[3] = 4;  // the version with matrix numbers
    size_t at = 8;
    for (const WeightBlock& block : Blocks()) {
        weights.insert(weights.begin() + static_cast<std::ptrdiff_t>(at), {7, 0});
        at += 2 + 4 + 2 * block.hard.size() + 4 * block.soft.size();
    }
    Skin(weights);
    EXPECT_EQ(X(0), 5.0f);  // half of bone 3's place, half of what it held
}

TEST_F(Skinning, MissingWeightsEndTheGameBeforeAnyShutdownAndSaySo) {
    const auto load = [&] { LoadWeights("game\\data\\anims\\none.wei", mesh_); };
    EXPECT_EXIT(load(), testing::ExitedWithCode(1), "Failed to LoadMalloc weights file!\n.*none.wei .looked for in ");
}

}  // namespace
