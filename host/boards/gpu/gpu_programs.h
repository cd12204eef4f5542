// The one program of the gpu board, for all states. Colours are counted in 0..255 throughout, as the cpu board does.
#pragma once

#include "boards/board.h"
#include "boards/gpu/gl.h"

#include <cstddef>

// The upper row of the picture lies at the bottom of OpenGL's, and so comes first in memory; that also makes upper
// edges belong to a triangle. With w always 1 everything is interpolated linearly on the screen.
inline const char* const GPU_VERTEX_PROGRAM = R"(layout(location = 0) in vec2 place;        // pixels
layout(location = 1) in vec3 perspective;  // 1 / W, s / W, t / W
layout(location = 2) in vec4 colour;
uniform bool isLine;
out vec3 overW;
out vec4 vertexColour;
void main() {
    vec2 pixels = isLine ? place : floor(place * 16.0 + 0.5) / 16.0;
    gl_Position = vec4(pixels * vec2(2.0 / 640.0, 2.0 / 480.0) - 1.0, 0.0, 1.0);
    overW = perspective;
    vertexColour = colour;
}
)";

// Describes the bound vertex array: the buffer bound to it holds BoardVertex records.
inline void DescribeVertices() {
    const auto attribute = [](GLuint location, GLint count, size_t offset) {
        gl::EnableVertexAttribArray(location);
        gl::VertexAttribPointer(location, count, GL_FLOAT, GL_FALSE, sizeof(BoardVertex),
                                reinterpret_cast<const void*>(offset));
    };
    attribute(0, 2, offsetof(BoardVertex, x));
    attribute(1, 3, offsetof(BoardVertex, oow));
    attribute(2, 4, offsetof(BoardVertex, r));
}

inline const char* const GPU_FRAGMENT_PROGRAM = R"(in vec3 overW;
in vec4 vertexColour;
out vec4 pixel;

uniform bool isLine;         // drawn in its colour alone
uniform sampler2D map;
uniform int alphaReference;  // -1: no test
uniform bool addsAlpha;
uniform bool hasFog;
uniform vec3 fogColour;
uniform vec2 fog[64];        // an entry of the table, and the difference to the next

// The depth code of 1 / W: four bits of exponent, twelve of mantissa.
int depthOf(float oow) {
    int bits = floatBitsToInt(oow);
    return bits <= 0 ? 0xFFFF : clamp((0x3F800000 - bits + 0x7FF) >> 11, 0, 0xFFFF);
}

// The exponent of the largest power of two that is not greater than `value`.
int exponentOf(float value) {
    return (floatBitsToInt(value) >> 23 & 0xFF) - 127;
}

// The level whose texels are nearest to the size of pixels, were the largest one 256 texels long.
int lodAt(vec2 st, float w) {
    vec3 toRight = dFdx(overW);
    vec3 down = dFdy(overW);
    vec2 perColumn = (toRight.yz - st * toRight.x) * w;
    vec2 perRow = (down.yz - st * down.x) * w;
    return (exponentOf(max(dot(perColumn, perColumn), dot(perRow, perRow))) + 1) >> 1;
}

vec4 texelAt(vec2 st, float w) {
    vec2 size = vec2(textureSize(map, 0));
    float longer = max(size.x, size.y);
    int level = lodAt(st, w) - 8 + exponentOf(longer);  // OpenGL clamps it to the levels that there are
    return textureLod(map, st / 256.0 * longer / size, float(level));
}

vec3 foggy(vec3 colour, int depth) {
    vec2 entry = fog[depth >> 10];
    float share = (entry.x + entry.y * float(depth >> 2 & 0xFF) / 256.0) / 255.0;
    return floor(mix(colour, fogColour, share) + 0.5);
}

void main() {
    vec4 scales = roundEven(clamp(vertexColour, 0.0, 255.0));
    if (isLine) {
        pixel = vec4(scales.rgb / 255.0, 0.0);
        gl_FragDepth = 0.0;
        return;
    }
    int depth = depthOf(overW.x);
    float w = 1.0 / overW.x;
    vec2 st = overW.yz * w;
    vec4 texel = floor(texelAt(st, w) * 255.0 + 0.5);
    if (alphaReference >= 0 && int(texel.a) != alphaReference) discard;
    vec3 colour = floor(texel.rgb * (scales.rgb + 1.0) / 256.0);
    if (addsAlpha) colour = min(colour + scales.a, 255.0);
    if (hasFog) colour = foggy(colour, depth);
    pixel = vec4(colour / 255.0, 0.0);
    gl_FragDepth = float(depth) / 65535.0;
}
)";
