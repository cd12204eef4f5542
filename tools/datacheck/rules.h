// The rules that the engine's data must keep, by subject. Each check tells a Report what it finds.
#pragma once

#include "datacheck/character_data.h"
#include "datacheck/level_data.h"
#include "datacheck/report.h"

// Records and tree of a world. False: the tree cannot be walked, so the other rules of the world cannot be checked.
bool CheckTree(const LevelData& level, Report& report);
// Corners, winding, planes, shading kinds. False: there were faults, so rules that follow from the polygons' shapes are
// not worth checking.
bool CheckPolygons(const LevelData& level, Report& report);
void CheckSizes(const LevelData& level, Report& report);  // counts, depth, pool memory
void CheckBoxes(const LevelData& level, Report& report);  // boxes, cells and radii of leaves and nodes

// Painter's order, and walls without holes, both looked at along random rays.
void CheckSight(const LevelData& level, Report& report);
void CheckPaintersOrder(const LevelData& level, Report& report);  // the first half of it

// Where the player stands: the start, steps and walls as the movement takes them, polygons touched at once.
void CheckWalking(const LevelData& level, Report& report);
void CheckContactOrder(const LevelData& level, Report& report);  // a part of it: steps are walked up, not into

void CheckCeilings(const LevelData& level, Report& report);  // where a jump would lift the head into the storey above

void CheckLight(const LevelData& level, Report& report);       // lights.lmp against the world
void CheckLightSlots(const LevelData& level, Report& report);  // lights.alt against the world
void CheckTextures(const LevelData& level, Report& report);    // texture.bin, glidetex, and the world's use of them
void CheckSky(const LevelData& level, Report& report);         // sky.sob, and its use of texture.bin

// What is wrong with the corners as they lie in space; empty: nothing.
std::string FaultOfShape(const WorldFace& face);

void CheckCharacter(const CharacterData& character, Report& report);  // mesh, skins, weights and clips

void CheckLevel(const LevelData& level, Report& report);  // all of the above, as far as the files are there
