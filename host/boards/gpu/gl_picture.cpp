#include "boards/gpu/gl_picture.h"

#include "machine/picture_area.h"

#include <algorithm>

namespace {

constexpr int SMOOTH_FROM_WIDTH = 640;

const char* const VERTEX_PROGRAM = R"(out vec2 place;
void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
    place = vec2(corner.x, 1.0 - corner.y);
    gl_Position = vec4(corner * 2.0 - 1.0, 0.0, 1.0);
}
)";

// A pixel is even over its whole area but for one screen pixel at its border, where it blends into its neighbour: the
// same as enlarging by a whole number and shrinking the rest. `enlargement` 1 is plain linear filtering.
const char* const FRAGMENT_PROGRAM = R"(in vec2 place;
out vec4 colour;
uniform sampler2D picture;
uniform vec2 enlargement;
void main() {
    vec2 size = vec2(textureSize(picture, 0));
    vec2 position = place * size;
    vec2 fromCentre = fract(position) - 0.5;
    vec2 even = 0.5 - 0.5 / enlargement;
    vec2 blend = (fromCentre - clamp(fromCentre, -even, even)) * enlargement;
    colour = vec4(texture(picture, (floor(position) + 0.5 + blend) / size).rgb, 1.0);
}
)";

void DisableTests() {
    gl::Disable(GL_BLEND);
    gl::Disable(GL_DEPTH_TEST);
    gl::Disable(GL_CULL_FACE);
    gl::Disable(GL_SCISSOR_TEST);
    gl::Disable(GL_DITHER);
}

}  // namespace

bool GlPicture::Prepare(std::string& error) {
    program_ = LinkGlProgram(VERTEX_PROGRAM, FRAGMENT_PROGRAM, error);
    if (program_ == 0) return false;
    enlargementPlace_ = gl::GetUniformLocation(program_, "enlargement");
    gl::GenVertexArrays(1, &vertexArray_);
    gl::GenTextures(1, &ownTexture_);
    gl::BindTexture(GL_TEXTURE_2D, ownTexture_);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    if (gl::GetError() == GL_NO_ERROR) return true;
    error = "OpenGL has no room for a picture";
    return false;
}

void GlPicture::Take(const Picture& picture) {
    const auto pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    gl::ActiveTexture(GL_TEXTURE0);
    gl::BindTexture(GL_TEXTURE_2D, ownTexture_);
    gl::PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    gl::TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, picture.width, picture.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                   RedFirst({picture.pixels, pixels}).data());
    TakeTexture(ownTexture_, picture.width, picture.height);
}

void GlPicture::TakeTexture(uint32_t texture, int width, int height) {
    texture_ = texture;
    width_ = width;
    height_ = height;
}

bool GlPicture::Draw(int windowWidth, int windowHeight) const {
    if (width_ == 0) return false;
    const PictureArea area = FitPicture(width_, height_, windowWidth, windowHeight);
    DisableTests();
    gl::BindFramebuffer(GL_FRAMEBUFFER, 0);
    gl::ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl::ClearColor(0, 0, 0, 1);
    gl::Clear(GL_COLOR_BUFFER_BIT);
    gl::Viewport(area.x, windowHeight - area.y - area.height, area.width, area.height);
    gl::UseProgram(program_);
    gl::Uniform2f(enlargementPlace_, Enlargement(area.width, width_), Enlargement(area.height, height_));
    gl::ActiveTexture(GL_TEXTURE0);
    gl::BindTexture(GL_TEXTURE_2D, texture_);
    gl::BindSampler(0, 0);
    gl::BindVertexArray(vertexArray_);
    gl::DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    return true;
}

float GlPicture::Enlargement(int shown, int pixels) const {
    if (width_ >= SMOOTH_FROM_WIDTH) return 1;
    return std::max(static_cast<float>(shown) / static_cast<float>(pixels), 1.0f);
}
