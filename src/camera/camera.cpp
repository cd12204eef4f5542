#include "camera/camera.h"

#include "camera/camera_tables.h"
#include "character/character_tables.h"
#include "math/convert.h"
#include "math/vectors.h"
#include "platform/input.h"

#include <algorithm>

CameraMotion CameraState;

namespace {

constexpr float SMOOTHING = 4.0f;  // a quarter of the remaining way each frame
constexpr float PITCH_INSTEAD_OF_ZERO = 0.1f;
constexpr int LOOK_SCALE = 8;  // mouse counts a degree, free flight
constexpr int MOVE_SCALE = 4;

// Kept as it is: smoothing goes by frames, not by time.
void Approach(float& value, float goal) {
    value += (goal - value) / SMOOTHING;
}

void BuildRotations() {
    ViewRotationFromAngles(CameraAngles.x, CameraAngles.y, CameraAngles.z, ViewMatrix.rotation);
    RotationFromAngles(CameraAngles.x, CameraAngles.y, CameraAngles.z, CameraRotation);
}

void BuildTranslation() {
    RotateVector(CameraPos.x, CameraPos.y, CameraPos.z, ViewMatrix.rotation);
    ViewMatrix.translation = {-RotatedVector.x, -RotatedVector.y, -RotatedVector.z};
}

// The point `distance` world units behind the head point, against the direction of the view.
Vec3 PositionBehind(float distance) {
    const Vec3& target = CameraState.target;
    RotateVectorT(0.0f, 0.0f, -distance, CameraRotation);
    return {target.x + RotatedVector.x, target.y + RotatedVector.y + CAMERA_HEAD_HEIGHT, target.z + RotatedVector.z};
}

void TurnFollowCamera() {
    CameraMotion& state = CameraState;
    if (MouseInput.left != 0) {
        state.yawAccumulator += MouseInput.xMotion;
        state.pitchAccumulator += MouseInput.yMotion;
    }
    Approach(state.yawOffset, state.yawAccumulator);
    Approach(state.pitch, state.pitchAccumulator);
    // Kept as it is: the smoothed pitch is limited and the mouse's sum is not.
    state.pitch = std::clamp(state.pitch, CAMERA_PITCH_LOWEST, CAMERA_PITCH_HIGHEST);
    Approach(state.heading, PlayerActor.angles.y);
    CameraAngles.y = state.heading + state.yawOffset;
    // Kept as it is: a pitch of exactly 0 becomes 0.1.
    CameraAngles.x = state.pitch == 0.0f ? PITCH_INSTEAD_OF_ZERO : state.pitch;
    BuildRotations();
}

void FollowPlayer() {
    Vec3& target = CameraState.target;
    Approach(target.x, PlayerActor.position.x);
    Approach(target.y, PlayerActor.position.y);
    Approach(target.z, PlayerActor.position.z);
    TurnFollowCamera();

    CameraPos = PositionBehind(CAMERA_FOLLOW_DISTANCE);
    const Vec3 head = {target.x, target.y + CAMERA_HEAD_HEIGHT, target.z};
    const float clear = CameraRayDistance(head, CameraPos);
    CameraPos = PositionBehind(std::min(clear, static_cast<float>(CAMERA_FOLLOW_DISTANCE)) - CAMERA_WALL_MARGIN);
}

void FlyFree() {
    CameraMotion& state = CameraState;
    if (MouseInput.left != 0) {
        state.yawAccumulator -= static_cast<float>(MouseInput.xMotion / LOOK_SCALE);
        state.pitchAccumulator += static_cast<float>(MouseInput.yMotion / LOOK_SCALE);
    }
    if (MouseInput.buttons == 0) {
        state.moveX += static_cast<float>(MouseInput.xMotion / MOVE_SCALE);
        state.moveZ -= static_cast<float>(MouseInput.yMotion / MOVE_SCALE);
    }
    // Kept as it is: CameraRotation is still that of the previous frame here.
    RotateIntVectorT(TruncToInt(state.moveX), 0, TruncToInt(state.moveZ), CameraRotation);
    CameraPos.x += static_cast<float>(RotatedIntVector.x);
    CameraPos.y += static_cast<float>(RotatedIntVector.y);
    CameraPos.z += static_cast<float>(RotatedIntVector.z);
    Approach(state.moveX, 0.0f);
    Approach(state.moveZ, 0.0f);
    Approach(CameraAngles.x, state.pitchAccumulator);
    Approach(CameraAngles.y, state.yawAccumulator);
    BuildRotations();
}

}  // namespace

void UpdateCamera() {
    if (CameraMode == CAMERA_FOLLOW) FollowPlayer();
    if (CameraMode == CAMERA_FREE) FlyFree();
    BuildTranslation();
}

void PlaceCamera(const Vec3& position, const Vec3& angles) {
    CameraPos = position;
    CameraAngles = angles;
    BuildRotations();
    BuildTranslation();
}
