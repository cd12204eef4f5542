// Sets the camera for a test.
#pragma once

#include "camera/camera_tables.h"
#include "math/vectors.h"

// Leaves the camera as UpdateCamera does. Angles in degrees.
inline void LookFrom(Vec3 eye, float pitch, float yaw) {
    CameraPos = eye;
    CameraAngles = {pitch, yaw, 0.0f};
    ViewRotationFromAngles(pitch, yaw, 0.0f, ViewMatrix.rotation);
    RotationFromAngles(pitch, yaw, 0.0f, CameraRotation);
    RotateVector(-eye.x, -eye.y, -eye.z, ViewMatrix.rotation);
    ViewMatrix.translation = RotatedVector;
}
