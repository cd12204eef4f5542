#include "app/debug_keys.h"

#include "app/load_level.h"
#include "app/shots.h"
#include "camera/camera_tables.h"
#include "math/convert.h"
#include "platform/input.h"
#include "render/fog.h"
#include "render/glide_screen.h"
#include "render/render_tables.h"
#include "world/light_map.h"
#include "world/world_tables.h"

#include <cstdio>

namespace {

constexpr float DISTANCE_STEP = 100.0f;
constexpr float FAR_DISTANCE_MIN = 1.0f;
constexpr float LIGHT_STEP = 0.02f;
constexpr int32_t LIGHT_MODE_MASK = 3;

void ToggleFog() {
    // Kept as it is: the first press gives outlines, because FogSwitch starts on.
    FogSwitch = FogSwitch == 0 ? 1 : 0;
    if (GlideActive()) SetFogSwitchStates(FogSwitch != 0);
}

// Raises or lowers the distance while one of the two keys is held. Returns whether at least one is.
bool StepDistance(float& distance, uint8_t raiseKey, uint8_t lowerKey) {
    const bool raise = KeyDown(raiseKey);
    const bool lower = KeyDown(lowerKey);
    if (raise) distance += DISTANCE_STEP;
    if (lower) distance -= DISTANCE_STEP;
    return raise || lower;
}

void DistanceKeys() {
    const bool farHeld = StepDistance(FarDistance, DIK_O, DIK_L);
    if (KeyDown(DIK_L) && FarDistance < FAR_DISTANCE_MIN) FarDistance = FAR_DISTANCE_MIN;
    const bool fadeHeld = StepDistance(FadeDistance, DIK_I, DIK_K);
    const bool nearHeld = StepDistance(FogNearDistance, DIK_U, DIK_J);
    // Kept as it is: the fade distance is held, and the near distance has no lower end.
    if (FadeDistance < FogNearDistance) FadeDistance = FogNearDistance;
    if (GlideActive() && (farHeld || fadeHeld || nearHeld)) ReloadFogTable();
}

void StepLight(float& value, uint8_t lowerKey, uint8_t raiseKey) {
    if (KeyHit(lowerKey)) {
        value -= LIGHT_STEP;
        ApplyLightLevel();
    }
    if (KeyHit(raiseKey)) {
        value += LIGHT_STEP;
        ApplyLightLevel();
    }
}

}  // namespace

void DebugKeys() {
    if (KeyHit(DIK_F8))
        std::printf("Camera Coords     %d, %d, %d \n", TruncToInt(CameraPos.x), TruncToInt(CameraPos.y),
                    TruncToInt(CameraPos.z));
    // Kept as it is: without ApplyLightLevel, so software shows it only after the next change of a light level.
    if (KeyHit(DIK_D)) LightMode = (LightMode + 1) & LIGHT_MODE_MASK;
    if ((Controls & CTL_RCTRL) != 0) FireShot();
    if (KeyHit(DIK_F5)) CameraMode = CAMERA_FOLLOW;
    if (KeyHit(DIK_F6)) CameraMode = CAMERA_FREE;
    if (KeyHit(DIK_W)) ToggleFog();
    if (KeyDown(DIK_R)) ResetToLevelStart();
    DistanceKeys();
    StepLight(LightLevel, DIK_Y, DIK_H);
    StepLight(LightContrast, DIK_T, DIK_G);
}
