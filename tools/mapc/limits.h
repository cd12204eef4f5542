// What a world may hold at most, and the proof that no place in it touches too many polygons.
#pragma once

#include "formats/world_file.h"
#include "mapc/bsp_tree.h"
#include "mapc/mesh.h"
#include "mapc/placement.h"
#include "records/table_facts.h"
#include "records/walking_facts.h"

#include <string>
#include <vector>

constexpr int CONTACTS_MAX = CONTACT_LIMIT - 50;  // a margin below what ends the program

struct Count {
    std::string name;
    size_t value;
    size_t limit;
};

Count DepthCount(int treeDepth);
Count NodeCount(size_t nodes);
Count PolygonCount(size_t polygons);
constexpr double SIZE_MAX_UNITS = 65536;
// ContentError for a level that is larger along any axis, in engine units.
void CheckSize(const Brushes& brushes, double scale);
// Counts that do not fit the file's numbers; ContentError that lists all that are exceeded.
void CheckMesh(const std::string& file, const Tree& tree, const Mesh& mesh);
// All counts of a finished world.
std::vector<Count> CountWorld(const WorldFile& world, int treeDepth);
void CheckCounts(const std::string& file, const std::vector<Count>& counts);

struct Contacts {
    int count = 0;
    WorldVector place{};  // sphere centre
};
// Where MostContacts tries. ContentError for more than it can try in reasonable time.
void CheckPlacesToStand(const std::string& file, const WorldFile& world);
// The most polygons that one query of a moving player can gather, tried all over the walkable polygons.
Contacts MostContacts(const WorldFile& world);
