#include "character/animation.h"

#include "character/animation_layout.h"
#include "math/matrix_stack.h"
#include "math/vectors.h"
#include "memory/fatal.h"
#include "memory/file_fields.h"
#include "memory/files.h"
#include "platform/timer.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* INVALID_ANIMATION = "Not a valid animation file";

bool DoublesFinite(const uint8_t* image, uint32_t offset, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        if (!std::isfinite(FileField<double>(image, offset + 8 * i))) return false;
    }
    return true;
}

bool ValidTrack(const AnimRecord& record, uint32_t offset, const TrackShape& shape) {
    if (uint64_t{offset} + shape.headerBytes > record.imageBytes) return false;
    const auto keys = FileField<int32_t>(record.image, offset + shape.headerBytes - KEY_COUNT_BYTES);
    if (keys < 1) return false;
    const uint32_t first = offset + shape.headerBytes;
    if (first + uint64_t{shape.keyBytes} * static_cast<uint32_t>(keys) > record.imageBytes) return false;
    if (shape.headerBytes == ROTATION_TRACK.headerBytes && !DoublesFinite(record.image, offset + PIVOT_AT, 3))
        return false;
    for (uint32_t k = 0; k < static_cast<uint32_t>(keys); ++k) {
        const uint32_t key = first + shape.keyBytes * k;
        if (!DoublesFinite(record.image, key + KEY_TIME_BYTES, (shape.keyBytes - KEY_TIME_BYTES) / 8)) return false;
        const bool goesBack =
            k > 0 && FileField<uint32_t>(record.image, key - shape.keyBytes) > FileField<uint32_t>(record.image, key);
        if (goesBack) return false;
    }
    return true;
}

bool ValidTable(const AnimRecord& record, uint32_t table, const TrackShape& shape) {
    if (uint64_t{table} + TABLE_HEADER_BYTES + uint64_t{TABLE_ENTRY_BYTES} * record.trackCount > record.imageBytes)
        return false;
    for (uint32_t b = 0; b < record.trackCount; ++b) {
        if (!ValidTrack(record, FileField<uint32_t>(record.image, table + TABLE_HEADER_BYTES + TABLE_ENTRY_BYTES * b),
                        shape))
            return false;
    }
    return true;
}

bool ValidTracks(const AnimRecord& record) {
    return ValidTable(record, record.rotationTable, ROTATION_TRACK) &&
           ValidTable(record, record.positionTable, POSITION_TRACK);
}

// Refuses a command list that does not end inside the file, or names a bone without tracks or outside the mesh. It may
// leave transforms on the stack.
void CheckCommands(const AnimRecord& record, uint32_t boneCount, const char* path) {
    int depth = 0;
    for (uint64_t offset = COMMANDS_AT; offset + COMMAND_BYTES <= record.imageBytes; offset += COMMAND_BYTES) {
        const auto command = FileField<int32_t>(record.image, static_cast<uint32_t>(offset));
        if (command == COMMAND_END) return;
        if (command == COMMAND_PUSH) depth += 1;
        if (command == COMMAND_POP) depth -= 1;
        if (depth < 0) FatalError(1, MATRIX_STACK_UNDERFLOW, path);
        if (depth > MATRIX_STACK_SIZE) FatalError(1, MATRIX_STACK_OVERFLOW, path);
        const bool isBone = command >= 0 && static_cast<uint32_t>(command) < std::min(boneCount, record.trackCount);
        if (!isBone && command != COMMAND_PUSH && command != COMMAND_POP) break;
    }
    FatalError(0, INVALID_ANIMATION, path);
}

// For layers 1 and 2; layer 0, whose end can also end the state, has FinishLayer0.
void AdvanceLayer(Actor& actor, int layer, const StateRecord& oldState) {
    const int16_t animation = actor.states[actor.state].animations[layer];
    // Kept as it is: animation 0 stands still on these layers, though it is a valid index.
    if (animation <= 0) return;
    const uint32_t length = actor.animations[animation].record->length;
    uint32_t& time = actor.layerTimes[layer];
    time += ANIM_TICK_UNITS * FrameTicks;
    if (time < length) return;
    if (oldState.playModes[layer] == PLAY_ONCE) time = length;
    if (oldState.playModes[layer] == PLAY_LOOP) time = time - length + ANIM_START_TIME;
}

