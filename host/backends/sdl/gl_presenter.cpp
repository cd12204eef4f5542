#include "backends/sdl/presenter.h"
#include "boards/gpu/gl_context.h"

#include <algorithm>

namespace {

constexpr int SMOOTH_FROM_WIDTH = 640;
constexpr int VSYNC_FROM_HZ = 59;

const char* const VERTEX_PROGRAM = R"(#version 330 core
out vec2 place;
void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
    place = vec2(corner.x, 1.0 - corner.y);
    gl_Position = vec4(corner * 2.0 - 1.0, 0.0, 1.0);
}
)";

// A pixel is even over its whole area but for one screen pixel at its border, where it blends into its neighbour: the
// same as enlarging by a whole number and shrinking the rest. `enlargement` 1 is plain linear filtering.
const char* const FRAGMENT_PROGRAM = R"(#version 330 core
in vec2 place;
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

// The frame limiter counts whole ticks of 16 ms and forgets remainders, so a swap that waits for a display slower
// than that would slow the game down.
void ChooseVerticalSync(SDL_Window* window) {
    SDL_DisplayMode mode{};
    const int display = std::max(SDL_GetWindowDisplayIndex(window), 0);
    const bool fastEnough = SDL_GetCurrentDisplayMode(display, &mode) == 0 && mode.refresh_rate >= VSYNC_FROM_HZ;
    SDL_GL_SetSwapInterval(fastEnough ? 1 : 0);
}

void DisableTests() {
    gl::Disable(GL_BLEND);
    gl::Disable(GL_DEPTH_TEST);
    gl::Disable(GL_CULL_FACE);
    gl::Disable(GL_SCISSOR_TEST);
    gl::Disable(GL_DITHER);
}

class GlPresenter : public Presenter {
public:
    GlPresenter(SDL_Window* shownIn, SDL_GLContext drawnWith) : window(shownIn), context(drawnWith) {}

    ~GlPresenter() override { SDL_GL_DeleteContext(context); }

    bool Prepare() {
        std::string error;
        if (EnterGl(error)) program = LinkGlProgram(VERTEX_PROGRAM, FRAGMENT_PROGRAM, error);
        if (program == 0) {
            SDL_SetError("%s", error.c_str());
            return false;
        }
        enlargementPlace = gl::GetUniformLocation(program, "enlargement");
        gl::GenVertexArrays(1, &vertexArray);
        gl::GenTextures(1, &ownTexture);
        gl::BindTexture(GL_TEXTURE_2D, ownTexture);
        gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        gl::TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        ChooseVerticalSync(window);
        return gl::GetError() == GL_NO_ERROR;
    }

    void Show(const Picture& picture) override {
        gl::ActiveTexture(GL_TEXTURE0);
        gl::BindTexture(GL_TEXTURE_2D, ownTexture);
        gl::PixelStorei(GL_UNPACK_ALIGNMENT, 4);
        gl::TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, picture.width, picture.height, 0, GL_BGRA,
                       GL_UNSIGNED_INT_8_8_8_8_REV, picture.pixels);
        ShowTexture(ownTexture, picture.width, picture.height);
    }

    bool ShowTexture(uint32_t shownTexture, int textureWidth, int textureHeight) override {
        texture = shownTexture;
        width = textureWidth;
        height = textureHeight;
        ShowAgain();
        return true;
    }

    void ShowAgain() override {
        if (width == 0) return;
        int windowWidth = 0, windowHeight = 0;
        SDL_GL_GetDrawableSize(window, &windowWidth, &windowHeight);
        const SDL_Rect area = FitPicture(width, height, windowWidth, windowHeight);
        DisableTests();
        gl::BindFramebuffer(GL_FRAMEBUFFER, 0);
        gl::ColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        gl::ClearColor(0, 0, 0, 1);
        gl::Clear(GL_COLOR_BUFFER_BIT);
        gl::Viewport(area.x, windowHeight - area.y - area.h, area.w, area.h);
        gl::UseProgram(program);
        gl::Uniform2f(enlargementPlace, Enlargement(area.w, width), Enlargement(area.h, height));
        gl::ActiveTexture(GL_TEXTURE0);
        gl::BindTexture(GL_TEXTURE_2D, texture);
        gl::BindSampler(0, 0);
        gl::BindVertexArray(vertexArray);
        gl::DrawArrays(GL_TRIANGLE_STRIP, 0, 4);
        SDL_GL_SwapWindow(window);
    }

private:
    float Enlargement(int shown, int pixels) const {
        if (width >= SMOOTH_FROM_WIDTH) return 1;
        return std::max(static_cast<float>(shown) / static_cast<float>(pixels), 1.0f);
    }

    SDL_Window* window;
    SDL_GLContext context;
    GLuint program = 0, vertexArray = 0, ownTexture = 0;
    GLuint texture = 0;  // the one being shown
    GLint enlargementPlace = -1;
    int width = 0, height = 0;
};

}  // namespace

std::unique_ptr<Presenter> MakeGlPresenter(SDL_Window* window) {
    const SDL_GLContext context = SDL_GL_CreateContext(window);
    if (!context) return nullptr;
    auto presenter = std::make_unique<GlPresenter>(window, context);
    return presenter->Prepare() ? std::move(presenter) : nullptr;
}
