#include "cpu_board_peer.h"

#define GL_GLEXT_PROTOTYPES
#include <SDL.h>
#include <SDL_opengl.h>
#include <SDL_opengl_glext.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int WIDTH = 640;
constexpr int HEIGHT = 480;

SDL_Window* window;
SDL_GLContext context;
float fogNearW, fogFarW;
std::vector<GLsizei> counts;  // vertices of each scene

void MakeTarget() {
    GLuint frame, buffers[2];
    glGenFramebuffers(1, &frame);
    glBindFramebuffer(GL_FRAMEBUFFER, frame);
    glGenRenderbuffers(2, buffers);
    const auto attach = [](GLuint buffer, GLenum format, GLenum place) {
        glBindRenderbuffer(GL_RENDERBUFFER, buffer);
        glRenderbufferStorage(GL_RENDERBUFFER, format, WIDTH, HEIGHT);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, buffer);
    };
    attach(buffers[0], GL_RGB565, GL_COLOR_ATTACHMENT0);
    attach(buffers[1], GL_DEPTH_COMPONENT16, GL_DEPTH_ATTACHMENT);
    glViewport(0, 0, WIDTH, HEIGHT);
}

void MakeTexture(const std::vector<uint32_t>& texels) {
    GLuint texture;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, PEER_TEXTURE_SIDE, PEER_TEXTURE_SIDE, 0, GL_BGRA, GL_UNSIGNED_BYTE,
                 texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

constexpr const char* VERTEX_SHADER = R"(#version 120
attribute vec4 place;
attribute vec2 texel;
attribute float fogShare;
attribute vec4 colour;
varying vec2 st;
varying vec4 tint;
varying float fog;
void main() {
    gl_Position = place;
    st = texel;
    tint = colour;
    fog = fogShare;
})";

constexpr const char* FRAGMENT_SHADER = R"(#version 120
uniform sampler2D image;
varying vec2 st;
varying vec4 tint;
varying float fog;
void main() {
    gl_FragColor = vec4(mix(texture2D(image, st).rgb * tint.rgb, vec3(0.6, 0.7, 0.8), fog), 1.0);
})";

void MakeProgram() {
    const GLuint program = glCreateProgram();
    const auto add = [program](GLenum kind, const char* source) {
        const GLuint shader = glCreateShader(kind);
        glShaderSource(shader, 1, &source, nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
    };
    add(GL_VERTEX_SHADER, VERTEX_SHADER);
    add(GL_FRAGMENT_SHADER, FRAGMENT_SHADER);
    constexpr const char* NAMES[] = {"place", "texel", "fogShare", "colour"};
    for (GLuint i = 0; i < std::size(NAMES); ++i)
        glBindAttribLocation(program, i, NAMES[i]);
    glLinkProgram(program);
    glUseProgram(program);
}

struct ClipVertex {
    float position[4];
    float texture[2];
    float fog;
    uint8_t colour[4];
};

ClipVertex ToClip(const PeerVertex& vertex) {
    const float w = vertex.w;
    return {{(vertex.x * 2 / WIDTH - 1) * w, (vertex.y * 2 / HEIGHT - 1) * w, w - 2, w},
            {vertex.s / PEER_TEXTURE_SIDE, vertex.t / PEER_TEXTURE_SIDE},
            std::clamp((w - fogNearW) / (fogFarW - fogNearW), 0.0f, 1.0f),
            {vertex.colour[0], vertex.colour[1], vertex.colour[2], vertex.colour[3]}};
}

void PointToVertices() {
    const auto point = [](GLuint attribute, GLint size, GLenum type, size_t offset) {
        glVertexAttribPointer(attribute, size, type, type == GL_UNSIGNED_BYTE, sizeof(ClipVertex),
                              reinterpret_cast<const void*>(offset));
        glEnableVertexAttribArray(attribute);
    };
    point(0, 4, GL_FLOAT, offsetof(ClipVertex, position));
    point(1, 2, GL_FLOAT, offsetof(ClipVertex, texture));
    point(2, 1, GL_FLOAT, offsetof(ClipVertex, fog));
    point(3, 4, GL_UNSIGNED_BYTE, offsetof(ClipVertex, colour));
}

}  // namespace

bool OpenPeer(int threads, const std::vector<uint32_t>& texels, float fogNear, float fogFar) {
    setenv("LP_NUM_THREADS", std::to_string(threads).c_str(), 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    setenv("SDL_VIDEODRIVER", "offscreen", 1);
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) return false;
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
    window = SDL_CreateWindow("", 0, 0, WIDTH, HEIGHT, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    context = window ? SDL_GL_CreateContext(window) : nullptr;
    if (!context || !std::strstr(PeerName(), "llvmpipe")) {
        ClosePeer();
        return false;
    }
    MakeTarget();
    MakeTexture(texels);
    MakeProgram();
    fogNearW = fogNear;
    fogFarW = fogFar;
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    return true;
}

void ClosePeer() {
    if (context) SDL_GL_DeleteContext(context);
    if (window) SDL_DestroyWindow(window);
    context = nullptr;
    window = nullptr;
    counts.clear();
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

const char* PeerName() {
    return reinterpret_cast<const char*>(glGetString(GL_RENDERER));
}

size_t AddPeerScene(const std::vector<PeerVertex>& triangles) {
    std::vector<ClipVertex> vertices;
    for (const PeerVertex& vertex : triangles)
        vertices.push_back(ToClip(vertex));
    GLuint buffer;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(ClipVertex)), vertices.data(),
                 GL_STATIC_DRAW);
    counts.push_back(static_cast<GLsizei>(vertices.size()));
    return counts.size() - 1;  // buffers are numbered from 1
}

void DrawPeerScene(size_t scene) {
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(scene) + 1);
    PointToVertices();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDrawArrays(GL_TRIANGLES, 0, counts[scene]);
    glFinish();
}
