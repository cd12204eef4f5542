// Where a window shows a picture: as large as fits with its sides in proportion, in the middle.
#pragma once

struct PictureArea {
    int x, y, width, height;  // pixels of the window, from its upper left corner
};

PictureArea FitPicture(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight);
