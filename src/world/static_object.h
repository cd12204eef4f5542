// Static objects: the sky of a level.
#pragma once

void LoadStaticObject(const char* path);  // appends the object to WorldGeometry and fills SkyObject
void DrawSky();
