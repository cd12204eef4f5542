// The follow camera, the free-flight camera and the ray probe that keeps the first out of walls.
#pragma once

#include "camera/camera_tables.h"

void UpdateCamera();  // one step of CameraMode, then ViewMatrix and CameraRotation

// Distance from start to the nearest world polygon that faces it on the line towards end; the length of the
// segment when there is none.
float CameraRayDistance(const Vec3& start, const Vec3& end);
