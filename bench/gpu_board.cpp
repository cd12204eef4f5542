// What the gpu board adds to OpenGL: the game's calls for each triangle, collected and handed over, against one draw
// call of the same triangles, which OpenGL holds already, with the same program and state. On one thread, where OpenGL
// draws in software; on a graphics card the ratios tell nothing.
#include "boards/gpu/gpu_board.h"
#include "boards/boards.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gpu_programs.h"
#include "host/glide.h"
#include "rounds.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int ROUNDS = 15;
constexpr int LAYERS = 3;
constexpr float NEAREST_W = 2000;
constexpr double PIXELS = 640.0 * 480 * LAYERS;
constexpr double TARGET = 1.2;

struct Scene {
    const char* name;
    int columns, rows;  // of quads in a layer
    bool nearFirst;
};
constexpr Scene SCENES[] = {{" 2,016 triangles, all drawn", 21, 16, false},
                            {" 2,016 triangles, one layer seen", 21, 16, true},
                            {"20,100 triangles, all drawn", 67, 50, false},
                            {"20,100 triangles, one layer seen", 67, 50, true}};

std::vector<GrVertex> Triangles(const Scene& scene) {
    std::vector<GrVertex> vertices;
    for (int layer = 0; layer < LAYERS; ++layer) {
        const float layerW = NEAREST_W * static_cast<float>(scene.nearFirst ? layer + 1 : LAYERS - layer);
        const auto at = [&](int column, int row) {
            const float x = static_cast<float>(640 * 16 * column / scene.columns) / 16;
            const float y = static_cast<float>(480 * 16 * row / scene.rows) / 16;
            const float oow = 1 / (layerW + static_cast<float>(row + column));
            return GrVertex{x, y, oow, 200, 180, x / 3, 16, {{x * oow, y * oow}}};
        };
        for (int row = 0; row < scene.rows; ++row)
            for (int column = 0; column < scene.columns; ++column) {
                const GrVertex a = at(column, row), c = at(column + 1, row + 1);
                vertices.insert(vertices.end(), {a, at(column, row + 1), c, a, c, at(column + 1, row)});
            }
    }
    return vertices;
}

uint16_t Texel(size_t i) {
    return static_cast<uint16_t>(i * 40503 >> 3 & 0x7FFF);
}

// ---- The board, as the game draws a world

void OpenGpuBoard() {
    CurrentBoard = &GpuBoard;
    if (!grSstWinOpen(nullptr, GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB, GR_ORIGIN_UPPER_LEFT, 2, 1))
        std::exit(EXIT_FAILURE);
    grColorCombine(GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA, GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED,
                   GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    grAlphaTestFunction(GR_CMP_EQUAL);
    grDepthBufferMode(GR_DEPTHBUFFER_WBUFFER);
    grDepthMask(FXTRUE);
    grCullMode(GR_CULL_POSITIVE);
    GrFog_t table[GR_FOG_TABLE_SIZE];
    guFogGenerateLinear(table, NEAREST_W / 2, 60000);
    grFogTable(table);
    grFogMode(GR_FOG_WITH_TABLE);
    const GrMipMapId_t texture =
        guTexAllocateMemory(GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, 256, 256, GR_TEXFMT_ARGB_1555, GR_MIPMAP_NEAREST,
                            GR_LOD_256, GR_LOD_256, GR_ASPECT_1x1, GR_TEXTURECLAMP_WRAP, GR_TEXTURECLAMP_WRAP,
                            GR_TEXTUREFILTER_BILINEAR, GR_TEXTUREFILTER_BILINEAR, 0, FXFALSE);
    std::vector<uint16_t> texels(256 * 256);
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = Texel(i);
    guTexDownloadMipMap(texture, texels.data(), nullptr);
    guTexSource(texture);
}

void DrawWithBoard(const std::vector<GrVertex>& vertices) {
    grBufferClear(0, 0, 0xFFFF);
    for (size_t i = 0; i < vertices.size(); i += 3)
        grDrawTriangle(&vertices[i], &vertices[i + 1], &vertices[i + 2]);
    grSstIdle();
}

// ---- OpenGL alone

GLuint program, frame, texture;

void MakeFrame() {
    GLuint buffers[2];
    gl::GenFramebuffers(1, &frame);
    gl::BindFramebuffer(GL_FRAMEBUFFER, frame);
    gl::GenRenderbuffers(2, buffers);
    const auto attach = [](GLuint buffer, GLenum format, GLenum place) {
        gl::BindRenderbuffer(GL_RENDERBUFFER, buffer);
        gl::RenderbufferStorage(GL_RENDERBUFFER, format, BOARD_WIDTH, BOARD_HEIGHT);
        gl::FramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, buffer);
    };
    attach(buffers[0], GL_RGBA8, GL_COLOR_ATTACHMENT0);
    attach(buffers[1], GL_DEPTH_COMPONENT16, GL_DEPTH_ATTACHMENT);
}

