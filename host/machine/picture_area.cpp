#include "machine/picture_area.h"

#include <algorithm>
#include <cstdint>

PictureArea FitPicture(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight) {
    PictureArea area{0, 0, windowWidth, windowHeight};
    if (int64_t{windowWidth} * pictureHeight > int64_t{windowHeight} * pictureWidth) {
        area.width = static_cast<int>(int64_t{windowHeight} * pictureWidth / pictureHeight);
    } else {
        area.height = static_cast<int>(int64_t{windowWidth} * pictureHeight / pictureWidth);
    }
    area.width = std::max(area.width, 1);
    area.height = std::max(area.height, 1);
    area.x = (windowWidth - area.width) / 2;
    area.y = (windowHeight - area.height) / 2;
    return area;
}

int CoveringScale(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight) {
    const PictureArea area = FitPicture(pictureWidth, pictureHeight, windowWidth, windowHeight);
    return std::max((area.width - 1) / pictureWidth, (area.height - 1) / pictureHeight) + 1;
}

PictureArea FitWholePixels(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight) {
    const int times = std::min(windowWidth / pictureWidth, windowHeight / pictureHeight);
    if (times == 0) return FitPicture(pictureWidth, pictureHeight, windowWidth, windowHeight);
    const int width = times * pictureWidth, height = times * pictureHeight;
    return {(windowWidth - width) / 2, (windowHeight - height) / 2, width, height};
}
