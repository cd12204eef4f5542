// The records of characters: mesh, skeleton, animations and the states an actor can be in.
#pragma once

#include "records/matrices.h"
#include "records/table_facts.h"
#include "records/vec3.h"

#include <cstdint>

// One bone of the skeleton, posed every frame.
struct BoneRecord {
    Transform world;     // takes the mesh's rest position to the world
    Quat rotation;       // last evaluated outside a blend
    double position[3];  // position last evaluated outside a blend; moves the skeleton for the first bone only
};
static_assert(sizeof(BoneRecord) == BONE_BYTES);

// Where a character lies in WorldGeometry. Lives for the whole program, refilled by every level load.
struct MeshRecord {
    uint32_t boneCount;
    BoneRecord* bones;  // lies in the pool
    uint16_t pointCount;
    uint16_t firstPoint;  // its points are consecutive
    uint16_t faceCount;
    uint16_t firstPolygon;  // its triangles are consecutive
};

// One loaded animation file. The track tables stay offsets from the start of the image.
struct AnimRecord {
    const uint8_t* image;  // the file as loaded; lies in the pool
    uint32_t imageBytes;
    uint32_t trackCount;
    uint32_t hiddenBlock;  // weight block that is not applied while this animation plays; >= bone count: none
    uint32_t length;       // animation time units, 5 a tick
    uint32_t rotationTable;
    uint32_t positionTable;
};

struct AnimFileEntry {
    const char* path;  // null ends a table of entries
    AnimRecord* record;
};

struct StateTransition {
    int16_t unused;
    int16_t nextState;  // -1: stay and hold the last pose
    int16_t blendDuration;
    int16_t startTime;  // -1: 10
};

constexpr uint16_t STATE_CAN_STEP = 0x1;  // flag: walks up low ledges
constexpr int16_t PLAY_ONCE = 0;
constexpr int16_t PLAY_LOOP = 1;

// One state of an actor: what plays, how it drives and collides. Handlers rewrite impulses at run time.
struct StateRecord {
    uint16_t flags;
    const StateTransition* transition;
    Vec3 drive;             // velocity added per tick, in the actor's frame
    Vec3 impulse;           // velocity given once on entering the state, in the actor's frame
    float slideFactor;      // share of the velocity kept after a contact
    void (*handler)();      // called once a frame, or null
    int16_t animations[3];  // for layers 0..2: index into the actor's AnimFileEntry table; -1: none
    int16_t playModes[3];
};