void MakeTexture() {
    std::vector<uint32_t> texels(256 * 256);
    for (size_t i = 0; i < texels.size(); ++i) {
        const uint32_t texel = Texel(i);
        texels[i] = (texel & 0x7C00) << 9 | (texel & 0x3E0) << 6 | (texel & 0x1F) << 3;
    }
    gl::GenTextures(1, &texture);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 256, 256, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, texels.data());
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
}

void MakeProgram() {
    std::string error;
    program = LinkGlProgram(GPU_VERTEX_PROGRAM, GPU_FRAGMENT_PROGRAM, error);
    gl::UseProgram(program);
    const auto place = [](const char* name) { return gl::GetUniformLocation(program, name); };
    gl::Uniform1i(place("isLine"), 0);
    gl::Uniform1i(place("alphaReference"), 0);
    gl::Uniform1i(place("addsAlpha"), 1);
    gl::Uniform1i(place("hasFog"), 1);
}

GLuint MakeVertexArray(const std::vector<GrVertex>& triangles) {
    std::vector<BoardVertex> vertices;
    for (const auto& [x, y, oow, r, g, b, a, unit] : triangles)
        vertices.push_back({x, y, oow, unit[0].sow, unit[0].tow, r, g, b, a});
    GLuint array = 0, buffer = 0;
    gl::GenVertexArrays(1, &array);
    gl::BindVertexArray(array);
    gl::GenBuffers(1, &buffer);
    gl::BindBuffer(GL_ARRAY_BUFFER, buffer);
    gl::BufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(BoardVertex)), vertices.data(),
                   GL_STATIC_DRAW);
    const auto attribute = [](GLuint location, GLint count, size_t offset) {
        gl::EnableVertexAttribArray(location);
        gl::VertexAttribPointer(location, count, GL_FLOAT, GL_FALSE, sizeof(BoardVertex),
                                reinterpret_cast<const void*>(offset));
    };
    attribute(0, 2, offsetof(BoardVertex, x));
    attribute(1, 3, offsetof(BoardVertex, oow));
    attribute(2, 4, offsetof(BoardVertex, r));
    return array;
}

void DrawAlone(GLuint array, GLsizei count) {
    gl::BindFramebuffer(GL_FRAMEBUFFER, frame);
    gl::UseProgram(program);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::BindSampler(0, 0);
    gl::BindVertexArray(array);
    gl::Enable(GL_DEPTH_TEST);
    gl::DepthFunc(GL_LESS);
    gl::DepthMask(GL_TRUE);
    gl::Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    gl::DrawArrays(GL_TRIANGLES, 0, count);
    gl::Finish();
}

}  // namespace

int main() {
    setenv("LP_NUM_THREADS", "0", 1);
    OpenGpuBoard();
    std::printf("One thread, a pixel; OpenGL: %s\n", reinterpret_cast<const char*>(gl::GetString(GL_RENDERER)));
    MakeFrame();
    MakeTexture();
    MakeProgram();
    Rounds rounds;
    for (const Scene& scene : SCENES) {
        const std::vector<GrVertex> vertices = Triangles(scene);
        const GLuint array = MakeVertexArray(vertices);
        rounds.Add("one draw call", PIXELS, [=] { DrawAlone(array, static_cast<GLsizei>(vertices.size())); });
        rounds.Add(scene.name, PIXELS, [=] { DrawWithBoard(vertices); });
    }
    rounds.Run(ROUNDS);
    for (size_t i = 0; i < std::size(SCENES); ++i) {
        rounds.Print(2 * i);
        rounds.PrintAgainst(2 * i + 1, 2 * i, TARGET);
    }
    return 0;
}
