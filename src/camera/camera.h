// The follow camera, the free-flight camera and the ray probe that keeps the first out of walls. Angles in degrees,
// distances in world units. Everything is smoothed per frame, not per tick.
#pragma once

#include "camera/camera_tables.h"

constexpr int32_t CAMERA_FOLLOW_DISTANCE = 250;
constexpr float CAMERA_HEAD_HEIGHT = 60.0f;  // height of the point looked at above the follow target
constexpr float CAMERA_WALL_MARGIN = 20.0f;
constexpr float CAMERA_PITCH_HIGHEST = 15.0f;  // limit of the follow mode only; the free camera has none
constexpr float CAMERA_PITCH_LOWEST = -90.0f;

// What the two modes remember from frame to frame. Lives for the whole run: no level load resets it.
struct CameraMotion {
    Vec3 target;                             // smoothed player position
    float heading;                           // smoothed player heading
    float yawOffset, pitch;                  // smoothed mouse look of the follow mode
    float yawAccumulator, pitchAccumulator;  // raw mouse look, shared by both modes, unlimited
    float moveX, moveZ;                      // free-flight velocity in the camera's frame
};
extern CameraMotion CameraState;

// One step of CameraMode from MouseInput and PlayerActor, then ViewMatrix and CameraRotation. The follow camera comes
// to rest 230 units from the head point, or 20 in front of the nearest wall in between; where a wall is nearer to the
// head than that, in front of the head.
void UpdateCamera();

// Puts the camera there, and rebuilds ViewMatrix and CameraRotation.
void PlaceCamera(const Vec3& position, const Vec3& angles);

// Distance from start to the nearest world polygon that faces it on the line towards end and beyond; the length of the
// segment when there is none. Overwrites SideTestPoint. Sides are taken from start cut to whole numbers.
float CameraRayDistance(const Vec3& start, const Vec3& end);
