// The world file and its bounding radii.
#pragma once

void LoadBspWorld(const char* path);  // FatalError(0, ...): "No .BSP file found", "Not a valid BSP file", "Old BSP Version"
void ComputePolyFrames();
void GenerateNodeRadii();             // needs ScreenAspect
void SetStaticMarks();                // WorldGeometry.fixed = WorldGeometry.used
void ResetViewCache();                // both ViewPoint stamps of every point in use
void FillStamps(unsigned short value);  // every 16-bit and ViewPoint stamp, over its full capacity
