// What the gpu board adds to OpenGL. The game's calls for each triangle, collected and handed over, are compared with
// one draw call of the same triangles, which OpenGL already holds, with the same program and state. OpenGL draws in
// software here, on one thread; with a graphics card the ratios mean nothing.
#include "boards/gpu/gpu_board.h"
#include "board_scene.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gpu_programs.h"
#include "rounds.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int ROUNDS = 15;
constexpr double TARGET = 1.2;

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
    const std::vector<uint32_t> texels = OpenGlTexels();
    gl::GenTextures(1, &texture);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, TEXTURE_SIDE, TEXTURE_SIDE, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                   texels.data());
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
    DescribeVertices();
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
    OpenBoard(GpuBoard, GR_LOD_256, 1000, 60000);
    std::printf("One thread, a pixel; OpenGL: %s\n", reinterpret_cast<const char*>(gl::GetString(GL_RENDERER)));
    MakeFrame();
    MakeTexture();
    MakeProgram();
    Rounds rounds;
    for (const Scene& scene : SCENES) {
        const std::vector<GrVertex> vertices = Triangles(scene);
        const GLuint array = MakeVertexArray(vertices);
        rounds.Add("one draw call", PIXELS, [=] { DrawAlone(array, static_cast<GLsizei>(vertices.size())); });
        rounds.Add(scene.name, PIXELS, [=] {
            grBufferClear(0, 0, 0xFFFF);
            DrawWithBoard(vertices);
        });
    }
    rounds.Run(ROUNDS);
    for (size_t i = 0; i < std::size(SCENES); ++i) {
        rounds.Print(2 * i);
        rounds.PrintAgainst(2 * i + 1, 2 * i, TARGET);
    }
    return 0;
}
