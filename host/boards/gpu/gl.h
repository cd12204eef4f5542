// OpenGL 3.3 core, of which only what OpenGL ES 3.0 has too is used: gl::Clear is glClear, once LoadGl has been called.
// Nothing is linked for it.
#pragma once

#include <GL/glcorearb.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#define GL_FUNCTIONS(F)                                                                                                \
    F(ActiveTexture, ACTIVETEXTURE)                                                                                    \
    F(AttachShader, ATTACHSHADER)                                                                                      \
    F(BindBuffer, BINDBUFFER)                                                                                          \
    F(BindFramebuffer, BINDFRAMEBUFFER)                                                                                \
    F(BindRenderbuffer, BINDRENDERBUFFER)                                                                              \
    F(BindSampler, BINDSAMPLER)                                                                                        \
    F(BindTexture, BINDTEXTURE)                                                                                        \
    F(BindVertexArray, BINDVERTEXARRAY)                                                                                \
    F(BlendFunc, BLENDFUNC)                                                                                            \
    F(BufferData, BUFFERDATA)                                                                                          \
    F(BufferSubData, BUFFERSUBDATA)                                                                                    \
    F(CheckFramebufferStatus, CHECKFRAMEBUFFERSTATUS)                                                                  \
    F(Clear, CLEAR)                                                                                                    \
    F(ClearColor, CLEARCOLOR)                                                                                          \
    F(ClearDepth, CLEARDEPTH)                                                                                          \
    F(ColorMask, COLORMASK)                                                                                            \
    F(CompileShader, COMPILESHADER)                                                                                    \
    F(CreateProgram, CREATEPROGRAM)                                                                                    \
    F(CreateShader, CREATESHADER)                                                                                      \
    F(DeleteBuffers, DELETEBUFFERS)                                                                                    \
    F(DeleteFramebuffers, DELETEFRAMEBUFFERS)                                                                          \
    F(DeleteProgram, DELETEPROGRAM)                                                                                    \
    F(DeleteRenderbuffers, DELETERENDERBUFFERS)                                                                        \
    F(DeleteSamplers, DELETESAMPLERS)                                                                                  \
    F(DeleteShader, DELETESHADER)                                                                                      \
    F(DeleteTextures, DELETETEXTURES)                                                                                  \
    F(DeleteVertexArrays, DELETEVERTEXARRAYS)                                                                          \
    F(DepthFunc, DEPTHFUNC)                                                                                            \
    F(DepthMask, DEPTHMASK)                                                                                            \
    F(Disable, DISABLE)                                                                                                \
    F(DrawArrays, DRAWARRAYS)                                                                                          \
    F(DrawElements, DRAWELEMENTS)                                                                                      \
    F(Enable, ENABLE)                                                                                                  \
    F(EnableVertexAttribArray, ENABLEVERTEXATTRIBARRAY)                                                                \
    F(Finish, FINISH)                                                                                                  \
    F(FramebufferRenderbuffer, FRAMEBUFFERRENDERBUFFER)                                                                \
    F(FramebufferTexture2D, FRAMEBUFFERTEXTURE2D)                                                                      \
    F(GenBuffers, GENBUFFERS)                                                                                          \
    F(GenFramebuffers, GENFRAMEBUFFERS)                                                                                \
    F(GenRenderbuffers, GENRENDERBUFFERS)                                                                              \
    F(GenSamplers, GENSAMPLERS)                                                                                        \
    F(GenTextures, GENTEXTURES)                                                                                        \
    F(GenVertexArrays, GENVERTEXARRAYS)                                                                                \
    F(GetError, GETERROR)                                                                                              \
    F(GetIntegerv, GETINTEGERV)                                                                                        \
    F(GetProgramInfoLog, GETPROGRAMINFOLOG)                                                                            \
    F(GetProgramiv, GETPROGRAMIV)                                                                                      \
    F(GetString, GETSTRING)                                                                                            \
    F(GetUniformLocation, GETUNIFORMLOCATION)                                                                          \
    F(LinkProgram, LINKPROGRAM)                                                                                        \
    F(PixelStorei, PIXELSTOREI)                                                                                        \
    F(ReadPixels, READPIXELS)                                                                                          \
    F(RenderbufferStorage, RENDERBUFFERSTORAGE)                                                                        \
    F(SamplerParameteri, SAMPLERPARAMETERI)                                                                            \
    F(ShaderSource, SHADERSOURCE)                                                                                      \
    F(TexImage2D, TEXIMAGE2D)                                                                                          \
    F(TexParameteri, TEXPARAMETERI)                                                                                    \
    F(Uniform1f, UNIFORM1F)                                                                                            \
    F(Uniform1i, UNIFORM1I)                                                                                            \
    F(Uniform2f, UNIFORM2F)                                                                                            \
    F(Uniform2fv, UNIFORM2FV)                                                                                          \
    F(Uniform3f, UNIFORM3F)                                                                                            \
    F(UseProgram, USEPROGRAM)                                                                                          \
    F(VertexAttribPointer, VERTEXATTRIBPOINTER)                                                                        \
    F(Viewport, VIEWPORT)

namespace gl {
#define DECLARE_GL_FUNCTION(name, NAME) extern PFNGL##NAME##PROC name;
GL_FUNCTIONS(DECLARE_GL_FUNCTION)
#undef DECLARE_GL_FUNCTION
}  // namespace gl

// Loads the functions from the context that is current on this thread. False: `error` names one that it lacks.
bool LoadGl(std::string& error);

// Pixels 0xAARRGGBB as OpenGL's GL_RGBA bytes, or the other way round: red and blue change places. OpenGL ES has no
// other order.
std::vector<uint32_t> RedFirst(std::span<const uint32_t> pixels);

// The programs' text without its version line. The vertex program's inputs are numbered by layout(location). 0: `error`
// says what the driver objects to.
GLuint LinkGlProgram(const char* vertexProgram, const char* fragmentProgram, std::string& error);
