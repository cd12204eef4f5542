#include "app/shots.h"

#include "character/character_tables.h"
#include "lights/light_slots.h"
#include "math/convert.h"
#include "math/random.h"
#include "math/vectors.h"
#include "platform/timer.h"
#include "world/collision.h"

#include <algorithm>
#include <iterator>

Shot Shots[SHOT_COUNT];

namespace {

constexpr uint16_t FRAMES_BETWEEN = 20;
constexpr uint16_t FIRST_FRAME = 1;  // the value of FrameCount after a level load
constexpr int16_t LIFE = 30;
constexpr float SPEED = 75.0f;
constexpr float ELEVATION = 8.0f;  // degrees above the heading at which a shot flies
constexpr int32_t RADIUS = 50;
constexpr int16_t PHASE_BITS = 3;

uint16_t
    LastFrame;  // FrameCount when the last shot was fired; the 16-bit difference from FrameCount holds across its wrap

Vec3 VelocityAlong(const Vec3& angles) {
    Matrix3 rotation;
    RotationFromAngles(angles.x + ELEVATION, angles.y, angles.z, rotation);
    RotateVectorT(0.0f, 0.0f, SPEED, rotation);
    return RotatedVector;
}

bool TouchesWorld(const Vec3& position) {
    return WorldSphereContacts(TruncToInt(position.x), TruncToInt(position.y), TruncToInt(position.z), RADIUS) > 0;
}

void UpdateShot(Shot& shot) {
    // Kept as it is: shots count frames, not ticks.
    --shot.life;
    if (shot.life < 0 || TouchesWorld(shot.position)) {
        shot.state = SHOT_FREE;
        FreeLight(shot.light);
        return;
    }
    shot.position.x += shot.velocity.x;
    shot.position.y += shot.velocity.y;
    shot.position.z += shot.velocity.z;
    shot.phase = static_cast<int16_t>((shot.phase + 1) & PHASE_BITS);
    SetLightPosition(shot.light, shot.position.x, shot.position.y, shot.position.z);
}

}  // namespace

void ClearShots() {
    for (Shot& shot : Shots)
        shot.state = SHOT_FREE;
    LastFrame = static_cast<uint16_t>(FIRST_FRAME - FRAMES_BETWEEN);
}

void FireShot() {
    if (static_cast<uint16_t>(FrameCount - LastFrame) < FRAMES_BETWEEN) return;
    Shot* const shot =
        std::find_if(std::begin(Shots), std::end(Shots), [](const Shot& slot) { return slot.state == SHOT_FREE; });
    if (shot == std::end(Shots)) return;
    const int32_t light = SpawnLight();
    if (light < 0) return;
    *shot = {PlayerActor.position, VelocityAlong(PlayerActor.angles),        static_cast<int16_t>(light), LIFE,
             SHOT_FLYING,          static_cast<int16_t>(Rand() & PHASE_BITS)};
    LastFrame = FrameCount;
}

void UpdateShots() {
    for (Shot& shot : Shots) {
        if (shot.state == SHOT_FLYING) UpdateShot(shot);
    }
}
