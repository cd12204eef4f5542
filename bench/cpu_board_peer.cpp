#include "cpu_board_peer.h"

#define GL_GLEXT_PROTOTYPES
#include <SDL.h>
#include <SDL_opengl.h>
#include <SDL_opengl_glext.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int WIDTH = 640;
constexpr int HEIGHT = 480;

SDL_Window* window;
SDL_GLContext context;
std::vector<GLsizei> counts;  // of vertices

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
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_TEXTURE_2D);
}

void SetFog(float nearW, float farW) {
    const float colour[] = {0.6F, 0.7F, 0.8F, 1};
    glFogfv(GL_FOG_COLOR, colour);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogi(GL_FOG_COORD_SRC, GL_FOG_COORD);
    glFogf(GL_FOG_START, nearW);
    glFogf(GL_FOG_END, farW);
    glEnable(GL_FOG);
}

struct ClipVertex {
    float position[4];
    float texture[2];
    float w;
    uint8_t colour[4];
};

ClipVertex ToClip(const PeerVertex& vertex) {
    const float w = vertex.w;
    return {{(vertex.x * 2 / WIDTH - 1) * w, (vertex.y * 2 / HEIGHT - 1) * w, w - 2, w},
            {vertex.s / PEER_TEXTURE_SIDE, vertex.t / PEER_TEXTURE_SIDE},
            w,
            {vertex.colour[0], vertex.colour[1], vertex.colour[2], vertex.colour[3]}};
}

void PointToVertices() {
    const auto at = [](size_t offset) { return reinterpret_cast<const void*>(offset); };
    glVertexPointer(4, GL_FLOAT, sizeof(ClipVertex), at(offsetof(ClipVertex, position)));
    glTexCoordPointer(2, GL_FLOAT, sizeof(ClipVertex), at(offsetof(ClipVertex, texture)));
    glFogCoordPointer(GL_FLOAT, sizeof(ClipVertex), at(offsetof(ClipVertex, w)));
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(ClipVertex), at(offsetof(ClipVertex, colour)));
    for (const GLenum array :
         std::initializer_list<GLenum>{GL_VERTEX_ARRAY, GL_TEXTURE_COORD_ARRAY, GL_FOG_COORD_ARRAY, GL_COLOR_ARRAY})
        glEnableClientState(array);
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
    SetFog(fogNear, fogFar);
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
