#include "motion/stage.h"

#include "formats/binary.h"
#include "formats/files.h"

#include "character/actor.h"
#include "character/animation.h"
#include "character/animation_layout.h"
#include "character/skin.h"
#include "math/vectors.h"
#include "memory/fatal.h"
#include "memory/file_fields.h"
#include "memory/files.h"
#include "memory/pool.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "world/bsp.h"
#include "world/collision.h"
#include "world/world_tables.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr float FLOOR_SIZE = 8000.0f;  // from its middle
constexpr float START_HEIGHT = 112.0f;

// A world file of one square, the game's records as they stand.
std::vector<uint8_t> FloorFile() {
    constexpr float S = FLOOR_SIZE;
    const Vec3 all = {S, S, S}, none = {};
    const Vec3 corners[] = {{-S, 0, -S}, {S, 0, -S}, {S, 0, S}, {-S, 0, S}};
    const BspNode node = {~0, ~1, 0, none, 0, 0, 0, all};
    const BspLeaf leaves[] = {{1, 0, 0, 0, none, 0, 0, 0, all}, {0, 0, 0, 0, none, 0, 0, 0, all}};
    const PlaneRecord intoTheGround = {0, -1, 0, 0};
    const PolyRecord polygon = {4, 0, SHADE_POINT_LIGHT, 0, 0, 0, 0};
    ByteWriter file;
    for (const uint32_t value : {BSP_MAGIC, BSP_VERSION, 1U, 2U, 1U, 1U, 4U, 4U})
        file.BigU32(value);
    file.Append(&node, sizeof node);
    file.Append(leaves, sizeof leaves);
    file.Append(&intoTheGround, sizeof intoTheGround);
    file.Append(&polygon, sizeof polygon);
    for (const Vec3& corner : corners) {
        const WorldPoint point = {corner, {}};
        file.Append(&point, sizeof point);
    }
    for (uint32_t i = 0; i < 4; ++i) {
        const PolyVertex vertex = {i, 0, 0, 0};
        file.Append(&vertex, sizeof vertex);
    }
    return file.bytes;
}

// Every track of the bone gets one key, at this time: what the bone shows now.
void LeaveOneKey(std::vector<uint8_t>& image, const AnimRecord& record, uint32_t bone, uint32_t time) {
    const auto put = [&](uint32_t table, const TrackShape& shape, const void* value) {
        const uint32_t entry = table + TABLE_HEADER_BYTES + TABLE_ENTRY_BYTES * bone;
        uint8_t* const key = image.data() + FileField<uint32_t>(image.data(), entry) + shape.headerBytes;
        const uint32_t count = 1;
        std::memcpy(key - KEY_COUNT_BYTES, &count, sizeof count);
        std::memcpy(key, &time, sizeof time);
        std::memcpy(key + KEY_TIME_BYTES, value, shape.keyBytes - KEY_TIME_BYTES);
    };
    put(record.rotationTable, ROTATION_TRACK, &PlayerMesh.bones[bone].rotation);
    put(record.positionTable, POSITION_TRACK, PlayerMesh.bones[bone].position);
}

}  // namespace

Stage::Stage(const std::filesystem::path& folder) : pool_(POOL_BYTES, 0) {
    PoolInit(pool_.data(), pool_.data() + pool_.size());
    LoadFloor();
    LoadCharacter(folder);
    FindSoles();
    now_ = Pose();
}

Stage::~Stage() {
    PlayerActor = {};
    WorldGeometry = {};
    PoolForget();
}

void Stage::LoadFloor() {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("floor" + std::to_string(getpid()) + ".bgm");
    WriteWholeFile(file, FloorFile());
    LoadBspWorld(file.c_str());
    std::filesystem::remove(file);
    GenerateNodeRadii();
}

void Stage::LoadCharacter(const std::filesystem::path& folder) {
    player_.Load(folder, {0, START_HEIGHT, 0});
    const std::string weights = (folder / "zero.wei").string();
    PlayerActor.weights = LoadMalloc(weights.c_str());
    if (!PlayerActor.weights) FatalError(1, "No weights file found", weights.c_str());
}

void Stage::FindSoles() {
    const WorldPoint* points = WorldGeometry.points + PlayerMesh.firstPoint;
    const auto height = [&](size_t i) { return float{points[i].position.y}; };
    float lowest = 0;
    for (size_t i = 0; i < PlayerMesh.pointCount; ++i)
        lowest = std::min(lowest, height(i));
    for (size_t i = 0; i < PlayerMesh.pointCount; ++i) {
        if (height(i) < lowest + 1) soles_[points[i].position.x > 0 ? 0 : 1].push_back(i);
    }
}

