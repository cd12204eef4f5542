#include "world/static_object.h"

#include "world/world_tables.h"

void LoadStaticObject(const char* /*path*/) {
    SkyObject = {};
}

void DrawSky() {}
