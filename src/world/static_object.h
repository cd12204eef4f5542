// Static objects (.sob): a mesh with planes and texture coordinates of its own. Each level has one, its sky.
//
// File: big-endian "Esob", version 9, polygon count, point count and a value that is skipped; then little-endian three
// f32 a point, and the polygons one after another: u8 texture, two bytes that are skipped, the plane's four numbers as
// f32 with four bytes between, u8 corner count, and a corner's u16 point, f32 u and v. Bytes after them are allowed.
#pragma once

#include <cstdint>

constexpr uint32_t STATIC_OBJECT_MAGIC = 0x45736f62;  // "Esob"
constexpr uint32_t STATIC_OBJECT_VERSION = 9;
constexpr int STATIC_OBJECT_CORNERS_MAX = 127;  // those with less than 3 or more than 12 are loaded but not drawn

// Appends the object to WorldGeometry, moves the static marks behind it and says in SkyObject where it lies. 1: done;
// 0: there is no such file, or it is none ("Not a valid .SOB file." on standard output), and SkyObject is empty.
// FatalError(0, path): "Old SOB Version"; "Not a valid static object file": too short, a corner count outside 1..127, a
// point beyond its table, a position or texture coordinate that is not finite (a plane may be anything, nobody reads
// it); "No room for the static object": more than WorldGeometry has room for.
int32_t LoadStaticObject(const char* path);