Moment Stage::Pose() const {
    PoseActor(PlayerActor);
    SkinActor(PlayerActor);
    Moment moment;
    moment.state = PlayerActor.state;
    moment.time = PlayerActor.layerTimes[0];
    moment.blends = PlayerActor.blendDuration != 0;
    moment.onGround = PlayerActor.onContact != 0;
    moment.points.reserve(PlayerMesh.pointCount);
    for (uint32_t i = PlayerMesh.firstPoint; i < uint32_t{PlayerMesh.firstPoint} + PlayerMesh.pointCount; ++i) {
        const ViewPoint& point = WorldGeometry.viewPoints[i];
        moment.points.push_back({point.x, point.y, point.z});
    }
    for (size_t b = 0; b < PlayerMesh.boneCount; ++b)
        moment.bones[b] = PlayerMesh.bones[b].world;
    return moment;
}

void Stage::Move(uint32_t ticks, const FrameInput& input) {
    FrameTicks = ticks;
    Controls = input.controls;
    PlayerActor.randomWord = input.random;
    if (input.lands) PlayerActor.contactSlope = 1.0f;
    if (input.stopped) PlayerActor.velocity = {};
    const Vec3 before = PlayerActor.position;
    AdvanceActor(PlayerActor);
    MoveAgainstWorld(PlayerActor);
    const Vec3 after = PlayerActor.position;
    shownTravel_ = travel_;
    travel_ = {before.x - after.x, after.y - before.y, before.z - after.z};
}

void Stage::Draw() {
    now_ = Pose();
    now_.travel = shownTravel_;
}

int32_t Stage::State() const {
    return PlayerActor.state;
}

Moment Stage::Show(PlayerState state, uint32_t time, int32_t blendDuration) const {
    PlayerActor.state = state;
    PlayerActor.layerTimes[0] = time;
    PlayerActor.blendDuration = blendDuration;
    return Pose();
}

Moment Stage::PoseAt(PlayerState state, uint32_t time) {
    const Snapshot before = Save();
    Moment moment = Show(state, time);
    Restore(before);
    return moment;
}

Moment Stage::BlendAt(ClipTime left, const BlendTarget& target, uint32_t time, int32_t duration) {
    const Snapshot before = Save();
    Show(target.pose.state, target.pose.time);
    AnimRecord& record = AnimationOf(target.pose.state);
    const uint8_t* const image = record.image;
    std::vector<uint8_t> oneKey(image, image + record.imageBytes);
    for (uint32_t b = 0; b < PlayerMesh.boneCount; ++b)
        LeaveOneKey(oneKey, record, b, target.key);
    Show(left.state, left.time);
    record.image = oneKey.data();
    Moment moment = Show(target.pose.state, time, duration);
    record.image = image;
    Restore(before);
    return moment;
}

AnimRecord& Stage::AnimationOf(int32_t state) const {
    return player_.Animation(static_cast<size_t>(PlayerStates[static_cast<size_t>(state)].animations[0]));
}

uint32_t Stage::LengthOf(int32_t state) const {
    return AnimationOf(state).length;
}

std::array<double, 3> Stage::PivotOf(size_t bone) const {
    const AnimRecord& record = player_.Animation(0);
    const auto track = FileField<uint32_t>(record.image, record.rotationTable + 4 + 4 * static_cast<uint32_t>(bone));
    std::array<double, 3> pivot;
    for (uint32_t i = 0; i < 3; ++i)
        pivot[i] = FileField<double>(record.image, track + 4 + 8 * i);
    return pivot;
}

Stage::Course Stage::SaveCourse() const {
    return {PlayerActor, PlayerStates[STATE_HOP_TAKE_OFF].impulse, PlayerStates[STATE_LEAP_TAKE_OFF].impulse, JumpHeld,
            travel_};
}

Stage::Snapshot Stage::Save() const {
    return {SaveCourse(), {PlayerMesh.bones, PlayerMesh.bones + PlayerMesh.boneCount}, now_};
}

void Stage::Restore(const Course& course) {
    PlayerActor = course.actor;
    PlayerActor.position.x = PlayerActor.position.z = 0.0f;
    PlayerStates[STATE_HOP_TAKE_OFF].impulse = course.hopImpulse;
    PlayerStates[STATE_LEAP_TAKE_OFF].impulse = course.leapImpulse;
    JumpHeld = course.jumpHeld;
    travel_ = course.travel;
}

void Stage::Restore(const Snapshot& snapshot) {
    Restore(snapshot.course);
    std::copy(snapshot.bones.begin(), snapshot.bones.end(), PlayerMesh.bones);
    now_ = snapshot.now;
}
