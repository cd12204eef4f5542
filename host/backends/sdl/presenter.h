// Pictures onto the window (machine/picture_area.h), black around them. A picture less than 640 wide is shown with
// sharp pixels, a larger one smoothly.
#pragma once

#include "machine/machine.h"

#include <SDL.h>

#include <memory>

class Presenter {
public:
    virtual ~Presenter() = default;
    virtual void Show(const Picture& picture) = 0;
    // Shows an OpenGL texture, which must stay until the next picture. False: this presenter does not use OpenGL.
    virtual bool ShowTexture(uint32_t texture, int width, int height) = 0;
    virtual void SetOverlay(const Picture* overlay) = 0;  // machine/machine.h, showOverlay; shown with the next picture
    virtual void
    ShowAgain() = 0;  // shows the latest picture at the window's present size; does nothing before the first Show
};

std::unique_ptr<Presenter> MakeGlPresenter(SDL_Window* window);       // null: no OpenGL 3.3 context; see SDL_GetError
std::unique_ptr<Presenter> MakeSurfacePresenter(SDL_Window* window);  // never on a window that has a context
