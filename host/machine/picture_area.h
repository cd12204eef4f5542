// Where a window shows a picture: as large as fits with its sides in proportion, in the middle.
#pragma once

struct PictureArea {
    int x, y, width, height;  // pixels of the window, from its upper left corner
};

PictureArea FitPicture(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight);

// The same with each pixel of the picture a whole number of the window's, where there is room for one.
PictureArea FitWholePixels(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight);

// The least whole number of times that the picture's sides must be multiplied by to have no fewer pixels than its area.
int CoveringScale(int pictureWidth, int pictureHeight, int windowWidth, int windowHeight);
