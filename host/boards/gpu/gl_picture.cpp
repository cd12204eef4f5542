#include "boards/gpu/gl_picture.h"

#include "machine/settings.h"

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
// same as enlarging by a whole number and shrinking the rest. `enlargement` 1 is plain linear filtering; `opacity` is
// the least alpha.
const char* const FRAGMENT_PROGRAM = R"(in vec2 place;
out vec4 colour;
uniform sampler2D picture;
uniform vec2 enlargement;
uniform float opacity;
uniform float brightness;
void main() {
    vec2 size = vec2(textureSize(picture, 0));
    vec2 position = place * size;
    vec2 fromCentre = fract(position) - 0.5;
    vec2 even = 0.5 - 0.5 / enlargement;
    vec2 blend = (fromCentre - clamp(fromCentre, -even, even)) * enlargement;
    colour = texture(picture, (floor(position) + 0.5 + blend) / size);
    colour.rgb *= brightness;
    colour.a = max(colour.a, opacity);
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

namespace {

float Enlargement(int shown, int pixels, int pictureWidth) {
    const auto scaling = static_cast<ScalingChoice>(SettingValue(Setting::Scaling));
    if (scaling == ScalingChoice::Smooth) return 1;
    if (scaling == ScalingChoice::Original && pictureWidth >= SMOOTH_FROM_WIDTH) return 1;
    return std::max(static_cast<float>(shown) / static_cast<float>(pixels), 1.0f);
}

GLuint MakeTexture() {
    GLuint texture = 0;
    gl::GenTextures(1, &texture);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

void FillTexture(GLuint texture, const Picture& picture) {
    const auto pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    gl::ActiveTexture(GL_TEXTURE0);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::PixelStorei(GL_UNPACK_ALIGNMENT, 4);
    gl::TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, picture.width, picture.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                   RedFirst({picture.pixels, pixels}).data());
}

}  // namespace

bool GlPicture::Prepare(std::string& error) {
    program_ = LinkGlProgram(VERTEX_PROGRAM, FRAGMENT_PROGRAM, error);
    if (program_ == 0) return false;
    enlargementPlace_ = gl::GetUniformLocation(program_, "enlargement");
    opacityPlace_ = gl::GetUniformLocation(program_, "opacity");
    brightnessPlace_ = gl::GetUniformLocation(program_, "brightness");
    gl::GenVertexArrays(1, &vertexArray_);
    ownTexture_ = MakeTexture();
    overlayTexture_ = MakeTexture();
    if (gl::GetError() == GL_NO_ERROR) return true;
    error = "OpenGL has no room for a picture";
    return false;
}

void GlPicture::Take(const Picture& picture) {
    FillTexture(ownTexture_, picture);
    TakeTexture(ownTexture_, picture.width, picture.height);
}

void GlPicture::TakeTexture(uint32_t texture, int width, int height) {
    texture_ = texture;
    width_ = width;
    height_ = height;
}

void GlPicture::TakeOverlay(const Picture* overlay) {
    if (overlay) FillTexture(overlayTexture_, *overlay);
    overlayWidth_ = overlay ? overlay->width : 0;
    overlayHeight_ = overlay ? overlay->height : 0;
}

bool GlPicture::Draw(int windowWidth, int windowHeight) const {
    if (width_ == 0) return false;
    const bool whole = SettingValue(Setting::Scaling) == static_cast<int>(ScalingChoice::Integer);
    PictureArea area = (whole ? FitWholePixels : FitPicture)(width_, height_, windowWidth, windowHeight);
    area.y = windowHeight - area.y - area.height;  // from the lower edge
    DisableTests();
    gl::BindFramebuffer(GL_FRAMEBUFFER, 0);
    gl::ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl::ClearColor(0, 0, 0, 1);
    gl::Clear(GL_COLOR_BUFFER_BIT);
    DrawLayer(texture_, width_, height_, area, true);
    if (overlayWidth_ == 0) return true;
    gl::Enable(GL_BLEND);
    gl::BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DrawLayer(overlayTexture_, overlayWidth_, overlayHeight_, area, false);
    gl::Disable(GL_BLEND);
    return true;
}

void GlPicture::DrawLayer(GLuint texture, int width, int height, const PictureArea& area, bool opaque) const {
    gl::Viewport(area.x, area.y, area.width, area.height);
    gl::UseProgram(program_);
    gl::Uniform2f(enlargementPlace_, Enlargement(area.width, width, width), Enlargement(area.height, height, width));
    gl::Uniform1f(opacityPlace_, opaque ? 1.0f : 0.0f);
    gl::Uniform1f(brightnessPlace_, opaque ? static_cast<float>(SettingValue(Setting::Brightness)) / 100 : 1.0f);
    gl::ActiveTexture(GL_TEXTURE0);
    gl::BindTexture(GL_TEXTURE_2D, texture);
    gl::BindSampler(0, 0);
    gl::BindVertexArray(vertexArray_);
    gl::DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}
