// The camera's view of the world, rebuilt by UpdateCamera every frame. Data only.
#pragma once

#include "records/matrices.h"
#include "records/vec3.h"

#include <cstdint>

constexpr int32_t CAMERA_FOLLOW = 0;
constexpr int32_t CAMERA_FREE = 1;

// World to view: x = row 0 . p + translation.x and so on. Row 1 is scaled by the screen aspect, so that the
// frustum is |x| <= z, |y| <= z.
struct ViewTransform {
    Matrix3 rotation;
    Vec3 translation;
};

extern int32_t CameraMode;  // CAMERA_FOLLOW or CAMERA_FREE; also written by DebugKeys and LoadLevel
extern Vec3 CameraPos;      // also written by LoadLevel
extern Vec3 CameraAngles;   // degrees: pitch, yaw, roll; also written by LoadLevel
extern ViewTransform ViewMatrix;
extern Matrix3 CameraRotation;  // unscaled; its transpose takes camera-space vectors to world space
