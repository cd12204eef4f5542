#include "world/draw/draw_view.h"

#include "app/app_tables.h"
#include "host/probe.h"
#include "render/raster.h"
#include "world/draw/draw_sky.h"
#include "world/draw/render_world.h"

// The sky lies behind everything else.
namespace {

void DrawSkyStage() {
    HostStage(HostStageName::Sky);
    if (SkyFlag != 0) DrawSky();
}

}  // namespace

void DrawView() {
    const bool nearestFirst = BeginNearestFirst();
    if (!nearestFirst) DrawSkyStage();
    HostStage(HostStageName::World);
    RenderWorld();
    if (nearestFirst) DrawSkyStage();
    HostStage(HostStageName::World);
    EndNearestFirst();
}
