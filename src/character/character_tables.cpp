#include "character/character_tables.h"

Actor PlayerActor;
Actor* ActorList[ACTOR_LIST_SIZE];
int16_t ActorCount;

CharacterLight CharacterLightList[CHARACTER_LIGHT_COUNT];
int32_t CharacterLightCount;
LeafBin LeafBins[BSP_LEAVES_MAX];
