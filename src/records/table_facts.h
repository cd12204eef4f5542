// How much the game's tables hold. The game takes these numbers from here, and so do the tools that write files for the
// tables and check them. Data only.
#pragma once

#include <cstdint>

// --- The world

constexpr uint32_t BSP_NODES_MAX = 32768;
constexpr uint32_t BSP_LEAVES_MAX = 16384;  // RenderList entries from here on mean the character in a leaf
constexpr int BSP_DEPTH_MAX = 1024;         // nodes from the root to a leaf
constexpr uint32_t BSP_LEAF_POLYGONS_MAX =
    65536;                          // polygons of all leaves, a leaf counted once for every place it hangs at
constexpr int BSP_CORNERS_MIN = 3;  // least corners of a polygon that is drawn
constexpr int BSP_CORNERS_MAX = 12;
constexpr uint32_t INDICES_MAX = 65536;          // the numbers of planes, points and polygon corners are 16-bit
constexpr uint32_t POLYGON_NUMBERS_MAX = 32767;  // polygon numbers of the depth list are signed 16-bit

// Room beyond the world file's counts for the sky, the character and per-frame scratch.
constexpr uint32_t SPARE_PLANES = 3000;
constexpr uint32_t SPARE_POLYGONS = 3000;
constexpr uint32_t SPARE_POINTS = 9000;
constexpr uint32_t SPARE_POLY_VERTICES = 9000;
// What clipping one polygon takes of that room, above the static marks of each table. Loaders leave it free.
constexpr uint32_t CLIP_SCRATCH_ENTRIES = 100;

// --- Textures

constexpr uint32_t CHAR_TEXTURE_BASE = 93;  // the world's slots lie below, the character's from here on
constexpr uint32_t CHAR_TEXTURE_COUNT = 2;
constexpr uint32_t TEXTURES_MAX = 500;  // slots that the accelerator has room for
// These slots take turns, so that their picture moves.
constexpr uint32_t TEXTURE_CYCLE_FIRST = 10;
constexpr uint32_t TEXTURE_CYCLE_LENGTH = 5;

// --- The character

constexpr uint32_t BONES_MAX = 22;        // bones that weight blocks can name
constexpr uint32_t ANIM_TICK_UNITS = 5;   // animation time units a tick of 16 ms, 312.5 a second
constexpr uint32_t ANIM_START_TIME = 10;  // where animations start and loops wrap to

// --- Memory: what a level takes of the pool, in bytes

constexpr uint32_t POOL_BYTES = 0x800020;   // requested from malloc: 8 MiB and a granule
constexpr uint32_t POOL_GRANULE = 32;       // blocks are rounded up to it
constexpr uint32_t POOL_HEADER_BYTES = 32;  // in front of every block

// One entry of each of the world's tables. Those of planes, polygons, points and corners have the spare room as well.
constexpr uint32_t NODE_BYTES = 42;
constexpr uint32_t LEAF_BYTES = 44;
constexpr uint32_t LEAF_LIST_BYTES = 8;  // two entries a leaf in the list of what to draw
constexpr uint32_t PLANE_BYTES = 16;
constexpr uint32_t POLYGON_BYTES = 10;
constexpr uint32_t POLYGON_FRAME_BYTES = 20;
constexpr uint32_t POLYGON_STAMP_BYTES = 16;  // a stamp for each corner light byte
constexpr uint32_t POINT_BYTES = 24;
constexpr uint32_t VIEW_POINT_BYTES = 32;
constexpr uint32_t POINT_LIGHT_BYTES = 1;  // three such tables: outcode, light byte, its base
constexpr uint32_t POINT_STAMP_BYTES = 2;  // two such tables: light, character
constexpr uint32_t CORNER_BYTES = 16;      // two such tables: each renderer's coordinates
// The bytes of one entry in all tables together.
constexpr uint32_t LEAF_TABLES_BYTES = LEAF_BYTES + LEAF_LIST_BYTES;
constexpr uint32_t POLYGON_TABLES_BYTES = POLYGON_BYTES + POLYGON_FRAME_BYTES + POLYGON_STAMP_BYTES;
constexpr uint32_t POINT_TABLES_BYTES = POINT_BYTES + VIEW_POINT_BYTES + 3 * POINT_LIGHT_BYTES + 2 * POINT_STAMP_BYTES;
constexpr uint32_t CORNER_TABLES_BYTES = 2 * CORNER_BYTES;

constexpr uint32_t BONE_BYTES = 152;
constexpr uint32_t TEXTURE_RECORD_BYTES = 12;
constexpr uint32_t TEXTURE_RECORDS_OFFSET = 770;  // offset in texture.bin, which is kept in memory as it is
constexpr uint32_t TEXTURE_PAGE_BYTES = 65536;
constexpr uint32_t NORMAL_COUNTER_BYTES = 4;           // a point; given back before the frame is taken
constexpr uint32_t NORMAL_COUNTERS_BYTES_MIN = 35000;  // least size of the block that holds all of them
constexpr uint32_t OFFSCREEN_FRAME_BYTES = 1048576;