void FinishLayer0(Actor& actor, uint32_t length, const StateRecord& oldState) {
    if (oldState.playModes[0] == PLAY_LOOP) {
        // Kept as it is: a loop no longer than its start time never comes back, and its last keys hold.
        actor.layerTimes[0] = actor.layerTimes[0] - length + ANIM_START_TIME;
        return;
    }
    if (oldState.playModes[0] != PLAY_ONCE) return;
    actor.layerTimes[0] = length;
    const StateTransition* transition = oldState.transition;
    if (!transition || transition->nextState < 0) return;
    const uint32_t start =
        transition->startTime == -1 ? ANIM_START_TIME : static_cast<uint32_t>(int32_t{transition->startTime});
    SetActorState(actor, transition->nextState, start, transition->blendDuration);
}

void AddLocalVelocity(Actor& actor, const Vec3& local) {
    RotateVectorT(local.x, local.y, local.z, actor.rotation);
    actor.velocity.x += RotatedVector.x;
    actor.velocity.y += RotatedVector.y;
    actor.velocity.z += RotatedVector.z;
}

}  // namespace

void LoadAnimation(const char* path, AnimRecord& record, const MeshRecord& mesh) {
    record = {};
    record.image = static_cast<const uint8_t*>(LoadMalloc(path));
    if (!record.image) FatalError(0, "No Animation File Found", path);
    record.imageBytes = static_cast<uint32_t>(FileSize(path));
    if (record.imageBytes < COMMANDS_AT) FatalError(0, INVALID_ANIMATION, path);
    record.length = FileField<uint32_t>(record.image, LENGTH_AT);
    record.trackCount = FileField<uint32_t>(record.image, TRACK_COUNT_AT);
    record.hiddenBlock = FileField<uint32_t>(record.image, HIDDEN_BLOCK_AT);
    record.rotationTable = FileField<uint32_t>(record.image, ROTATION_TABLE_AT);
    record.positionTable = FileField<uint32_t>(record.image, POSITION_TABLE_AT);
    CheckCommands(record, mesh.boneCount, path);
    if (!ValidTracks(record)) FatalError(0, INVALID_ANIMATION, path);
}

void LoadAnimations(AnimFileEntry* table, const MeshRecord& mesh) {
    for (AnimFileEntry* entry = table; entry->path; ++entry)
        LoadAnimation(entry->path, *entry->record, mesh);
}

void AdvanceActor(Actor& actor) {
    const StateRecord& oldState = actor.states[actor.state];
    RotationFromAngles(actor.angles.x, actor.angles.y, actor.angles.z, actor.rotation);
    if (oldState.handler) oldState.handler();

    const uint32_t length = actor.animations[actor.states[actor.state].animations[0]].record->length;
    actor.layerTimes[0] += ANIM_TICK_UNITS * FrameTicks;
    if (actor.layerTimes[0] >= length) FinishLayer0(actor, length, oldState);
    AdvanceLayer(actor, 1, oldState);
    AdvanceLayer(actor, 2, oldState);

    // The drive forward and sideways acts on the ground only; gravity acts always.
    const auto ticks = static_cast<float>(FrameTicks);
    Vec3 drive = {ticks * oldState.drive.x, ticks * oldState.drive.y, ticks * oldState.drive.z};
    // Kept as it is: drives are per tick while moves are per frame, so jumps are lower where frames are longer.
    if (actor.onContact == 0) drive.x = drive.z = 0.0f;
    drive.x += ticks * actor.localMove.x;
    drive.y += ticks * actor.localMove.y;
    drive.z += ticks * actor.localMove.z;
    actor.localMove = {};
    AddLocalVelocity(actor, drive);
    actor.ticksInState += static_cast<int32_t>(FrameTicks);
}

void SetActorState(Actor& actor, int32_t state, uint32_t startTime, int32_t blendDuration) {
    // Kept as it is: of several changes in one frame each gives its impulse, and the last state stays.
    actor.state = state;
    for (uint32_t& time : actor.layerTimes)
        time = startTime;
    actor.blendDuration = blendDuration;
    const StateRecord& record = actor.states[state];
    const Vec3& impulse = record.impulse;
    if (impulse.y + impulse.z + impulse.x != 0.0f) {
        // AdvanceActor adds the drive to the velocity afterwards; it is subtracted here, so that only the impulse acts.
        const auto ticks = static_cast<float>(FrameTicks);
        AddLocalVelocity(actor, {impulse.x - ticks * record.drive.x, impulse.y - ticks * record.drive.y,
                                 impulse.z - ticks * record.drive.z});
    }
    actor.ticksInState = 0;
}
