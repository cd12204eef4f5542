#include "boards/gpu/gpu_board.h"

#include "boards/boards.h"

#include "boards/gpu/gl_context.h"
#include "boards/gpu/gpu_lines.h"
#include "boards/gpu/gpu_programs.h"
#include "machine/game.h"
#include "machine/machine.h"
#include "machine/picture_area.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

struct Uniforms {
    GLint isLine, alphaReference, addsAlpha, hasFog, fogColour, fog;
};

struct Buffer {
    GLuint frame, colour;
};

GLuint program = 0, vertexArray = 0, vertexBuffer = 0, depthBuffer = 0;
GLuint samplers[4];  // wrapping in s: 1, in t: 2
Uniforms uniforms;
Buffer back, front;
GLsizei width = 0, height = 0;
uint32_t scale = 1;
std::vector<GLuint> textures;

std::vector<uint32_t> frontPixels;
bool frontIsRead = false;

// What OpenGL has been told, so that it is told only what changes.
bool drawsLines = false;
std::optional<BoardState> current;

Uniforms FindUniforms() {
    const auto find = [](const char* name) { return gl::GetUniformLocation(program, name); };
    return {find("isLine"), find("alphaReference"), find("addsAlpha"), find("hasFog"), find("fogColour"), find("fog")};
}

void MakeVertexArray() {
    gl::GenVertexArrays(1, &vertexArray);
    gl::BindVertexArray(vertexArray);
    gl::GenBuffers(1, &vertexBuffer);
    gl::BindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    DescribeVertices();
}

void MakeSamplers() {
    gl::GenSamplers(4, samplers);
    for (GLuint i = 0; i < 4; ++i) {
        gl::SamplerParameteri(samplers[i], GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
        gl::SamplerParameteri(samplers[i], GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        gl::SamplerParameteri(samplers[i], GL_TEXTURE_WRAP_S, i & 1 ? GL_REPEAT : GL_CLAMP_TO_EDGE);
        gl::SamplerParameteri(samplers[i], GL_TEXTURE_WRAP_T, i & 2 ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    }
}

GLuint MakeColourTexture() {
    GLuint texture = 0;
    gl::GenTextures(1, &texture);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

// Makes a colour buffer, front or back. Both share the depth buffer.
bool MakeBuffer(Buffer& buffer) {
    buffer.colour = MakeColourTexture();
    gl::GenFramebuffers(1, &buffer.frame);
    gl::BindFramebuffer(GL_FRAMEBUFFER, buffer.frame);
    gl::FramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, buffer.colour, 0);
    gl::FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depthBuffer);
    if (gl::CheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) return false;
    gl::ClearColor(0, 0, 0, 0);
    gl::ClearDepth(1);
    gl::DepthMask(GL_TRUE);
    gl::ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl::Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    return true;
}

constexpr int SCALE_MAX = 8;

// OpenGL drawn by the processor would take several times as long for a picture of several times the size.
uint32_t ChooseScale() {
    if (BoardScale != 0) return BoardScale;
    if (!CurrentMachine->windowSize || GlIsSoftware()) return 1;
    int windowWidth = 0, windowHeight = 0;
    CurrentMachine->windowSize(&windowWidth, &windowHeight);
    return static_cast<uint32_t>(
        std::min(CoveringScale(BOARD_WIDTH, BOARD_HEIGHT, windowWidth, windowHeight), SCALE_MAX));
}

bool MakeBuffers(std::string& error) {
    GLint most = 0;
    gl::GetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    scale = ChooseScale();
    width = BOARD_WIDTH * static_cast<GLsizei>(scale);
    height = BOARD_HEIGHT * static_cast<GLsizei>(scale);
    gl::GenRenderbuffers(1, &depthBuffer);
    gl::BindRenderbuffer(GL_RENDERBUFFER, depthBuffer);
    if (width <= most) gl::RenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT16, width, height);
    if (width <= most && MakeBuffer(back) && MakeBuffer(front) && gl::GetError() == GL_NO_ERROR) return true;
    error = "this OpenGL does not draw into pictures of " + std::to_string(width) + " x " + std::to_string(height);
    return false;
}

void Close() {
    gl::DeleteTextures(static_cast<GLsizei>(textures.size()), textures.data());
    textures.clear();
    for (Buffer* buffer : {&back, &front}) {
        gl::DeleteFramebuffers(1, &buffer->frame);
        gl::DeleteTextures(1, &buffer->colour);
        *buffer = {};
    }
    gl::DeleteRenderbuffers(1, &depthBuffer);
    gl::DeleteSamplers(4, samplers);
    gl::DeleteBuffers(1, &vertexBuffer);
    gl::DeleteVertexArrays(1, &vertexArray);
    gl::DeleteProgram(program);
    frontPixels = {};
}

bool Open(std::string& error) {
    if (!EnterGl(error)) return false;
    program = LinkGlProgram(GPU_VERTEX_PROGRAM, GPU_FRAGMENT_PROGRAM, error);
    if (program == 0) return false;
    uniforms = FindUniforms();
    MakeVertexArray();
    MakeSamplers();
    frontIsRead = false;
    if (MakeBuffers(error)) return true;
    Close();
    return false;
}

void LoadTexture(uint32_t number, TextureImage image) {
    if (textures.size() <= number) textures.resize(number + 1);
    if (textures[number] == 0) gl::GenTextures(1, &textures[number]);
    gl::ActiveTexture(GL_TEXTURE0);
    gl::BindTexture(GL_TEXTURE_2D, textures[number]);
    gl::PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    const auto levels = static_cast<GLint>(image.levels.size());
    for (GLint i = 0; i < levels; ++i) {
        const TextureLevel& level = image.levels[static_cast<size_t>(i)];
        gl::TexImage2D(GL_TEXTURE_2D, i, GL_RGBA8, static_cast<GLsizei>(level.width),
                       static_cast<GLsizei>(level.height), 0, GL_RGBA, GL_UNSIGNED_BYTE, RedFirst(level.texels).data());
    }
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, levels - 1);
}

