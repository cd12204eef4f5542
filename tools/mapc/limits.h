// What a world may hold at most, and the proof that no place in it touches too many polygons.
#pragma once

#include "formats/world_file.h"
#include "mapc/bsp_tree.h"
#include "mapc/counts.h"
#include "mapc/mesh.h"
#include "mapc/placement.h"
#include "records/table_facts.h"
#include "records/walking_facts.h"

#include <string>
#include <vector>

constexpr int LEVEL_CONTACTS_MAX = CONTACTS_MAX - 50;  // a margin below what ends the program

constexpr double LEVEL_SIZE_MAX = 65536;
// ContentError for a level that is larger along any axis, in engine units.
void CheckSize(const Brushes& brushes, double scale);
double DiagonalOf(const WorldFile& world);  // engine units, of the box of all points
// All counts of a finished world.
std::vector<Count> CountWorld(const WorldFile& world, int treeDepth);

// Reach of a query at the speed of a long fall, engine units.
constexpr double CONTACTS_REACH = 120 / 2 + double{GATHER_MARGIN};
struct Contacts {
    int count = 0;
    WorldVector place{};  // sphere centre
};
// Where MostContacts tries, against what it can try in reasonable time.
Count PlacesToStand(const WorldFile& world);
// The most polygons that one query of a moving player can gather, tried all over the walkable polygons.
Contacts MostContacts(const WorldFile& world);
