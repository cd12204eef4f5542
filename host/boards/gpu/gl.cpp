#include "boards/gpu/gl.h"

#include "boards/gpu/gl_platform.h"

#include <algorithm>

namespace gl {
#define DEFINE_GL_FUNCTION(name, NAME) PFNGL##NAME##PROC name = nullptr;
GL_FUNCTIONS(DEFINE_GL_FUNCTION)
#undef DEFINE_GL_FUNCTION
}  // namespace gl

namespace {

template <typename Function>
bool Load(Function& function, const char* name, std::string& error) {
    function = reinterpret_cast<Function>(FindGlFunction(name));
    if (!function) error = std::string("this OpenGL has no ") + name;
    return function != nullptr;
}

void AttachShader(GLuint program, GLenum kind, const char* text) {
    const GLuint shader = gl::CreateShader(kind);
    const char* const parts[] = {GlslVersion(), text};
    gl::ShaderSource(shader, 2, parts, nullptr);
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

std::vector<uint32_t> RedFirst(std::span<const uint32_t> pixels) {
    std::vector<uint32_t> swapped(pixels.size());
    std::transform(pixels.begin(), pixels.end(), swapped.begin(),
                   [](uint32_t pixel) { return (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16; });
    return swapped;
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