void SetFog(const FogTable& fog) {
    GLfloat entries[64][2];
    for (size_t i = 0; i < 64; ++i) {
        entries[i][0] = fog.entries[i];
        entries[i][1] = static_cast<GLfloat>(fog.entries[std::min<size_t>(i + 1, 63)] - fog.entries[i]);
    }
    gl::Uniform2fv(uniforms.fog, 64, entries[0]);
    gl::Uniform3f(uniforms.fogColour, static_cast<GLfloat>(fog.colour >> 16 & 0xFF),
                  static_cast<GLfloat>(fog.colour >> 8 & 0xFF), static_cast<GLfloat>(fog.colour & 0xFF));
}

void SetDepthTest(const BoardState& state) {
    if (state.testsDepth || state.writesDepth)
        gl::Enable(GL_DEPTH_TEST);
    else
        gl::Disable(GL_DEPTH_TEST);
    gl::DepthFunc(state.testsDepth ? GL_LESS : GL_ALWAYS);
    gl::DepthMask(state.writesDepth);
}

void SetState(const BoardState& state) {
    const auto changes = [&](auto BoardState::*field) { return !current || state.*field != (*current).*field; };
    if (changes(&BoardState::texture)) gl::BindTexture(GL_TEXTURE_2D, textures[state.texture]);
    if (changes(&BoardState::wrapS) || changes(&BoardState::wrapT))
        gl::BindSampler(0, samplers[(state.wrapS ? 1 : 0) + (state.wrapT ? 2 : 0)]);
    if (changes(&BoardState::addsAlpha)) gl::Uniform1i(uniforms.addsAlpha, state.addsAlpha);
    if (changes(&BoardState::testsAlpha) || changes(&BoardState::alphaReference))
        gl::Uniform1i(uniforms.alphaReference, state.testsAlpha ? state.alphaReference : -1);
    if (changes(&BoardState::hasFog)) gl::Uniform1i(uniforms.hasFog, state.hasFog);
    if (changes(&BoardState::fog)) SetFog(state.fog);
    if (drawsLines || changes(&BoardState::testsDepth) || changes(&BoardState::writesDepth)) SetDepthTest(state);
    if (drawsLines) gl::Uniform1i(uniforms.isLine, drawsLines = false);
    current = state;
}

void SetLineState() {
    if (drawsLines) return;
    gl::Uniform1i(uniforms.isLine, drawsLines = true);
    gl::Disable(GL_DEPTH_TEST);
}

void Clear(const BoardRun& run) {
    if (run.action == BoardAction::ClearColour) {
        gl::ClearColor(static_cast<GLfloat>(run.value >> 16 & 0xFF) / 255,
                       static_cast<GLfloat>(run.value >> 8 & 0xFF) / 255, static_cast<GLfloat>(run.value & 0xFF) / 255,
                       0);
        gl::Clear(GL_COLOR_BUFFER_BIT);
        return;
    }
    gl::DepthMask(GL_TRUE);
    gl::ClearDepth(run.value / 65535.0);
    gl::Clear(GL_DEPTH_BUFFER_BIT);
    if (current) gl::DepthMask(current->writesDepth);
}

