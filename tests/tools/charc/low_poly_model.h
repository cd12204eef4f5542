// A rigged character as free libraries of low-poly models have them: 41 joints with fingers and end joints below a root
// on the ground, named as is usual, 5.9 units tall, looking along -z; tubes of 1,200 triangles; a few animations, of
// which the walk goes away.
#pragma once

#include <cstdint>
#include <vector>

std::vector<uint8_t> LowPolyModel();  // a .glb
