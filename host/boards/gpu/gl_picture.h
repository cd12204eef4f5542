// The picture of a window, drawn with OpenGL: as large as fits with its sides in proportion, in the middle, black
// around it. A picture less than 640 wide is shown with sharp pixels, a larger one smoothly.
#pragma once

#include "boards/gpu/gl.h"
#include "machine/machine.h"
#include "machine/picture_area.h"

#include <cstdint>
#include <string>

class GlPicture {
public:
    bool Prepare(std::string& error);  // once, with a context; false: `error` says what OpenGL objects to
    void Take(const Picture& picture);
    void TakeTexture(uint32_t texture, int width, int height);  // its upper row first; it must stay until the next one
    void TakeOverlay(const Picture* overlay);                   // machine/machine.h, showOverlay
    bool Draw(int windowWidth, int windowHeight) const;         // the latest picture; false: there was none yet

private:
    void DrawLayer(GLuint texture, int width, int height, const PictureArea& area, bool opaque) const;

    GLuint program_ = 0, vertexArray_ = 0, ownTexture_ = 0, overlayTexture_ = 0;
    GLuint texture_ = 0;  // the one being shown
    GLint enlargementPlace_ = -1, opacityPlace_ = -1, brightnessPlace_ = -1;
    int width_ = 0, height_ = 0;
    int overlayWidth_ = 0, overlayHeight_ = 0;  // 0: there is none
};
