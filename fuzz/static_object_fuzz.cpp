// The file sky.sob of a small world. What is loaded is looked at from every side.
#include "math/world_planes.h"
#include "platform/timer.h"
#include "support/game_file.h"
#include "support/small_world.h"
#include "support/software_frame.h"
#include "support/view.h"
#include "world/draw/draw_sky.h"
#include "world/static_object.h"

#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SetUpSoftwareFrame();
    const char* const path = BeginGameFile(data, size);
    PublishSmallWorld();
    try {
        LoadStaticObject(path);
    } catch (const FatalThrown&) {
        return 0;
    }
    GenerateVertexNormals();
    for (const auto& [pitch, yaw] : {std::pair{0.0f, 0.0f}, {-60.0f, 130.0f}}) {
        ++FrameCount;
        LookFrom({0, 0, 0}, pitch, yaw);
        DrawSky();
    }
    return 0;
}
