#include "backends/sdl/presenter.h"

#include <algorithm>

SDL_Rect FitPicture(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight) {
    SDL_Rect area{0, 0, windowWidth, windowHeight};
    if (int64_t{windowWidth} * pictureHeight > int64_t{windowHeight} * pictureWidth) {
        area.w = static_cast<int>(int64_t{windowHeight} * pictureWidth / pictureHeight);
    } else {
        area.h = static_cast<int>(int64_t{windowWidth} * pictureHeight / pictureWidth);
    }
    area.w = std::max(area.w, 1);
    area.h = std::max(area.h, 1);
    area.x = (windowWidth - area.w) / 2;
    area.y = (windowHeight - area.h) / 2;
    return area;
}
