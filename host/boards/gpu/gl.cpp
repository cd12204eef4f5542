#include "boards/gpu/gl.h"

#include <SDL.h>

namespace gl {
#define DEFINE_GL_FUNCTION(name, NAME) PFNGL##NAME##PROC name = nullptr;
GL_FUNCTIONS(DEFINE_GL_FUNCTION)
#undef DEFINE_GL_FUNCTION
}  // namespace gl

namespace {

template <typename Function>
bool Load(Function& function, const char* name, std::string& error) {
    function = reinterpret_cast<Function>(SDL_GL_GetProcAddress(name));
    if (!function) error = std::string("this OpenGL has no ") + name;
    return function != nullptr;
}

void AttachShader(GLuint program, GLenum kind, const char* text) {
    const GLuint shader = gl::CreateShader(kind);
    gl::ShaderSource(shader, 1, &text, nullptr);
    gl::CompileShader(shader);
    gl::AttachShader(program, shader);
    gl::DeleteShader(shader);
}

}  // namespace

bool LoadGl(std::string& error) {
#define LOAD_GL_FUNCTION(name, NAME)                                                                                   \
    if (!Load(gl::name, "gl" #name, error)) return false;
    GL_FUNCTIONS(LOAD_GL_FUNCTION)
#undef LOAD_GL_FUNCTION
    return true;
}

GLuint LinkGlProgram(const char* vertexProgram, const char* fragmentProgram, std::string& error) {
    const GLuint program = gl::CreateProgram();
    AttachShader(program, GL_VERTEX_SHADER, vertexProgram);
    AttachShader(program, GL_FRAGMENT_SHADER, fragmentProgram);
    gl::LinkProgram(program);
    GLint linked = GL_FALSE;
    gl::GetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == GL_TRUE) return program;
    char log[1024] = "";
    gl::GetProgramInfoLog(program, sizeof log, nullptr, log);
    error = std::string("a program of OpenGL does not link: ") + log;
    gl::DeleteProgram(program);
    return 0;
}
