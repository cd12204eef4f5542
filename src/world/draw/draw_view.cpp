#include "world/draw/draw_view.h"

#include "app/app_tables.h"
#include "render/raster.h"
#include "world/draw/draw_sky.h"
#include "world/draw/render_world.h"

// The sky lies behind everything else.
void DrawView() {
    const bool nearestFirst = BeginNearestFirst();
    if (SkyFlag != 0 && !nearestFirst) DrawSky();
    RenderWorld();
    if (SkyFlag != 0 && nearestFirst) DrawSky();
    EndNearestFirst();
}
