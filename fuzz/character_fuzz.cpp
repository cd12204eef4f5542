// The character's files. The first byte chooses which of the files the rest of the input is; the other files are sound.
// What the loaders accept is posed, skinned and drawn in a small world.
#include "character/actor.h"
#include "character/animation.h"
#include "character/leaf_bins.h"
#include "character/mesh.h"
#include "character/skin.h"
#include "formats/character_files.h"
#include "memory/pool.h"
#include "platform/timer.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "support/game_file.h"
#include "support/tiny_world.h"
#include "support/view.h"
#include "world/bsp.h"
#include "world/draw/draw_view.h"

#include <cstdio>
#include <optional>

namespace {

constexpr uint32_t BONES = 3;

std::vector<uint8_t> frame(320 * 240), texels(TEXTURE_RECORDS_OFFSET + TEXTURE_PAGE_BYTES), remap(256);
std::optional<TinyWorld> world;

struct CharacterFiles {
    std::vector<uint8_t> mesh, coordinates, weights, animation;
};

CharacterFiles SoundFiles() {
    const CharacterMesh mesh{
        BONES, {{-40, -40, 0}, {40, -40, 0}, {40, 60, 9}, {-40, 60, -9}}, {{0, 1, 2}, {0, 2, 3}, {0, 2, 1}}};
    const std::vector<WeightBlock> blocks{{{0, 1}, {}}, {{2, 3}, {{1, 30000}}}, {{}, {{0, 100}, {3, 65535}}}};
    CharacterAnimation animation;
    animation.length = 100;
    animation.commands = {0, COMMAND_PUSH, 1, COMMAND_POP, 2};
    for (uint32_t bone = 0; bone < BONES; ++bone)
        animation.bones.push_back({{1, 2, 3}, {{10, {1, 0, 0, 0}}, {60, {0.6, 0.8, 0, 0}}}, {{10, {0, 0, 0}}}});
    return {EncodeMesh(mesh), EncodeSkin({{0, {}}, {1, {}}, {0, {}}}), EncodeWeights(blocks),
            EncodeAnimation(animation)};
}

void SetUpScreen() {
    if (FrameBuffer != nullptr) return;
    if (!std::freopen("/dev/null", "w", stdout)) return;  // hides the listing of the weights
    BuildReciprocalTable();
    ScreenWidth = FramePitch = 320;
    ScreenHeight = 240;
    FrameBuffer = frame.data();
    ProjectionScaleX = ProjectionScaleY = 158.4f;
    ScreenCentreX = 160.0f;
    ScreenCentreY = 120.0f;
    ScreenAspect = 1.0f;
    FarDistance = FadeDistance = 5000.0f;
    TextureImage = texels.data();
    TextureCount = 256;  // any texture number is allowed; all show the first texture
    TextureRemap = remap.data();
    TextureRecords()[0] = {TEXTURE_RECORDS_OFFSET + sizeof(TextureRecord), 0, 0, 0, 0, 0, 64, 64};
}

// Two leaves, so that the character is split.
void MakeWorld() {
    if (!world) {
        world.emplace();
        const int16_t right = world->AddLeaf({FacingSquare({200, 0, 300}, {0, 0, -1}, 100)});
        const int16_t left = world->AddLeaf({FacingSquare({-200, 0, 300}, {0, 0, -1}, 100)});
        world->AddNode({1, 0, 0, 0}, right, left);
        world->Publish();
        GenerateNodeRadii();
    }
    WorldGeometry.used = WorldGeometry.fixed = WorldGeometry.file;
    CharPointBase = WorldGeometry.used.points;
    CharPolyBase = WorldGeometry.used.polygons;
}

void Draw(Actor& actor, uint32_t time) {
    actor.layerTimes[0] = time;
    FrameCount++;
    PoseActor(actor);
    DrawActor(actor);
    LookFrom({0, 0, -300}, 0, 0);
    DrawView();
}

void LoadAndDraw(const CharacterFiles& files) {
    MeshRecord mesh = {};
    AnimRecord animation = {};
    AnimFileEntry entries[] = {{"", &animation}, {nullptr, nullptr}};
    StateRecord states[1] = {};
    states[0].animations[1] = states[0].animations[2] = -1;
    Actor actor = {};
    const char* meshPath = BeginGameFile(files.mesh.data(), files.mesh.size());
    LoadMesh(meshPath, mesh, AddGameFile(files.coordinates));
    AddActor(actor, &mesh, states, 0, 0, 0, entries);
    ActorCount = 0;
    actor.weights = LoadWeights(AddGameFile(files.weights), mesh);
    LoadAnimation(AddGameFile(files.animation), animation, mesh);
    FrameTicks = 4;
    UpdateActorBase(actor);
    Draw(actor, 35);
    actor.blendDuration = 50;
    Draw(actor, 20);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    SetUpScreen();
    MakeWorld();
    CharacterFiles files = SoundFiles();
    std::vector<uint8_t>* const kinds[] = {&files.mesh, &files.coordinates, &files.weights, &files.animation};
    kinds[data[0] % 4]->assign(data + 1, data + size);
    try {
        LoadAndDraw(files);
    } catch (const FatalThrown&) {  // refused
    }
    PoolForget();
    return 0;
}
