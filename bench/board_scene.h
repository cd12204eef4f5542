// What the benches of both boards draw: three layers over the whole screen in large and in small triangles, far to near
// (every pixel is drawn) and near to far (one layer is).
#pragma once

#include "boards/boards.h"
#include "host/glide.h"

#include <vector>

constexpr int LAYERS = 3;
constexpr double PIXELS = 640.0 * 480 * LAYERS;

struct Scene {
    const char* name;
    int columns, rows;  // of quads in a layer
    bool nearFirst;
};
constexpr Scene SCENES[] = {{" 2,016 triangles, all drawn", 21, 16, false},
                            {" 2,016 triangles, one layer seen", 21, 16, true},
                            {"20,100 triangles, all drawn", 67, 50, false},
                            {"20,100 triangles, one layer seen", 67, 50, true}};

// Three vertices a triangle, counter-clockwise.
std::vector<GrVertex> Triangles(const Scene& scene);

constexpr int TEXTURE_SIDE = 256;
uint16_t Texel(size_t i);              // as the board has it
std::vector<uint32_t> OpenGlTexels();  // the same as 0xAARRGGBB

// The end of the program when there is none. In the state in which the game draws a world, with fog and the texture,
// whose smallest level has a side of 1 << smallestLod.
void OpenBoard(const Board& board, GrLOD_t smallestLod, float fogNear, float fogFar);

void DrawWithBoard(const std::vector<GrVertex>& vertices);  // until it is done
