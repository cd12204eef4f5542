// Sphere contacts with the static world, and moving an actor through it.
//
// Planes point into the solid, so a move collides only when it goes towards the positive side. The contact list is
// in tree order (by the side of the query's centre), then polygon order; that order decides which of several touched
// polygons a move slides along.
#pragma once

#include "records/actor_record.h"
#include "records/walking_facts.h"

#include <cstdint>

extern int32_t ContactList[CONTACTS_MAX + 1];  // polygon numbers, ended by -1
extern int16_t ContactCount;

// Every world polygon that the sphere touches; the number of them. More than CONTACTS_MAX:
// FatalError(1, "Opps too many faces.\n", the level's world file).
int16_t WorldSphereContacts(int32_t x, int32_t y, int32_t z, int32_t radius);

// One frame's move by the actor's velocity: stops at what it crosses, slides along it, steps over low ledges. Writes
// position, velocity, onContact, contactSlope and ticksSinceContact; a velocity shorter than 1 changes nothing.
void MoveAgainstWorld(Actor& actor);
