#include "camera/camera_tables.h"

int32_t CameraMode = CAMERA_FOLLOW;
Vec3 CameraPos;
Vec3 CameraAngles = {10.0f, 0.0f, 0.0f};
ViewTransform ViewMatrix;
Matrix3 CameraRotation;