// Sets every state anew: the window's pictures are drawn with the same context, which changes all states.
void BeginDrawing() {
    gl::BindFramebuffer(GL_FRAMEBUFFER, back.frame);
    gl::Viewport(0, 0, width, height);
    constexpr GLenum UNUSED[] = {GL_BLEND, GL_CULL_FACE, GL_SCISSOR_TEST, GL_DITHER, GL_DEPTH_TEST};
    std::for_each(std::begin(UNUSED), std::end(UNUSED), gl::Disable);
    gl::ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl::UseProgram(program);
    gl::ActiveTexture(GL_TEXTURE0);
    gl::BindVertexArray(vertexArray);
    current.reset();
    drawsLines = true;
    gl::Uniform1i(uniforms.isLine, GL_TRUE);
}

// Uploads the frame's vertices, and behind them the triangles that draw its lines.
void Upload(const BoardFrame& frame) {
    std::vector<BoardVertex> lines;
    for (const BoardRun& run : frame.runs)
        if (run.action == BoardAction::Lines) AppendLines(&frame.vertices[run.first], run.count, lines);
    const auto bytes = [](const std::vector<BoardVertex>& vertices) {
        return static_cast<GLsizeiptr>(vertices.size() * sizeof(BoardVertex));
    };
    gl::BindBuffer(GL_ARRAY_BUFFER, vertexBuffer);
    gl::BufferData(GL_ARRAY_BUFFER, bytes(frame.vertices) + bytes(lines), nullptr, GL_STREAM_DRAW);
    // A browser's OpenGL takes a length of 0 for all the memory there is.
    if (!frame.vertices.empty()) gl::BufferSubData(GL_ARRAY_BUFFER, 0, bytes(frame.vertices), frame.vertices.data());
    if (!lines.empty()) gl::BufferSubData(GL_ARRAY_BUFFER, bytes(frame.vertices), bytes(lines), lines.data());
}

void StopOnError() {
    const GLenum code = gl::GetError();
    if (code == GL_NO_ERROR) return;
    char text[160];
    std::snprintf(text, sizeof text,
                  "The graphics card has given up drawing (OpenGL error 0x%04X).\n"
                  "Start again; with --board cpu the processor draws.",
                  code);
    CurrentMachine->messageBox(text, CurrentGame->title);
    std::exit(EXIT_FAILURE);
}

void Draw(const BoardFrame& frame) {
    BeginDrawing();
    Upload(frame);
    auto nextLine = static_cast<GLint>(frame.vertices.size());
    for (const BoardRun& run : frame.runs) {
        switch (run.action) {
        case BoardAction::Triangles:
            SetState(frame.states[run.state]);
            gl::DrawArrays(GL_TRIANGLES, static_cast<GLint>(run.first), static_cast<GLsizei>(run.count));
            break;
        case BoardAction::Lines: {
            SetLineState();
            const auto count = static_cast<GLsizei>(run.count / 2 * GPU_LINE_VERTICES);
            gl::DrawArrays(GL_TRIANGLES, nextLine, count);
            nextLine += count;
            break;
        }
        case BoardAction::ClearColour:
        case BoardAction::ClearDepth: Clear(run); break;
        }
    }
    StopOnError();
}

void Swap() {
    std::swap(back, front);
    frontIsRead = false;
}

const uint32_t* Front(uint32_t& pitch) {
    pitch = static_cast<uint32_t>(width);
    if (!frontIsRead) {
        frontPixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
        gl::BindFramebuffer(GL_FRAMEBUFFER, front.frame);
        gl::PixelStorei(GL_PACK_ALIGNMENT, 4);
        gl::ReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, frontPixels.data());
        frontPixels = RedFirst(frontPixels);
        frontIsRead = true;
    }
    return frontPixels.data();
}

// Without a graphics card the cpu board is faster than OpenGL drawn by the processor.
bool HasGraphicsCard(std::string& why) {
    if (MayHaveGraphicsCard()) {
        if (!EnterGl(why)) return false;
        if (!GlIsSoftware()) return true;
    }
    why = "there is no graphics card behind OpenGL";
    return false;
}

}  // namespace

const Board GpuBoard = {
    .name = "gpu",
    .suits = HasGraphicsCard,
    .open = Open,
    .close = Close,
    .loadTexture = LoadTexture,
    .draw = Draw,
    .finish = [] { gl::Finish(); },
    .swap = Swap,
    .scale = [] { return scale; },
    .front = Front,
    .frontTexture = [] { return uint32_t{front.colour}; },
};
