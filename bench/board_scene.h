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
    int columns, rows;  // quads in a layer
    bool nearFirst;
};
constexpr Scene SCENES[] = {{" 2,016 triangles, all drawn", 21, 16, false},
                            {" 2,016 triangles, one layer seen", 21, 16, true},
                            {"20,100 triangles, all drawn", 67, 50, false},
                            {"20,100 triangles, one layer seen", 67, 50, true}};

// Three vertices a triangle, counter-clockwise.
std::vector<GrVertex> Triangles(const Scene& scene);

constexpr int TEXTURE_SIDE = 256;
uint16_t Texel(size_t i);              // texel i in the board's format
std::vector<uint32_t> OpenGlTexels();  // all texels as 0xAARRGGBB

// Opens the board in the state in which the game draws a world, with fog and the texture. The texture's smallest level
// has a side of 1 << smallestLod. Ends the program when the board cannot be opened.
void OpenBoard(const Board& board, GrLOD_t smallestLod, float fogNear, float fogFar);

void DrawWithBoard(const std::vector<GrVertex>& vertices);  // returns when all is drawn
